#pragma once

#include "picture/PicBuf.h"

// Where a picture lies in its padded copy.
struct DetailPadding
{
    int levels;
    int width, height; // of the padded picture: multiples of 2^levels
    int x, y;          // the picture's top left pixel
};
DetailPadding DetailPaddingOf(int width, int height);

// Fill the padding around the width * height pixels at (x, y): every row is extended with its
// first and last pixel, then the first and the last row are repeated.
void ReplicateBorder8(SBxPicBuf* padded, int x, int y, int width, int height);
void ReplicateBorder16(SBxPicBuf* padded, int x, int y, int width, int height);

// Write a packed float plane into a component of an 8- or 16-bit picture of its size: rounded to
// nearest and clamped, after spreading its range if asked to. The third writes a rectangle only,
// and spreads nothing.
void ToInteger8(SBxPicBuf* picture, int component, const float* plane, bool autoStretch);
void ToInteger16(SBxPicBuf* picture, int component, const float* plane, bool autoStretch);
void ToIntegerRect(SBxPicBuf* picture, int component, const float* plane, const CBxRect<int>& rect);
