#pragma once

#include <cstddef>
#include <cstdint>

// The inner loops of resampling: a run of pixels along a row of the result whose places in the
// source lie on a straight line. The tuned loops give the bits of the plain one: the four rows are
// weighed in whole numbers, and the four columns in floats in one fixed order.
//
// This header is seen by a file of tuned loops, so it must stay free of inline functions and of
// standard headers that bring some.

constexpr int kWarpTaps = 4;
constexpr int kWarpPhaseBits = 8;  // places of the filter between two pixels
constexpr int kWarpPlaceBits = 20; // behind the point of a place in the source
constexpr int kWarpDownBits = 12;  // weights of a phase along a column add up to 1 << this

// The filter's weights at one phase; those along a row take the scale of the others back.
struct WarpPhase
{
    int16_t down[kWarpTaps];
    float across[kWarpTaps];
};

struct WarpSource
{
    const uint8_t* data;
    ptrdiff_t stride; // bytes
    int width, height;
    const WarpPhase* phases; // 1 << kWarpPhaseBits of them
};

// Places in 1 / (1 << kWarpPlaceBits) of a pixel, with half a phase added, so that cutting off
// rounds.
struct WarpRun
{
    int64_t x, y;         // of the first pixel
    int64_t stepX, stepY; // from one pixel to the next
    int count;            // at most kWarpRun
};
constexpr int kWarpRun = 16;

using WarpLoop = void (*)(void* out, const WarpSource& source, const WarpRun& run);

// By bits (8, 16) and components (1, 3). The plain ones mirror about the outermost samples whatever
// lies outside of the source; the tuned ones want all places inside: columns [1, width - 5], rows
// [1, height - 3].
struct WarpLoops
{
    WarpLoop loop[2][2];
};
constexpr int kWarpLeft = 1, kWarpRight = 5, kWarpAbove = 1, kWarpBelow = 3;

const WarpLoops& VcPlainWarpLoops();

// Those of the instruction set in use.
const WarpLoops& VcWarpLoops();

// 1 << kWarpPhaseBits.
const WarpPhase* VcWarpPhases();
