#pragma once

#include "picture/PicBuf.h"

struct FIBITMAP; // FreeImage's bitmap; its header is seen by ImageCodec.cpp, ImageReader
                 // and ImageFile.cpp only

// The door to FreeImage: its bitmaps to picture pairs and back. A pair is a picture (1 or 3
// components, 8 or 16 bits, blue green red, top row first) and an alpha plane of the same size and
// bits; no plane means a null data pointer.
//
// Kinds that exist on both sides, and nothing else:
//   grey 8 and 16 bit, colour 24 and 48 bit, colour with alpha 32 and 64 bit.

// Prepares the library and silences what it would print. Called by every routine here and in
// ImageFile.h; cheap after the first time and safe on any thread.
void InitImageLibrary();

enum class BitmapFit
{
    Fits,
    KindNotSupported, // palette, CMYK, 1 4 or 16 bits per pixel, floats, signed
                      // samples, ...
    TooLarge,         // the picture record or this machine's memory cannot hold it
};

// Whether the bitmap can become a picture pair. Works on bitmaps that were loaded without pixels,
// where the colours of a palette are not known yet and count as grey.
BitmapFit FitOfBitmap(FIBITMAP* bitmap);

// Makes the pair from a bitmap; the bitmap stays with the caller. Both records must be initialised;
// what they own is released. True when the bitmap is refused (see FitOfBitmap) or memory is short;
// both records are empty then. A null bitmap gives false and two empty records. Grey samples come
// out as true greys, also where the bitmap counts from white to black.
[[nodiscard]] bool PictureFromBitmap(FIBITMAP* bitmap, SBxPicBuf* picture, SBxPicBuf* alpha);

// Makes a bitmap from the pair, to be freed with FreeImage_Unload. `alpha` may be null or empty; it
// is left out for one-component pictures, which have no kind with alpha. Null when memory is short
// or the picture is none of the kinds above.
[[nodiscard]] FIBITMAP* BitmapFromPicture(const SBxPicBuf& picture, const SBxPicBuf* alpha);
