#pragma once

#include "tools/ToolHost_win.h"

// Opens the dialog that changes the contrast of each level of detail, over the opened photograph.
// Tells the user and opens nothing when memory is short.
void OpenSmartContrastDialog(const ToolHost& host);
