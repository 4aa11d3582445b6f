#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

// A float plane is a packed, row-major block of width * height 32-bit floats. Planes come from the
// process heap, zero-filled; null when memory is short. Any thread.
float* VcAllocPlane(int64_t samples);

// The same with undefined contents, for planes that are written as a whole.
float* VcAllocUnsetPlane(int64_t samples);

void VcFreePlane(float* plane);

struct FloatPlaneDeleter
{
    void operator()(float* plane) const { VcFreePlane(plane); }
};
using FloatPlane = std::unique_ptr<float, FloatPlaneDeleter>;
