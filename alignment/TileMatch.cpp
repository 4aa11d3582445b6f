#include "alignment/TileMatch.h"

#include "base/ParallelRows.h"

#include <algorithm>
#include <cmath>

// The moving frame around a tile is sampled once, through the map that is known so far; then the
// tile is laid over each whole shift of that window. The correlation of the samples that count in
// both is made from six sums of products of planes that are prepared once per tile and per window.
// Sums run in four lanes, in an order that the compiler may turn into vectors but not change.

constexpr int kMostReach = 4;
constexpr int kWindowSide = kTileSide + 2 * kMostReach;
constexpr int kLanes = 4;
constexpr float kLeastShare = 0.4f;    // of a tile's samples that must count in both
constexpr float kLeastVariance = 0.6f; // grey levels squared: below it is noise

// A square of samples with its products by the mask; values are taken from a grey in its midst, so
// that squares stay small beside the differences that matter.
template <int kSide>
struct MaskedSquare
{
    float mask[kSide][kSide], value[kSide][kSide], square[kSide][kSide];

    void Set(int y, int x, float luma, float middle)
    {
        const bool counts = IsUnclipped(luma);
        const float v = counts ? luma - middle : 0.0f;
        mask[y][x] = counts ? 1.0f : 0.0f;
        value[y][x] = v;
        square[y][x] = v * v;
    }
};

struct Tile
{
    MaskedSquare<kTileSide> samples;
    int side;
    float middle;
};

static void TakeTile(Tile* tile, const LumaPlane& plane, const AlignmentTile& place, int side)
{
    const int left = place.x - side / 2, top = place.y - side / 2;
    tile->side = side;
    tile->middle = plane.Row(place.y)[place.x];
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            tile->samples.Set(y, x, plane.Row(top + y)[left + x], tile->middle);
}

// Bilinear; outside of the frame there is black, which does not count.
static float SampleAt(const LumaPlane& plane, double x, double y)
{
    const double left = std::floor(x), top = std::floor(y);
    if (!(left >= 0 && top >= 0 && left + 1 < plane.width && top + 1 < plane.height))
        return 0;
    const float* upper = plane.Row(int(top)) + int(left);
    const float* lower = upper + plane.width;
    const float fx = float(x - left), fy = float(y - top);
    const float above = upper[0] + fx * (upper[1] - upper[0]);
    const float below = lower[0] + fx * (lower[1] - lower[0]);
    return above + fy * (below - above);
}

using Window = MaskedSquare<kWindowSide>;

static void TakeWindow(Window* window, const LumaPlane& plane, const AlignmentTile& place,
                       const Homography& map, int side, float middle)
{
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
        {
            const CBxPoint<double> at =
                MapPoint(map, place.x + x - side / 2, place.y + y - side / 2);
            window->Set(y, x, SampleAt(plane, at.x, at.y), middle);
        }
}

struct LaneSum
{
    float lane[kLanes] = {};

    void Add(const float* a, const float* b)
    {
        for (int i = 0; i < kLanes; ++i)
            lane[i] += a[i] * b[i];
    }
    float Total() const { return (lane[0] + lane[1]) + (lane[2] + lane[3]); }
};

// Of the tile and the part of the window that begins at (shiftX, shiftY).
static float CorrelationAt(const Tile& tile, const Window& window, int shiftX, int shiftY)
{
    const MaskedSquare<kTileSide>& t = tile.samples;
    LaneSum count, sumT, sumW, sumTT, sumWW, sumTW;
    for (int y = 0; y < tile.side; ++y)
    {
        const float* mask = window.mask[shiftY + y] + shiftX;
        const float* value = window.value[shiftY + y] + shiftX;
        const float* square = window.square[shiftY + y] + shiftX;
        for (int x = 0; x < tile.side; x += kLanes)
        {
            count.Add(t.mask[y] + x, mask + x);
            sumT.Add(t.value[y] + x, mask + x);
            sumTT.Add(t.square[y] + x, mask + x);
            sumW.Add(t.mask[y] + x, value + x);
            sumWW.Add(t.mask[y] + x, square + x);
            sumTW.Add(t.value[y] + x, value + x);
        }
    }
    const float n = count.Total();
    if (n < kLeastShare * float(tile.side * tile.side))
        return kNoCorrelation;
    const float meanT = sumT.Total() / n, meanW = sumW.Total() / n;
    const float varianceT = sumTT.Total() / n - meanT * meanT;
    const float varianceW = sumWW.Total() / n - meanW * meanW;
    if (varianceT < kLeastVariance || varianceW < kLeastVariance)
        return kNoCorrelation;
    return (sumTW.Total() / n - meanT * meanW) / std::sqrt(varianceT * varianceW);
}

