#pragma once

#include "files/FileHeaders.h"
#include "files/ImageCodec.h"
#include "files/ImageFile.h"

#include <FreeImage.h>

#include <cstdio>
#include <memory>
#include <vector>

// Files as FreeImage gets to see them: which format it is told, which sizes are refused before it
// takes memory for them, and which bytes are kept from it (FileHeaders.h). For ImageFile.cpp, which
// knows what becomes of the bitmaps.

struct BitmapDeleter
{
    void operator()(FIBITMAP* bitmap) const { FreeImage_Unload(bitmap); }
};
struct FileCloser
{
    void operator()(FILE* file) const { std::fclose(file); }
};
using BitmapOwner = std::unique_ptr<FIBITMAP, BitmapDeleter>;
using FileOwner = std::unique_ptr<FILE, FileCloser>;

// What FreeImage reads from or writes to.
struct ImageStream
{
    FILE* file = nullptr;
    int error = 0;                  // errno of the first failed write
    std::vector<MaskedByte> masked; // known once something is decoded
};
FreeImageIO StreamFunctions(); // their handle is an ImageStream

// The number of the format that a name asks for, FIF_UNKNOWN for none.
FREE_IMAGE_FORMAT CodeFromFileName(const char* name);

// The format of a stream: its contents decide, then the name.
LoadProblem FindReadableFormat(FREE_IMAGE_FORMAT* format, ImageStream* stream, const char* name);

// The file (path in UTF-8) and the format of what it holds.
LoadProblem OpenPicture(const char* path, FileOwner* file, ImageStream* stream,
                        FREE_IMAGE_FORMAT* format);

// A header of a few bytes may claim billions of pixels, which a decoder would allocate and clear
// before it sees that there is nothing to read.
LoadProblem CheckHeader(FREE_IMAGE_FORMAT format, ImageStream* stream);

// The header is checked first. Null with the problem.
BitmapOwner LoadWhole(FREE_IMAGE_FORMAT format, ImageStream* stream, LoadProblem* problem);

// Null when it cannot be decoded, for whatever reason. Flags are FreeImage's.
BitmapOwner Decode(FREE_IMAGE_FORMAT format, ImageStream* stream, int flags);

LoadProblem ProblemOf(BitmapFit fit);
