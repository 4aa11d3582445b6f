#pragma once

#include "base/Outcome.h"
#include "picture/PicBuf.h"

// A camera that was held upright stores its picture lying on its side, and a number that says how
// to turn it: EXIF's and TIFF's orientation. 1 is upright, 2 to 4 mirror or turn by half, 5 to 8
// exchange rows and columns as well.

// Turns a picture of 8 or 16 bits as the number says, into a block of its own. Numbers outside of
// 2 .. 8 change nothing. Fails when memory is short; the picture stays as it was then.
Outcome MakeUpright(SBxPicBuf* picture, int orientation);
