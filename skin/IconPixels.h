#pragma once

#include <cstdint>

// Pixel rules of toolbar images. Pixels of 32 bits are blue, green, red, alpha, packed.

struct IconKeyColour
{
    uint8_t red, green, blue;
};

// For screens of fewer than 32 bits per pixel, which show no translucency: alpha 127 or more keeps
// the colour, less becomes grey 192. The destination has 24 bits per pixel; both run top-down.
void FlattenIcon(uint8_t* dst, int dstStride, const uint8_t* src, int width, int height);

// The greyed variant of an image. The source runs bottom-up, as device-independent bitmaps do, the
// destination top-down. Pixels of the key colour keep theirs; the comparison takes their blue byte
// with the key's red one and the other way round, which tells apart nothing while button faces are
// grey.
void DisableIcon(uint8_t* dst, const uint8_t* src, int width, int height, const IconKeyColour& key);
