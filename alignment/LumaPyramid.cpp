#include "alignment/LumaPyramid.h"

#include "base/ParallelRows.h"

#include <algorithm>
#include <cstdlib>

// Halving smooths by the binomial 1 4 6 4 1 along both axes. A range of rows is made from a ring of
// source rows that have been halved along x already, so that every source row is read, and turned
// into luma, about once.

// Row `y` of the source as luma, into `out`.
using RowSource = LoopBody<float*, int>;

template <typename T>
static void LumaRow(float* out, const SBxPicBuf& picture, int y, float scale)
{
    const T* row = PicRow<T>(picture, y);
    if (picture.components == 1)
        for (int x = 0; x < picture.width; ++x)
            out[x] = float(row[x]) * scale;
    else
        for (int x = 0; x < picture.width; ++x, row += 3)
            out[x] =
                (0.114f * float(row[0]) + 0.587f * float(row[1]) + 0.299f * float(row[2])) * scale;
}

static void LumaRow(float* out, const SBxPicBuf& picture, int y)
{
    if (picture.bitsPerComponent == 8)
        LumaRow<uint8_t>(out, picture, y, 1.0f);
    else
        LumaRow<uint16_t>(out, picture, y, 1.0f / 257.0f);
}

// Borders mirror about the outermost sample.
static int Mirrored(int i, int count)
{
    if (i < 0)
        i = -i;
    return i < count ? i : 2 * (count - 1) - i;
}

static void HalveRow(float* out, const float* row, int outWidth, int width)
{
    constexpr float kOuter = 1.0f / 16, kInner = 4.0f / 16, kMiddle = 6.0f / 16;
    for (int x = 0; x < outWidth; ++x)
    {
        const int c = 2 * x;
        const bool inside = c >= 2 && c + 2 < width;
        const float a = row[inside ? c - 2 : Mirrored(c - 2, width)];
        const float b = row[inside ? c - 1 : Mirrored(c - 1, width)];
        const float d = row[inside ? c + 1 : Mirrored(c + 1, width)];
        const float e = row[inside ? c + 2 : Mirrored(c + 2, width)];
        out[x] = kOuter * (a + e) + kInner * (b + d) + kMiddle * row[c];
    }
}

static LumaPlane HalvedPlane(int width, int height, const RowSource& source)
{
    constexpr int kTaps = 5;
    LumaPlane half;
    half.width = width / 2;
    half.height = height / 2;
    half.samples.resize(size_t(half.width) * size_t(half.height));
    VcParallelRows(half.height, 4 * half.width,
                   [&](int first, int end)
                   {
                       std::vector<float> whole(static_cast<size_t>(width));
                       std::vector<float> ring[kTaps];
                       int held[kTaps] = {-1, -1, -1, -1, -1};
                       for (std::vector<float>& row : ring)
                           row.resize(size_t(half.width));
                       for (int y = first; y < end; ++y)
                       {
                           const float* rows[kTaps];
                           for (int tap = 0; tap < kTaps; ++tap)
                           {
                               const int from = Mirrored(2 * y + tap - 2, height),
                                         place = from % kTaps;
                               if (held[place] != from)
                               {
                                   source(whole.data(), from);
                                   HalveRow(ring[place].data(), whole.data(), half.width, width);
                                   held[place] = from;
                               }
                               rows[tap] = ring[place].data();
                           }
                           float* out = half.Row(y);
                           for (int x = 0; x < half.width; ++x)
                               out[x] = 0.0625f * (rows[0][x] + rows[4][x]) +
                                        0.25f * (rows[1][x] + rows[3][x]) + 0.375f * rows[2][x];
                       }
                   });
    return half;
}

static LumaPlane HalfOf(const LumaPlane& plane)
{
    return HalvedPlane(plane.width, plane.height,
                       [&](float* out, int y) { std::copy_n(plane.Row(y), plane.width, out); });
}

static LumaPlane WholePlane(const SBxPicBuf& picture)
{
    LumaPlane plane;
    plane.width = picture.width;
    plane.height = picture.height;
    plane.samples.resize(size_t(plane.width) * size_t(plane.height));
    VcParallelRows(plane.height, plane.width,
                   [&](int first, int end)
                   {
                       for (int y = first; y < end; ++y)
                           LumaRow(plane.Row(y), picture, y);
                   });
    return plane;
}

LumaPyramid BuildLumaPyramid(const SBxPicBuf& picture, int largestSide, int smallestSide)
{
    LumaPyramid pyramid;
    LumaPlane plane;
    if (std::max(picture.width, picture.height) <= largestSide)
        plane = WholePlane(picture);
    else
    {
        plane = HalvedPlane(picture.width, picture.height,
                            [&](float* out, int y) { LumaRow(out, picture, y); });
        pyramid.halvings = 1;
        for (; std::max(plane.width, plane.height) > largestSide; ++pyramid.halvings)
            plane = HalfOf(plane);
    }
    pyramid.levels.push_back(std::move(plane));
    while (std::min(pyramid.levels.back().width, pyramid.levels.back().height) / 2 >= smallestSide)
        pyramid.levels.push_back(HalfOf(pyramid.levels.back()));
    return pyramid;
}
