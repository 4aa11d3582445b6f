#pragma once

#include "picture/PicBuf.h"

#include <cstdint>

// Multi-resolution exposure fusion (Mertens, Kautz and Van Reeth, "Exposure Fusion", 2007) as an
// accumulator: every source is split into a Laplacian pyramid (Burt and Adelson, 1983, generating
// kernel with a = 0.4), every pixel of every level is weighted by local contrast, saturation and
// closeness to a target grey, and the sums of weight and of weight times value are kept. Sources
// come one at a time, so only one needs to be in memory; several accumulators can be filled on
// different threads and merged.
//
// One job: VcInitAccumulator, VcAccumulateImage per source, perhaps VcMergeAccumulator,
// VcComposeResult, VcFreeAccumulator. Sources may still be added after a compose.
//
// Every operation returns true on failure. An accumulator belongs to one thread at a time;
// different accumulators may be filled at once. A call is synchronous: it may use the task pool
// inside, and its result has the same bits whatever the number of threads.

constexpr unsigned kFusionMaxLevels = 7;   // reductions of a large picture
constexpr unsigned kFusionLevelSlots = 11; // entries of the level tables
constexpr unsigned kFusionPlanes = 2 * kFusionLevelSlots;
constexpr int kFusionMinSide = 6; // a smaller picture has no band to fuse

struct VcFusionAccumulator
{
    uint32_t channels; // components of the pictures to come; 3 share their weights, others do not
    uint32_t bitsPerComponent; // 8 or 16
    uint32_t width, height;    // pixels
    uint32_t levels;           // reductions, 0..7; levels + 1 sizes below are used
    uint32_t levelWidth[kFusionLevelSlots], levelHeight[kFusionLevelSlots];
    float kernel[5][5];   // outer product of the generating kernel with itself
    uint32_t exposureMid; // target grey in 8-bit units whatever the depth

    // Per channel: entries 0..10 are the weight sums of each level, 11..21 the weighted sums.
    // Packed float planes owned by the accumulator. With three channels the one weight of a pixel
    // lives in channel 0's planes, and those of channels 1 and 2 stay null.
    float* (*planes)[kFusionPlanes];
};

inline float* WeightPlane(const VcFusionAccumulator& acc, unsigned channel, unsigned level)
{
    return acc.planes[channel][level];
}

inline float* SumPlane(const VcFusionAccumulator& acc, unsigned channel, unsigned level)
{
    return acc.planes[channel][kFusionLevelSlots + level];
}

// Whether pictures of that size can be fused at all: ask before VcInitAccumulator, which takes any.
bool VcFusionAcceptsSize(int width, int height);

// Sets up an empty accumulator for pictures like `geometry` (only its size, components and bits
// are read). Fails when memory is short; everything is released then.
[[nodiscard]] bool VcInitAccumulator(VcFusionAccumulator* acc, const SBxPicBuf& geometry,
                                     unsigned exposureMid);

// Releases the planes; copes with a half-filled accumulator. Always false.
bool VcFreeAccumulator(VcFusionAccumulator* acc);

// Whether the user wants the work to end; asked on the calling thread.
using FusionStop = bool (*)();

// Adds one source. Fails, and adds nothing, when its geometry differs from the accumulator's or
// scratch memory is short. With `stop`, a source of any size ends soon after the wish: that is a
// failure, too, and the sums are worthless then.
[[nodiscard]] bool VcAccumulateImage(VcFusionAccumulator* acc, const SBxPicBuf& picture,
                                     FusionStop stop = nullptr);

// Adds other's sums to acc's. Both must have been set up alike; nothing checks it. Always false.
bool VcMergeAccumulator(VcFusionAccumulator* acc, const VcFusionAccumulator& other);

// Writes the blend of everything added so far. Fails when depth or size differ (the component
// count is not looked at: the caller's picture has at least `channels`) or memory is short.
[[nodiscard]] bool VcComposeResult(SBxPicBuf* picture, const VcFusionAccumulator& acc);
