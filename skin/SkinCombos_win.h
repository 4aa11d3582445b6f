#pragma once

#include "skin/SkinWindow_win.h"

// Combo boxes, also those of the system's own dialogs. False leaves the message
// to the previous procedure.

bool PaintCombo(const SkinCall& call, LRESULT* answer);

// The background of a window that only holds another control.
bool FillWithWindowColour(const SkinCall& call, LRESULT* answer);

// An item of a list that one of the system's dialogs draws by itself.
bool DrawForeignItem(const SkinCall& call, LRESULT* answer);
