#include "skin/IconPixels.h"

#include <cstring>

void FlattenIcon(uint8_t* dst, int dstStride, const uint8_t* src, int width, int height)
{
    constexpr int kOpaque = 127;      // alpha from here on
    constexpr int kSeenThrough = 192; // the grey of a light window, whatever lies behind
    for (int y = 0; y < height; ++y)
    {
        uint8_t* out = dst + int64_t(y) * dstStride;
        for (int x = 0; x < width; ++x, out += 3, src += 4)
        {
            if (src[3] >= kOpaque)
                std::memcpy(out, src, 3);
            else
                std::memset(out, kSeenThrough, 3);
        }
    }
}

// A flat grey between 50 and 159. Green counts for most, as it does for the eye. The fraction goes
// before the subtraction.
static uint8_t DisabledGrey(const uint8_t* bgr)
{
    const double light = bgr[2] * 0.3 + bgr[1] * 0.5 + bgr[0] * 0.2;
    return uint8_t(uint8_t(light * 0.43 + 120) - 70);
}

// What is faint already becomes fainter; the rest keeps its shape.
static void DisablePixel(uint8_t* out, const uint8_t* in, const IconKeyColour& key)
{
    constexpr int kFaint = 100;
    if (in[0] == key.red && in[1] == key.green && in[2] == key.blue)
        std::memcpy(out, in, 3);
    else
        std::memset(out, DisabledGrey(in), 3);
    out[3] = in[3] < kFaint ? uint8_t(in[3] / 2) : in[3];
}

void DisableIcon(uint8_t* dst, const uint8_t* src, int width, int height, const IconKeyColour& key)
{
    for (int y = 0; y < height; ++y)
    {
        uint8_t* out = dst + int64_t(y) * width * 4;
        const uint8_t* in = src + int64_t(height - 1 - y) * width * 4;
        for (int x = 0; x < width; ++x)
            DisablePixel(out + 4 * x, in + 4 * x, key);
    }
}
