#pragma once

#include "files/PictureToWrite.h"
#include "files/WatchedFile.h"

// Writes a picture of 8 bits in colours as WebP, at quality 75. False when the encoder gives up.
bool WriteWebp(WatchedFile* file, const PictureToWrite& job);
