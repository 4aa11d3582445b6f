#pragma once

#include <cstdint>

// The hot loops of fusion, one set per instruction set. Every set passes the same tests; the tuned
// sets are one source compiled with different flags and give the same bits, since nothing is
// contracted or reordered. The plain set is the obvious loop that the tuned ones are measured by.
//
// This header is seen by files with instruction-set flags of their own, so it must stay free of
// inline functions and of standard headers that bring some.

// One level of one source, as the weighting sees it. Packed planes of width * height.
struct FusionBandJob
{
    float mid;             // target grey on the scale of the samples
    float spread;          // sigma squared of the well-exposedness
    const float* gauss[3]; // Gaussian planes: what the weight is made from
    const float* band[3];  // values to add
    float* sums[3];        // weighted sums
    float* weights;        // weight sums, common to all channels
    int width, height;     // both at least 5
    int additions;         // how often each pixel is added: 1 or 2
};

struct FusionKernels
{
    const char* name;

    // Rows [firstRow, endRow) of VcReduce and VcExpand; see FusionFilter.h.
    void (*reduceRows)(float* dst, const float* src, int dstW, int dstH, int srcW, int srcH,
                       const float kernel[5][5], int firstRow, int endRow);
    void (*expandRows)(float* dst, const float* src, int dstW, int dstH, int srcW, int srcH,
                       const float kernel[5][5], int firstRow, int endRow);

    // Weights and adds the columns [firstColumn, endColumn) of one row.
    void (*weigh1)(const FusionBandJob* job, int row, int firstColumn, int endColumn);
    void (*weigh3)(const FusionBandJob* job, int row, int firstColumn, int endColumn);
};

enum class FusionVariant
{
    Plain,
    Sse2,
    Avx2,
    Avx512,
};
constexpr int kFusionVariants = 4;

// The set of a variant, or null when this processor cannot run it.
const FusionKernels* VcFusionKernelsOf(FusionVariant variant);

// The set in use: the best that the processor can run, unless one was forced.
const FusionKernels& VcFusionKernels();

// Forces a set (tests, benchmarks); null goes back to the best one. Not while a fusion runs.
void VcForceFusionKernels(const FusionKernels* kernels);
