#include "picture/PicColor.h"

#include <type_traits>

// Full-range Rec. 601 (JFIF): Y = 0.299 R + 0.587 G + 0.114 B, U = (B - Y) / 1.772 + half,
// V = (R - Y) / 1.402 + half, half being 128 or 32768. Rounding to nearest is what makes the pair
// an inverse within one step for every colour; truncating would be off by up to three.

template <typename T>
static constexpr float kHalf = sizeof(T) == 1 ? 128.0f : 32768.0f;

template <typename T>
static void RgbRowToYuv(T* to, const T* from, int width)
{
    for (int x = 0; x < width; ++x, to += 3, from += 3)
    {
        const float b = from[0], g = from[1], r = from[2];
        const float y = 0.114f * b + 0.587f * g + 0.299f * r;
        to[0] = NearestSample<T>(y);
        to[1] = NearestSample<T>((b - y) * (1.0f / 1.772f) + kHalf<T>);
        to[2] = NearestSample<T>((r - y) * (1.0f / 1.402f) + kHalf<T>);
    }
}

template <typename T>
static void YuvRowToRgb(T* to, const T* from, int width)
{
    for (int x = 0; x < width; ++x, to += 3, from += 3)
    {
        const float y = from[0], u = from[1] - kHalf<T>, v = from[2] - kHalf<T>;
        to[0] = NearestSample<T>(y + 1.772f * u);
        to[1] =
            NearestSample<T>(y - (0.114f * 1.772f / 0.587f) * u - (0.299f * 1.402f / 0.587f) * v);
        to[2] = NearestSample<T>(y + 1.402f * v);
    }
}

template <typename RowFn8, typename RowFn16>
static bool ForRows(SBxPicBuf* dst, const SBxPicBuf& src, RowFn8 row8, RowFn16 row16)
{
    if (src.components != 3 || (src.bitsPerComponent != 8 && src.bitsPerComponent != 16))
        return false;
    for (int y = 0; y < src.height; ++y)
    {
        if (src.bitsPerComponent == 8)
            row8(PicRow<uint8_t>(*dst, y), PicRow<const uint8_t>(src, y), src.width);
        else
            row16(PicRow<uint16_t>(*dst, y), PicRow<const uint16_t>(src, y), src.width);
    }
    return true;
}

bool RgbToYuv(SBxPicBuf* dst, const SBxPicBuf& src)
{
    return ForRows(dst, src, RgbRowToYuv<uint8_t>, RgbRowToYuv<uint16_t>);
}

bool YuvToRgb(SBxPicBuf* dst, const SBxPicBuf& src)
{
    return ForRows(dst, src, YuvRowToRgb<uint8_t>, YuvRowToRgb<uint16_t>);
}
