#pragma once

#include "alignment/LumaPyramid.h"

#include <vector>

// Small square tiles of a frame that are worth looking for in another.

constexpr int kTileSide = 20;      // pixels of a level
constexpr int kSmallTileSide = 16; // on levels of less than 96 pixels

// A tile's centre: the corner of four pixels of its level, of which (x, y) is the lower right one.
struct AlignmentTile
{
    int x, y;
};

// The best textured tile of each cell of a grid of 28 cells along the longer side, by the smaller
// eigenvalue of the structure tensor (Shi and Tomasi, "Good features to track", 1994): an edge says
// nothing along itself. Tiles that are half clipped, or without texture, are left out. Throws
// std::bad_alloc.
std::vector<AlignmentTile> PickTiles(const LumaPlane& plane, int tileSide);
