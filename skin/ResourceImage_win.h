#pragma once

#include "base/Win.h"

// Images of the user interface. GDI+ must have been started. Whoever gets a bitmap deletes it.

// A resource of type PNG of that module, as a bitmap of 32 bits with alpha; on a screen of fewer
// bits flattened, which the flag then says. Without a module the name is a file's path, and nothing
// is flattened. What is no PNG is tried as a plain bitmap. Null when there is no such image.
HBITMAP LoadResourceImage(HINSTANCE module, const wchar_t* name, bool* flattened);

// Gives the bitmap back as it is when the screen has 32 bits per pixel (asked once per run), when
// the flag says that it has been flattened, or when it has no alpha. Otherwise it is replaced by
// one of 24 bits, and the flag set; null when that one cannot be made.
HBITMAP FlattenForLowColour(HBITMAP bitmap, bool* flattened);

// The replacement itself, whatever the screen.
HBITMAP FlattenBitmap(HBITMAP bitmap, bool* flattened);

// The greyed variant of a 32-bit bitmap, as toolbars show it for disabled buttons: a new bitmap, or
// null. Pixels of the button face's colour keep it.
HBITMAP MakeDisabledImage(HBITMAP bitmap);
