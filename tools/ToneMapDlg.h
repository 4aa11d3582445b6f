#pragma once

#include "tools/ToolHost_win.h"

// Opens the tone mapping dialog over the opened photograph. Tells the user and opens nothing when
// memory is short.
void OpenToneMapDialog(const ToolHost& host);
