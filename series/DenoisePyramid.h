#pragma once

#include "base/Outcome.h"
#include "base/ParallelRows.h"
#include "base/RunControl.h"
#include "picture/FloatPlane.h"
#include "series/DenoiseBlocks.h"

// The smoothing of one float plane: its blocks are smoothed at full size and in a Gaussian pyramid,
// where noise is that is too coarse for them, and what the coarser sizes know better goes back
// into the finer ones.

constexpr int kDenoiseLevels = 4; // the most sizes, the full one included
// Planes have sides that are multiples of the grid, and no size is smaller than a block.
constexpr int kDenoiseGrid = 1 << (kDenoiseLevels - 1);
constexpr int kDenoiseMinSide = kBlock * kDenoiseGrid;

struct DenoisePyramid
{
    int width = 0, height = 0; // of the plane
    unsigned threads = 1;
    float kernel[5][5] = {};
    FloatPlane noisy[kDenoiseLevels];  // sizes 1..; size 0 is the caller's plane
    FloatPlane smooth[kDenoiseLevels]; // sizes 0..
    FloatPlane scratch;                // block weights; expanded rows
    FloatPlane blocks;                 // scratch of the block loop, for every thread
};

// Fails when memory is short.
Outcome AllocateDenoisePyramid(DenoisePyramid* pyramid, int width, int height, unsigned threads);

// How one plane is to be smoothed.
struct DenoiseStrength
{
    int levels;               // sizes to smooth, 1..kDenoiseLevels
    int step[kDenoiseLevels]; // from block to block
    double fine, coarse;      // noise to be taken for such, see EstimateNoise; plane's scale
    double cut;               // times the noise: what is taken away of each coefficient
    float share;              // of the original that stays in the result
};

// Smooths the plane in place, or is cancelled.
Outcome SmoothPlane(DenoisePyramid* pyramid, float* plane, const DenoiseStrength& strength,
                    const RunControl& control);

// Calls rowRange(part, first, end) for at most `threads` parts of the rows [0, rows), perhaps at
// once, and waits for all. Parts count from 0.
void SplitRows(unsigned threads, int rows, const LoopBody<int, int, int>& rowRange);
