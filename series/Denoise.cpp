// Tiles, colours and strengths of the denoising filter. Colour is filtered as luma and two colour
// differences: colour noise is the uglier and the eye resolves colour less, so the differences are
// shrunk more. Each picture pixel keeps its place in the grid of the pyramid whatever tile it is
// in, and tiles overlap by more than the filter reaches: no seams.

#include "series/Denoise.h"

#include "series/DenoiseNoise.h"
#include "series/DenoisePyramid.h"

#include <algorithm>
#include <cmath>
#include <thread>

constexpr int kTileSide = 1000;
constexpr int kTileOverlap = 100;
// Tiles begin at multiples of this, so that the blocks of all sizes lie at the same places of the
// picture whatever tile they are in: a multiple of every step times its size.
constexpr int kOrigin = 48;
// Mirrored samples around a tile, beyond which the filters' own border rules act.
constexpr int kRim = 32;
static_assert(2 * kRim >= kDenoiseMinSide && kOrigin % kDenoiseGrid == 0, "for one-pixel pictures");

std::vector<CBxRect<int>> DenoiseTiles(int width, int height)
{
    const int columns = (width + kTileSide - 1) / kTileSide;
    const int rows = (height + kTileSide - 1) / kTileSide;
    const int tileWidth = (width + columns - 1) / columns, tileHeight = (height + rows - 1) / rows;
    std::vector<CBxRect<int>> tiles;
    for (int y = 0; y < height; y += tileHeight)
        for (int x = 0; x < width; x += tileWidth)
            tiles.push_back(
                {x, y, std::min(x + tileWidth, width), std::min(y + tileHeight, height)});
    return tiles;
}

CBxRect<int> WidenedTile(const CBxRect<int>& tile, int width, int height)
{
    return {std::max(tile.left - kTileOverlap, 0), std::max(tile.top - kTileOverlap, 0),
            std::min(tile.right + kTileOverlap, width),
            std::min(tile.bottom + kTileOverlap, height)};
}

namespace
{
// The planes of a tile: its widened area with the rim, on the grid of the coarsest level.
struct TilePlanes
{
    CBxRect<int> area;         // of the picture, what is read
    int x = 0, y = 0;          // picture coordinates of the first sample
    int width = 0, height = 0; // multiples of kDenoiseGrid
    FloatPlane plane[3];       // grey, or luma and the two colour differences
};

struct Job
{
    const SBxPicBuf* src;
    SBxPicBuf* dst;
    unsigned threads;
    DenoiseStrength luma, colour;
};
} // namespace

// position is at least -kOrigin.
static int AlignedDown(int position, int grid)
{
    return (position + kOrigin) / grid * grid - kOrigin;
}

// Index within [first, end) after mirroring about both ends.
static int Mirrored(int index, int first, int end)
{
    if (index < first)
        index = 2 * first - index;
    if (index >= end)
        index = 2 * (end - 1) - index;
    return std::clamp(index, first, end - 1);
}

static Outcome AllocateTile(TilePlanes* tile, const CBxRect<int>& area, int components)
{
    tile->area = area;
    tile->x = AlignedDown(area.left - kRim, kOrigin);
    tile->y = AlignedDown(area.top - kRim, kOrigin);
    tile->width = AlignedDown(area.right + kRim + kDenoiseGrid - 1, kDenoiseGrid) - tile->x;
    tile->height = AlignedDown(area.bottom + kRim + kDenoiseGrid - 1, kDenoiseGrid) - tile->y;
    bool failed = false;
    for (int c = 0; c < components; ++c)
    {
        tile->plane[c].reset(VcAllocUnsetPlane(int64_t(tile->width) * tile->height));
        failed = failed || !tile->plane[c];
    }
    return FailedIf(failed);
}

template <typename T>
static void ReadRow(TilePlanes* tile, const SBxPicBuf& src, int y)
{
    const CBxRect<int>& area = tile->area;
    const int64_t offset = int64_t(y) * tile->width;
    const T* row = PicRow<const T>(src, Mirrored(tile->y + y, area.top, area.bottom));
    const int inside = area.left - tile->x, count = area.right - area.left;
    float* luma = tile->plane[0].get() + offset;
    if (src.components == 1)
    {
        for (int x = 0; x < count; ++x)
            luma[inside + x] = float(row[area.left + x]);
    }
    else
    {
        float* blue = tile->plane[1].get() + offset;
        float* red = tile->plane[2].get() + offset;
        const T* from = row + int64_t(area.left) * 3;
        for (int x = inside; x < inside + count; ++x, from += 3)
        {
            const float b = from[0], g = from[1], r = from[2];
            const float grey = 0.114f * b + 0.587f * g + 0.299f * r;
            luma[x] = grey;
            blue[x] = b - grey;
            red[x] = r - grey;
        }
    }
    for (int c = 0; c < src.components; ++c)
    {
        float* plane = tile->plane[c].get() + offset;
        const auto mirror = [&](int x)
        { plane[x - tile->x] = plane[Mirrored(x, area.left, area.right) - tile->x]; };
        for (int x = tile->x; x < area.left; ++x)
            mirror(x);
        for (int x = area.right; x < tile->x + tile->width; ++x)
            mirror(x);
    }
}

