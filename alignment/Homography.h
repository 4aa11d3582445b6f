#pragma once

#include "base/Geometry.h"

// A projective map of the plane, row by row:
//   x' = (m0 x + m1 y + m2) / (m6 x + m7 y + m8),  y' = (m3 x + m4 y + m5) / (same)
// Coordinates are those of pixel centres: the middle of the first pixel is (0, 0). In this folder a
// map leads from the frame that stays to the frame that is brought into register.
struct Homography
{
    double m[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
};

CBxPoint<double> MapPoint(const Homography& map, double x, double y);

// First `inner`, then `outer`.
Homography Compose(const Homography& outer, const Homography& inner);

// The way back. A map that cannot be turned around gives the identity.
Homography Inverse(const Homography& map);

// The same map on grids that are `times` as fine: pyramids keep every second sample, so centres
// multiply.
Homography OnFinerGrid(const Homography& map, double times);

Homography Translation(double x, double y);

// How far the map moves the corner of a frame that it moves farthest, in pixels.
double LargestCornerMotion(const Homography& map, CBxSize<int> frame);

// Root mean square of how far it moves the pixels of a frame.
double MeanMotion(const Homography& map, CBxSize<int> frame);
