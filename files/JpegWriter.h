#pragma once

#include "files/PictureToWrite.h"
#include "files/WatchedFile.h"

// Writes a picture of 8 bits as JPEG. False when the encoder gives up.
bool WriteJpeg(WatchedFile* file, const PictureToWrite& job);

// The same into memory, without metadata, at quality 80: for thumbnails. Empty when it fails.
std::vector<uint8_t> SmallJpeg(const SBxPicBuf& picture);

// What a segment of a JPEG file holds at most: of EXIF blocks, of packets of XMP.
constexpr size_t kMostJpegExif = 65533 - 6;
constexpr size_t kMostJpegXmp = 65533 - 29;
