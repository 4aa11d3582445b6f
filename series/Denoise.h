#pragma once

#include "base/Outcome.h"
#include "base/RunControl.h"
#include "picture/PicBuf.h"

#include <vector>

// Removes noise and keeps edges: dst becomes a smoothed src. Both have the same geometry, 1 or 3
// components, 8 or 16 bits, and are different pictures; dst must hold what is to be kept of it
// when the run is stopped, since only finished tiles are written.
//
// Overlapping 8 x 8 blocks are shrunk in their cosine transform, at full size and in a pyramid, so
// the cost does not depend on the radius. A larger radius takes away more of what may be noise,
// and coarser noise; 0 just copies. The two radii are meant to be equal, their mean counts.
// Strength 1 is the usual one and scales the noise.
//
// The cache carries the noise of a series: when cache[0] is negative it is estimated from src and
// stored in cache[0] and cache[1] (see EstimateNoise), the radius in cache[2]. Later pictures of
// the series are brighter and come with a larger radius; their noise is taken to have grown as
// radius - 2 has. A caller who knows the noise of this very picture sets cache[2] to the radius.
//
// At most `threads` threads work (0: as many as there are processors), and the result has the same
// bits whatever their number. The calling thread polls control.cancelled several times a tile.
// Fails when memory is short.
Outcome DenoiseTiled(SBxPicBuf* dst, const SBxPicBuf& src, int radiusX, int radiusY,
                     double strength, double cache[3], unsigned threads, const RunControl& control);

// The areas of the tiles, row by row: one for a picture below 1000 pixels both ways, otherwise
// about 1000 x 1000 each. A tile is filtered with 100 pixels more on every side where the picture
// has them, which is more than the filter reaches in all but name.
std::vector<CBxRect<int>> DenoiseTiles(int width, int height);
CBxRect<int> WidenedTile(const CBxRect<int>& tile, int width, int height);
