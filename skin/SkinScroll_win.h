#pragma once

#include "skin/SkinWindow_win.h"

// Scroll bars and up-down arrows.

// A scroll bar: of a list, in coordinates of its window, by OBJID_VSCROLL or
// OBJID_HSCROLL; or, by OBJID_CLIENT, a control of its own in client
// coordinates. False when there is none to see.
bool DrawWindowScrollBar(HDC dc, HWND hwnd, LONG object);

// False leaves the message to the previous procedure.
bool PaintScrollBar(const SkinCall& call, LRESULT* answer);
bool PaintUpDown(const SkinCall& call, LRESULT* answer);
