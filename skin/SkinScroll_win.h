#pragma once

#include "base/Win.h"

// A scroll bar: of a list, in coordinates of its window, by OBJID_VSCROLL or OBJID_HSCROLL; or, by
// OBJID_CLIENT, a control of its own in client coordinates.
bool DrawWindowScrollBar(HDC dc, HWND hwnd, LONG object);
