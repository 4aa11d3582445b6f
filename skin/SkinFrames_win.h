#pragma once

#include "skin/SkinWindow_win.h"

// The part of a window outside of its client area. False leaves the message to
// the previous procedure.

// One edge around fields, lists and bars, with their scroll bars.
bool PaintFrame(const SkinCall& call, LRESULT* answer);

// The edge of an open popup menu.
bool PaintMenuFrame(const SkinCall& call, LRESULT* answer);
