#pragma once

#include "base/Win.h"

// Windows whose procedure the skin has replaced, each with a count, since
// messages nest: only the last release puts the old procedure back.

// Puts a procedure before the window's own. Each call needs one release.
void SubclassWindowForSkin(HWND hwnd, WNDPROC procedure);
void UnsubclassWindowForSkin(HWND hwnd);

// The window is gone, whatever its count.
void ForgetSkinnedWindow(HWND hwnd);

// Calls the procedure that the skin has replaced, or the default one when there
// is none.
LRESULT CallPrevious(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
