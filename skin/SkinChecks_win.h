#pragma once

#include "skin/SkinWindow_win.h"

// Paints check boxes, radio buttons and group boxes, which share the system's
// class of buttons. False for buttons of other types, which the previous
// procedure paints.
bool PaintCheckOrGroup(const SkinCall& call, LRESULT* answer);
