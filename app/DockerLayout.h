#pragma once

#include "base/Geometry.h"

#include <vector>

// Where the docker puts its windows: stacked top-down in order, each with its own size, one pixel
// from the docker's left edge.
struct DockerLayout
{
    int left;  // of the docker in the frame's client area
    int width; // the widest window plus one; one when there is none
    std::vector<CBxPoint<int>> origins;
};

DockerLayout LayOutDocked(const std::vector<CBxSize<int>>& windows, int frameClientWidth);
