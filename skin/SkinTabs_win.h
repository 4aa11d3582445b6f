#pragma once

#include "skin/SkinWindow_win.h"

// Tabs, and the headers of lists with columns. False leaves the message to the
// previous procedure.

bool PaintHeader(const SkinCall& call, LRESULT* answer);
bool PaintTab(const SkinCall& call, LRESULT* answer);
