#pragma once

#include "picture/PicBuf.h"

#include <vector>

// The scene that ships with the program: a sitting room, its dark corners, and a summer day
// behind the window, more than 14 stops in one view. It is computed, so the series needs no
// photographs, and every build and every thread count gives the same bytes.

// Scene-referred light: blue, green, red per pixel, rows top-down, proportional to luminance.
struct SampleRadiance
{
    int width, height;
    std::vector<float> light;
};

// Renders the scene; throws std::bad_alloc when memory is short.
SampleRadiance RenderSampleScene(int width, int height, int threads);

// Takes one photograph, as 8-bit sRGB: `stops` is the exposure relative to the middle of the
// series. Light beyond white is cut off, a little noise as of a sensor is added (the same in
// every run, different in every exposure). Fails when the picture cannot be allocated.
[[nodiscard]] bool ExposeSample(SBxPicBuf* picture, const SampleRadiance& scene, int stops);
