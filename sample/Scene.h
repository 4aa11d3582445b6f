#pragma once

#include "sample/Math.h"

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

// Where the photographer stands. Like in an architectural photograph the camera is level, so that
// verticals stay vertical, and the view is shifted down instead.
struct SampleCamera
{
    sample::Vec3 eye = {1.0f, 1.32f, -0.95f}; // metres, in the room
    float yaw = -0.030f;                      // turns, to the right
    float roll = 0.0f;                        // turns about the line of sight
};

// Renders the scene; throws std::bad_alloc when memory is short.
SampleRadiance RenderSampleScene(int width, int height, const SampleCamera& camera = {});
