#pragma once

#include "base/Win.h"

// The procedure that stands before a control's own, while it does
// (SkinSubclass_win.h). It does what the rules' table has for the message; what
// has no row there, or whose painting fails, goes to the procedure that it
// stands before.
LRESULT CALLBACK SkinProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
