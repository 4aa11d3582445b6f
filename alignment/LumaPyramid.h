#pragma once

#include "picture/PicBuf.h"

#include <cstddef>
#include <vector>

// A picture's brightness in halving sizes: what registration looks at.

// Packed rows of floats on the scale of 0 .. 255 whatever the picture's depth.
struct LumaPlane
{
    int width = 0, height = 0;
    std::vector<float> samples;

    float* Row(int y) { return samples.data() + size_t(y) * size_t(width); }
    const float* Row(int y) const { return samples.data() + size_t(y) * size_t(width); }
};

// Darker or brighter samples may have been cut off by the camera and prove nothing.
constexpr float kDarkestLuma = 4, kBrightestLuma = 250;

inline bool IsUnclipped(float luma)
{
    return luma > kDarkestLuma && luma < kBrightestLuma;
}

// Each level keeps every second sample of the smoothed one before, so its pixel (x, y) lies where
// (2x, 2y) does there.
struct LumaPyramid
{
    int halvings = 0; // between the picture and levels[0]
    std::vector<LumaPlane> levels;
};

// Halves a picture of 8 or 16 bits, 1 or 3 components, until its longer side is at most
// `largestSide`; from there on every level is kept, down to the last one whose shorter side is at
// least `smallestSide`. The picture itself is never held as floats when it is halved at all. Rows
// are split over the task pool; throws std::bad_alloc.
LumaPyramid BuildLumaPyramid(const SBxPicBuf& picture, int largestSide, int smallestSide);
