#pragma once

#include "alignment/Homography.h"

#include "tests/support/TestPictures.h"

#include <functional>
#include <vector>

// Photographs of a scene that is known everywhere, so that a camera can look at it from anywhere.

// Light at a place of the frame that stays, 0 dark and 1 the middle of the scale; the second
// argument asks for places between pixels.
using SceneLight = std::function<double(double x, double y)>;

// Blocks of every size and brightness with soft edges, over a bright and a dark half.
SceneLight BlockScene(CBxSize<int> frame, uint32_t seed);

// The scene through a map (from the frame that stays to this one), with 2^ev times the light, coded
// by the square root, with noise, clipped and rounded to 8 or 16 bits.
TestPicture Photograph(const SceneLight& scene, CBxSize<int> frame, const Homography& map,
                       double ev, uint32_t seed, int components = 3, int bits = 8);

// A turn about the frame's middle in degrees, a scale, a shift and a tilt in pixels of the corners.
struct Motion
{
    double degrees, scale, shiftX, shiftY, tilt;
};
Homography MapOfMotion(const Motion& motion, CBxSize<int> frame);

// Root mean square distance of the two maps over the frame, pixels.
double MapError(const Homography& found, const Homography& meant, CBxSize<int> frame);
