#pragma once

// The hot loop of denoising, one per instruction set. Seen by files with flags of their own: no
// inline functions and no standard headers here.

constexpr int kBlock = 8; // side of a block, samples

// One plane to be filtered in overlapping blocks. Packed rows of `width` floats; sides are at
// least a block.
struct DenoiseBlockJob
{
    const float* src;
    float* dst;
    float* weights; // scratch: as large as the plane
    int width, height;
    int step; // from block to block, both ways; 1..8

    // For each coefficient, [horizontal][vertical] frequency: the energy to take from it, and the
    // inverse of the energy that noise has there, divided by the number of coefficients. Both are
    // 0 where nothing is to be taken.
    float cut[kBlock * kBlock], inverseNoise[kBlock * kBlock];
};

// Floats of scratch that a row range wants, for every column of the plane.
constexpr int kScratchPerColumn = 25;

// Filters the rows [first, end) of the plane. Every row is summed up in the same order, so ranges
// may be cut anywhere.
using DenoiseBlockFn = void (*)(const DenoiseBlockJob* job, int first, int end, float* scratch);

extern const DenoiseBlockFn kDenoiseBlocksSse2, kDenoiseBlocksAvx2;
