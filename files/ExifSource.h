#pragma once

#include "files/TiffDirectory.h"

#include <vector>

// An EXIF block of what a TIFF or raw file knows: its directories about the photograph without
// those about its pixels, in the file's byte order. Most of it moves to the front. The notes of the
// camera's maker stay at their offset where that is below `limit`, since they may have offsets of
// their own in them, which count from the file's first byte; if they have to move, such offsets
// move along. Empty when there is nothing.
std::vector<uint8_t> ExifOfTiff(const TiffStructure& tiff, uint32_t limit);

// Whether a field of a first directory is about the photograph, not about how its pixels are kept.
bool IsAboutPhotograph(int tag);
