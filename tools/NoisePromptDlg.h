#pragma once

#include "tools/ToolHost_win.h"

// Asks in the docker how much noise to take away before a series is made, and waits for the answer
// while all windows live on. The level (0 none to 3 high) is what was chosen, or on Cancel what
// was chosen the last time.
constexpr int kPromptConfirmed = 1, kPromptCancelled = 2;
int RunNoiseLevelPrompt(const ToolHost& host, unsigned* noiseLevel);
