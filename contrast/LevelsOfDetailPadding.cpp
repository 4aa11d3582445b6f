// The way into and out of the pyramid: room around the picture, and floats to samples.

#include "contrast/LevelsOfDetailPadding.h"

#include "base/ParallelRows.h"
#include "contrast/LevelsOfDetail.h"

#include <algorithm>
#include <cstring>

static int PaddedSide(int side, int levels)
{
    const int block = 1 << levels;
    return ((side - 1) / block + 5) * block;
}

DetailPadding DetailPaddingOf(int width, int height)
{
    DetailPadding padding;
    padding.levels = CountDetailLevels(width, height);
    padding.width = PaddedSide(width, padding.levels);
    padding.height = PaddedSide(height, padding.levels);
    padding.x = (padding.width - width) / 2;
    padding.y = (padding.height - height) / 2;
    return padding;
}

template <typename T>
static void ReplicateBorder(SBxPicBuf* padded, int left, int top, int width, int height)
{
    const int n = padded->components;
    for (int y = top; y < top + height; ++y)
    {
        T* row = PicRow<T>(*padded, y);
        for (int i = left * n - 1; i >= 0; --i)
            row[i] = row[i + n];
        for (int i = (left + width) * n; i < padded->width * n; ++i)
            row[i] = row[i - n];
    }
    const size_t rowBytes = size_t(padded->width) * size_t(n) * sizeof(T);
    for (int y = 0; y < top; ++y)
        std::memcpy(PicRow<T>(*padded, y), PicRow<T>(*padded, top), rowBytes);
    for (int y = top + height; y < padded->height; ++y)
        std::memcpy(PicRow<T>(*padded, y), PicRow<T>(*padded, top + height - 1), rowBytes);
}

void ReplicateBorder8(SBxPicBuf* padded, int x, int y, int width, int height)
{
    ReplicateBorder<uint8_t>(padded, x, y, width, height);
}

void ReplicateBorder16(SBxPicBuf* padded, int x, int y, int width, int height)
{
    ReplicateBorder<uint16_t>(padded, x, y, width, height);
}

// value = (v - offset) * scale, before rounding.
struct ValueRange
{
    float offset, scale;
};

static ValueRange StretchedRange(const float* plane, int64_t samples, float top)
{
    const auto ends = std::minmax_element(plane, plane + samples);
    const float span = *ends.second - *ends.first;
    return {*ends.first, span > 0.0f ? top / span : 0.0f};
}

template <typename T>
static void ToIntegerRows(SBxPicBuf* picture, int component, const float* plane,
                          const CBxRect<int>& rect, const ValueRange& range)
{
    const int step = picture->components;
    const auto rows = [&](int first, int end)
    {
        for (int y = rect.top + first; y < rect.top + end; ++y)
        {
            const float* from = plane + int64_t(y) * picture->width;
            T* to = PicRow<T>(*picture, y) + component;
            for (int x = rect.left; x < rect.right; ++x)
                to[x * step] = NearestSample<T>((from[x] - range.offset) * range.scale);
        }
    };
    VcParallelRows(rect.bottom - rect.top, rect.right - rect.left, rows);
}

template <typename T>
static void ToInteger(SBxPicBuf* picture, int component, const float* plane, bool autoStretch)
{
    constexpr float top = float((1u << (8 * sizeof(T))) - 1);
    const int64_t samples = int64_t(picture->width) * picture->height;
    const ValueRange range =
        autoStretch ? StretchedRange(plane, samples, top) : ValueRange{0.0f, 1.0f};
    ToIntegerRows<T>(picture, component, plane, {0, 0, picture->width, picture->height}, range);
}

void ToInteger8(SBxPicBuf* picture, int component, const float* plane, bool autoStretch)
{
    ToInteger<uint8_t>(picture, component, plane, autoStretch);
}

void ToInteger16(SBxPicBuf* picture, int component, const float* plane, bool autoStretch)
{
    ToInteger<uint16_t>(picture, component, plane, autoStretch);
}

void ToIntegerRect(SBxPicBuf* picture, int component, const float* plane, const CBxRect<int>& rect)
{
    if (picture->bitsPerComponent == 8)
        ToIntegerRows<uint8_t>(picture, component, plane, rect, {0.0f, 1.0f});
    else
        ToIntegerRows<uint16_t>(picture, component, plane, rect, {0.0f, 1.0f});
}
