#pragma once

#include "files/PictureToWrite.h"
#include "files/WatchedFile.h"

// Writes a picture of 8 or 16 bits as TIFF, with its EXIF block at the very beginning, so that
// every offset in it counts from the file's first byte as well. The stream must also be readable.
// False when the encoder gives up.
bool WriteTiff(WatchedFile* file, const PictureToWrite& job);
