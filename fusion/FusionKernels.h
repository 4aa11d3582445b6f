#pragma once

#include <cstdint>

// The hot loops of fusion, one set per instruction set. Every set passes the same tests; the tuned
// sets are one source compiled with different flags and give the same bits, since nothing is
// contracted or reordered. The plain set is the obvious loop that the tuned ones are measured by.
//
// This header is seen by files with instruction-set flags of their own, so it must stay free of
// inline functions and of standard headers that bring some.

// How the samples of a level are stored. The finest level is never turned into floats as a whole:
// its planes are read as the picture has them.
enum FusionSamples
{
    kFusionFloats,
    kFusionBytes,
    kFusionWords,
    kFusionSampleKinds,
};

// A plane of one level, packed rows.
struct FusionPlane
{
    const void* samples; // of the kind that the routine is made for
    int width, height;
};

// One level of one source, as the weighting sees it. Its values are the band, gauss minus the
// expanded coarse level, made row by row and never stored.
struct FusionBandJob
{
    float mid;              // target grey on the scale of the samples
    float spread;           // sigma squared of the well-exposedness
    FusionPlane gauss[3];   // Gaussian planes: what the weight is made from
    const float* coarse[3]; // the next level
    int coarseWidth, coarseHeight;
    const float (*kernel)[5];
    float* sums[3]; // weighted sums
    float* weights; // weight sums, common to all channels
    int additions;  // how often each pixel is added: 1 or 2
};

struct FusionKernels
{
    // A row of three-component samples to a row of each component (bytes and words).
    void (*splitRow[kFusionSampleKinds])(void* const to[3], const void* from, int width);

    // Three rows of floats, clamped and truncated, to such a row.
    void (*joinRow[kFusionSampleKinds])(void* to, const float* const from[3], int width);

    // Rows [firstRow, endRow) of VcReduce; see FusionFilter.h.
    void (*reduceRows[kFusionSampleKinds])(float* dst, int dstW, int dstH, const FusionPlane* src,
                                           const float kernel[5][5], int firstRow, int endRow);

    // Columns [firstColumn, endColumn) of one row of VcExpand into out, which is that row.
    void (*expandRow)(float* out, int dstW, int dstH, const FusionPlane* src,
                      const float kernel[5][5], int row, int firstColumn, int endColumn);

    // out[i] += sums[i] / weights[i], where there is a weight.
    void (*addRatios)(float* out, const float* sums, const float* weights, int count);

    // Weights and adds the columns [firstColumn, endColumn) of one row.
    void (*weigh1[kFusionSampleKinds])(const FusionBandJob* job, int row, int firstColumn,
                                       int endColumn);
    void (*weigh3[kFusionSampleKinds])(const FusionBandJob* job, int row, int firstColumn,
                                       int endColumn);
};

// Those of the instruction set in use.
const FusionKernels& VcFusionKernels();
