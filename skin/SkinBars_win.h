#pragma once

#include "skin/SkinWindow_win.h"

// Progress bars, track bars (the sliders of the tools) and the status bar.
// False leaves the message to the previous procedure.

bool PaintProgress(const SkinCall& call, LRESULT* answer);
bool PaintTrackbar(const SkinCall& call, LRESULT* answer);
bool PaintStatusBar(const SkinCall& call, LRESULT* answer);
