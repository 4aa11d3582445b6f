#include "alignment/TileChoice.h"

#include <algorithm>
#include <cmath>

// The tensor is summed over a tile by running sums: a column of sums per place along x, from which
// the row that leaves the tile is taken and to which the one that enters is added. Sums are
// doubles, so that the taking away leaves nothing behind that could be seen.

constexpr int kGridCells = 28;
constexpr double kLeastCellSides = 0.75; // of a tile, on small levels

// Of one pixel: products of its gradient, and whether it counts.
struct TensorSums
{
    double xx = 0, xy = 0, yy = 0, usable = 0;
};

static void Add(TensorSums* sums, const TensorSums& other, double times)
{
    sums->xx += times * other.xx;
    sums->xy += times * other.xy;
    sums->yy += times * other.yy;
    sums->usable += times * other.usable;
}

// By Sobel's operator; pixels at the frame's border have no gradient.
static TensorSums TensorAt(const LumaPlane& plane, int x, int y)
{
    TensorSums tensor;
    if (!IsUnclipped(plane.Row(y)[x]))
        return tensor;
    tensor.usable = 1;
    if (x == 0 || y == 0 || x == plane.width - 1 || y == plane.height - 1)
        return tensor;
    const float* above = plane.Row(y - 1) + x;
    const float* row = plane.Row(y) + x;
    const float* below = plane.Row(y + 1) + x;
    const float gx = above[1] - above[-1] + 2 * (row[1] - row[-1]) + below[1] - below[-1];
    const float gy = below[-1] + 2 * below[0] + below[1] - above[-1] - 2 * above[0] - above[1];
    tensor.xx = double(gx) * gx;
    tensor.xy = double(gx) * gy;
    tensor.yy = double(gy) * gy;
    return tensor;
}

static double SmallerEigenvalue(const TensorSums& t)
{
    const double half = (t.xx - t.yy) / 2;
    return (t.xx + t.yy) / 2 - std::sqrt(half * half + t.xy * t.xy);
}

struct ScoredTile
{
    AlignmentTile tile;
    double score;
};

static int CellCount(int side, double cell)
{
    return std::max(1, int(side / cell));
}

// A tile covers [centre - side / 2, centre + side / 2) along both axes.
std::vector<AlignmentTile> PickTiles(const LumaPlane& plane, int tileSide)
{
    const int width = plane.width, height = plane.height, half = tileSide / 2, margin = half + 2;
    const double cell =
        std::max(double(std::max(width, height)) / kGridCells, tileSide * kLeastCellSides);
    const int across = CellCount(width, cell), down = CellCount(height, cell);
    std::vector<ScoredTile> best(size_t(across) * size_t(down), {{0, 0}, 0.0});
    std::vector<TensorSums> columns(static_cast<size_t>(width));
    const auto addRow = [&](int y, double times)
    {
        for (int x = 0; x < width; ++x)
            Add(&columns[size_t(x)], TensorAt(plane, x, y), times);
    };
    for (int y = 0; y < std::min(tileSide, height); ++y)
        addRow(y, 1);
    for (int y = half; y + half <= height; ++y) // columns hold rows [y - half, y + half)
    {
        TensorSums sums;
        for (int x = 0; x < std::min(tileSide, width); ++x)
            Add(&sums, columns[size_t(x)], 1);
        for (int x = half; x + half <= width; ++x)
        {
            const bool inside =
                x >= margin && y >= margin && x < width - margin && y < height - margin;
            if (inside && sums.usable * 2 >= tileSide * tileSide)
            {
                const size_t place = size_t(int64_t(y) * down / height) * size_t(across) +
                                     size_t(int64_t(x) * across / width);
                const double score = SmallerEigenvalue(sums);
                if (score > best[place].score)
                    best[place] = {{x, y}, score};
            }
            if (x + half < width)
            {
                Add(&sums, columns[size_t(x + half)], 1);
                Add(&sums, columns[size_t(x - half)], -1);
            }
        }
        if (y + half < height)
        {
            addRow(y + half, 1);
            addRow(y - half, -1);
        }
    }
    std::vector<AlignmentTile> tiles;
    for (const ScoredTile& scored : best)
        if (scored.score > tileSide * tileSide) // running sums end in small change, not in zero
            tiles.push_back(scored.tile);
    return tiles;
}
