#pragma once

#include "base/Win.h"

// Gives a window its colours and styles right after its creation (WM_CREATE):
// what the system's own painting can be told is told once, and buttons are
// converted (SkinButtonRules.h).
void StyleNewWindow(HWND hwnd);
