#pragma once

#include "base/Win.h"

// The panel at the right edge of the frame that holds the tools' dialogs, one below the other. With
// nothing in it, it is one pixel wide.

// Makes the panel as a child of the frame; null when it cannot be made.
HWND CreateDocker(HWND parent);

// Puts a window (a child of the docker already) at the end of the list, or takes it out. Both lay
// the docker out; the windows keep their own sizes.
void DockWindow(HWND hwnd);
void UndockWindow(HWND hwnd);
void LayoutDocker();