// The top of the parabola through the nine correlations about the highest one, by least squares.
// False when the surface does not fall off to all sides.
static bool PeakOf(CBxPoint<double>* offset, const float q[3][3])
{
    double gx = 0, gy = 0, hxx = 0, hyy = 0;
    for (int i = 0; i < 3; ++i)
    {
        gx += (double(q[i][2]) - q[i][0]) / 6;
        gy += (double(q[2][i]) - q[0][i]) / 6;
        hxx += (double(q[i][2]) - 2.0 * q[i][1] + q[i][0]) / 3;
        hyy += (double(q[2][i]) - 2.0 * q[1][i] + q[0][i]) / 3;
    }
    const double hxy = (double(q[2][2]) - q[2][0] - q[0][2] + q[0][0]) / 4;
    const double determinant = hxx * hyy - hxy * hxy;
    if (hxx >= 0 || !(determinant > 1e-12))
        return false;
    constexpr double kMost = 0.75; // pixels; farther away the parabola knows nothing
    offset->x = std::clamp(-(hyy * gx - hxy * gy) / determinant, -kMost, kMost);
    offset->y = std::clamp(-(hxx * gy - hxy * gx) / determinant, -kMost, kMost);
    return true;
}

// The shift of the highest correlation, relative to the tile's expected place.
static bool FindPeak(CBxPoint<double>* shift, float* correlation, const Tile& tile,
                     const Window& window, int reach)
{
    constexpr int kMostShifts = 2 * kMostReach + 1;
    float surface[kMostShifts][kMostShifts] = {};
    int bestX = 0, bestY = 0;
    for (int y = 0; y <= 2 * reach; ++y)
        for (int x = 0; x <= 2 * reach; ++x)
        {
            surface[y][x] = CorrelationAt(tile, window, x, y);
            if (surface[y][x] > surface[bestY][bestX])
                bestY = y, bestX = x;
        }
    *correlation = surface[bestY][bestX];
    if (bestX == 0 || bestY == 0 || bestX == 2 * reach || bestY == 2 * reach)
        return false;
    float around[3][3];
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 3; ++x)
        {
            around[y][x] = surface[bestY + y - 1][bestX + x - 1];
            if (around[y][x] == kNoCorrelation)
                return false;
        }
    if (!PeakOf(shift, around))
        return false;
    shift->x += bestX - reach;
    shift->y += bestY - reach;
    return true;
}

// Tiles are few and large pieces of work: half a dozen at a time is worth a task.
static void ForTiles(size_t count, const LoopBody<int, int>& body)
{
    constexpr int kSamplesPerTile = 1 << 12;
    VcParallelRows(int(count), kSamplesPerTile, body);
}

std::vector<TileMatch> MatchTiles(const LumaPlane& stays, const LumaPlane& moving,
                                  const std::vector<AlignmentTile>& tiles, int tileSide,
                                  const Homography& guess, int reach)
{
    std::vector<TileMatch> matches(tiles.size());
    ForTiles(tiles.size(),
             [&](int first, int end)
             {
                 Tile tile;
                 Window window;
                 for (int i = first; i < end; ++i)
                 {
                     const AlignmentTile& place = tiles[size_t(i)];
                     TileMatch& match = matches[size_t(i)];
                     TakeTile(&tile, stays, place, tileSide);
                     TakeWindow(&window, moving, place, guess, tileSide + 2 * reach, tile.middle);
                     CBxPoint<double> shift = {0, 0};
                     match.found = FindPeak(&shift, &match.correlation, tile, window, reach);
                     match.from = {place.x - 0.5, place.y - 0.5};
                     match.to = MapPoint(guess, match.from.x + shift.x, match.from.y + shift.y);
                 }
             });
    return matches;
}

std::vector<float> TileCorrelations(const LumaPlane& stays, const LumaPlane& moving,
                                    const std::vector<AlignmentTile>& tiles, int tileSide,
                                    const Homography& map)
{
    std::vector<float> correlations(tiles.size());
    ForTiles(tiles.size(),
             [&](int first, int end)
             {
                 Tile tile;
                 Window window;
                 for (int i = first; i < end; ++i)
                 {
                     TakeTile(&tile, stays, tiles[size_t(i)], tileSide);
                     TakeWindow(&window, moving, tiles[size_t(i)], map, tileSide, tile.middle);
                     correlations[size_t(i)] = CorrelationAt(tile, window, 0, 0);
                 }
             });
    return correlations;
}