template <typename T>
static void WriteRow(SBxPicBuf* dst, const TilePlanes& tile, const CBxRect<int>& own, int y)
{
    const int64_t offset = int64_t(y - tile.y) * tile.width + own.left - tile.x;
    const float* luma = tile.plane[0].get() + offset;
    T* to = PicRow<T>(*dst, y) + int64_t(own.left) * dst->components;
    const int count = own.right - own.left;
    if (dst->components == 1)
    {
        for (int x = 0; x < count; ++x)
            to[x] = NearestSample<T>(luma[x]);
        return;
    }
    const float* blue = tile.plane[1].get() + offset;
    const float* red = tile.plane[2].get() + offset;
    for (int x = 0; x < count; ++x, to += 3)
    {
        to[0] = NearestSample<T>(luma[x] + blue[x]);
        to[1] =
            NearestSample<T>(luma[x] - (0.114f / 0.587f) * blue[x] - (0.299f / 0.587f) * red[x]);
        to[2] = NearestSample<T>(luma[x] + red[x]);
    }
}

template <typename T>
static Outcome DenoiseTile(const Job& job, const CBxRect<int>& own, const RunControl& control)
{
    TilePlanes tile;
    DenoisePyramid pyramid;
    const CBxRect<int> area = WidenedTile(own, job.src->width, job.src->height);
    if (AllocateTile(&tile, area, job.src->components) != Outcome::Done ||
        AllocateDenoisePyramid(&pyramid, tile.width, tile.height, job.threads) != Outcome::Done)
        return Outcome::Failed;
    SplitRows(job.threads, tile.height,
              [&](int, int first, int end)
              {
                  for (int y = first; y < end; ++y)
                      ReadRow<T>(&tile, *job.src, y);
              });
    for (int c = 0; c < job.src->components; ++c)
        if (SmoothPlane(&pyramid, tile.plane[c].get(), c == 0 ? job.luma : job.colour, control) !=
            Outcome::Done)
            return Outcome::Cancelled;
    SplitRows(job.threads, own.bottom - own.top,
              [&](int, int first, int end)
              {
                  for (int y = own.top + first; y < own.top + end; ++y)
                      WriteRow<T>(job.dst, tile, own, y);
              });
    return Outcome::Done;
}

// White noise in three channels is 1.4 to 1.65 times as strong in colour differences as in luma.
constexpr double kColourNoise = 1.75;

// In a series the radius grows with the brightening: r = 2 + k * m for a picture that is k times
// brighter (k about 2, 3, 4). Noise was measured in the first of them and has grown alike.
static double NoiseGrowth(double radius, double firstRadius)
{
    return firstRadius > 2.0 ? std::max(radius - 2.0, 0.0) / (firstRadius - 2.0) : 1.0;
}

// How much of what noise measures counts as such, and how much of the original is left in so that
// skin and walls do not look painted: the first grows with the radius and levels off (0.6 at 4,
// 0.85 at 8, 1.1 at 14), the second runs out at 12.
static DenoiseStrength StrengthOf(const double cache[3], double radius, bool colour)
{
    const double first = cache[2] > 0.0 ? cache[2] : radius;
    DenoiseStrength strength = {};
    strength.levels = first < 8.0 ? 3 : 4;
    const double noise = NoiseGrowth(radius, first) * (colour ? kColourNoise : 1.0);
    strength.fine = cache[0] * noise;
    strength.coarse = cache[1] * noise;
    strength.cut = 1.6 * first / (first + 7.0);
    // Overlap costs time and buys smoothness; colour can do with less.
    const int steps[2][kDenoiseLevels] = {{3, 2, 2, 2}, {4, 3, 2, 2}};
    std::copy(steps[colour], steps[colour] + kDenoiseLevels, strength.step);
    strength.share = colour ? 0.0f : float(std::clamp((12.0 - first) / 40.0, 0.0, 0.2));
    return strength;
}

Outcome DenoiseTiled(SBxPicBuf* dst, const SBxPicBuf& src, int radiusX, int radiusY,
                     double strength, double cache[3], unsigned threads, const RunControl& control)
{
    const double radius = 0.5 * (radiusX + radiusY);
    if (cache[0] < 0.0)
    {
        if (EstimateNoise(cache, src) != Outcome::Done)
            return Outcome::Failed;
        cache[2] = radius;
    }
    const double scale = strength * (src.bitsPerComponent == 8 ? 1.0 : 256.0);
    const double noise[3] = {scale * cache[0], scale * cache[1], cache[2]};
    Job job = {};
    job.src = &src;
    job.dst = dst;
    job.threads = threads > 0 ? threads : std::max(1u, std::thread::hardware_concurrency());
    job.luma = StrengthOf(noise, radius, false);
    job.colour = StrengthOf(noise, radius, true);
    if (job.luma.coarse * job.luma.cut <= 0.0)
    {
        CBxPicBufAPI::Copy(dst, src);
        return control.Cancelled() ? Outcome::Cancelled : Outcome::Done;
    }
    for (const CBxRect<int>& tile : DenoiseTiles(src.width, src.height))
    {
        const Outcome outcome = src.bitsPerComponent == 8
                                    ? DenoiseTile<uint8_t>(job, tile, control)
                                    : DenoiseTile<uint16_t>(job, tile, control);
        if (outcome != Outcome::Done)
            return outcome;
    }
    return Outcome::Done;
}
