#pragma once

#include "alignment/Homography.h"
#include "alignment/LumaPyramid.h"
#include "alignment/TileChoice.h"

#include <vector>

// Tiles of one frame, found again in another by normalised correlation, which does not mind another
// exposure. Samples that are clipped in either frame do not count. All throw std::bad_alloc.

// Pixel centres of the level that was searched.
struct TileMatch
{
    CBxPoint<double> from, to; // in the frame that stays, and in the other
    float correlation;         // -1 .. 1
    bool found;                // a peak inside of the search, not at its edge
};

// Looks for each tile up to `reach` pixels around the place where `guess` expects it, to a fraction
// of a pixel. One match per tile, in their order; tiles are spread over the task pool.
std::vector<TileMatch> MatchTiles(const LumaPlane& stays, const LumaPlane& moving,
                                  const std::vector<AlignmentTile>& tiles, int tileSide,
                                  const Homography& guess, int reach);

// Correlation of each tile at the very place that the map gives; kNoCorrelation where too little of
// it can be compared.
constexpr float kNoCorrelation = -2;
std::vector<float> TileCorrelations(const LumaPlane& stays, const LumaPlane& moving,
                                    const std::vector<AlignmentTile>& tiles, int tileSide,
                                    const Homography& map);
