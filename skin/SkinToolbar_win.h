#pragma once

#include "skin/SkinWindow_win.h"

// Toolbars, with what the bar itself knows of its buttons. False leaves the
// message to the previous procedure.
bool PaintToolbar(const SkinCall& call, LRESULT* answer);
