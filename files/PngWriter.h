#pragma once

#include "files/PictureToWrite.h"
#include "files/WatchedFile.h"

// Writes a picture of 8 or 16 bits as PNG. False when the encoder gives up.
bool WritePng(WatchedFile* file, const PictureToWrite& job);

// Whether a profile is one that readers of PNG files will take: its length and its mark are right.
bool ProfileIsSound(const std::vector<uint8_t>& profile);
