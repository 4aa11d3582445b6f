// Takes sources apart into Laplacian pyramids and weights them, and puts the blend together again.
//
// Only the Gaussian levels above the finest are ever stored: the finest is read from the source's
// own samples, and a band exists for one piece of a row at a time, between its making and its
// adding. Putting together keeps the level it comes from and the one it makes; the finest goes
// straight into the picture.

#include "fusion/FusionAccumulator.h"
#include "fusion/FusionFilter.h"
#include "fusion/FusionKernels.h"
#include "fusion/FusionThreads.h"
#include "fusion/FusionWeights.h"
#include "picture/FloatPlane.h"
#include "picture/ShortMemory.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace
{

constexpr int kMaxPlanes = 3;

struct LevelSize
{
    int width, height;
};

// Gaussian levels 1.. of the planes at hand.
struct Scratch
{
    FloatPlane gauss[kMaxPlanes][kFusionLevelSlots];
};

} // namespace

static LevelSize SizeOf(const VcFusionAccumulator& acc, unsigned level)
{
    return {int(acc.levelWidth[level]), int(acc.levelHeight[level])};
}

static bool CarriesBand(LevelSize size)
{
    return size.width >= 5 && size.height >= 5;
}

// With undefined contents.
static FloatPlane PlaneOf(LevelSize size)
{
    return FloatPlane(VcAllocUnsetPlane(int64_t(size.width) * size.height));
}

// A picture without any reduction would have its finest level as its coarsest; that level is left
// at zero then, and such pictures are refused by whoever asks for fusions.
static bool AllocateScratch(Scratch* scratch, const VcFusionAccumulator& acc, int planes)
{
    for (int c = 0; c < planes; ++c)
        for (unsigned k = acc.levels > 0 ? 1 : 0; k <= acc.levels; ++k)
        {
            const LevelSize size = SizeOf(acc, k);
            FloatPlane& plane = scratch->gauss[c][k];
            plane = PlaneOf(size);
            if (!plane)
                return true;
            if (k == 0 || !CarriesBand(size)) // nothing is reduced into it
                std::fill_n(plane.get(), int64_t(size.width) * size.height, 0.0f);
        }
    return false;
}

static FusionSamples SamplesOf(const SBxPicBuf* planes, unsigned level)
{
    if (level > 0)
        return kFusionFloats;
    return planes[0].bitsPerComponent == 8 ? kFusionBytes : kFusionWords;
}

// What a level's weighting needs to know.
static FusionBandJob JobOf(const Scratch& scratch, float* const (*channelPlanes)[kFusionPlanes],
                           const SBxPicBuf* planes, const VcFusionAccumulator& acc, unsigned level,
                           int count)
{
    const LevelSize size = SizeOf(acc, level);
    FusionBandJob job = {};
    job.mid = float(acc.exposureMid) * float(1u << (acc.bitsPerComponent - 8));
    job.kernel = acc.kernel;
    job.weights = channelPlanes[0][level];
    for (int c = 0; c < count; ++c)
    {
        const FloatPlane& stored = scratch.gauss[c][level];
        const void* samples = stored ? static_cast<const void*>(stored.get()) : planes[c].data;
        job.gauss[c] = {samples, size.width, size.height};
        job.sums[c] = channelPlanes[c][kFusionLevelSlots + level];
        if (level < acc.levels)
            job.coarse[c] = scratch.gauss[c][level + 1].get();
    }
    job.coarseWidth = size.width / 2;
    job.coarseHeight = size.height / 2;
    return job;
}

static void MakeCoarser(const FusionBandJob& job, FusionSamples samples, Scratch* scratch,
                        unsigned level, int count)
{
    const FusionKernels& kernels = VcFusionKernels();
    const int width = job.coarseWidth, height = job.coarseHeight;
    for (int c = 0; c < count; ++c)
    {
        float* to = scratch->gauss[c][level + 1].get();
        VcParallelRows(height, width,
                       [&](int first, int end) {
                           kernels.reduceRows[samples](to, width, height, &job.gauss[c], job.kernel,
                                                       first, end);
                       });
    }
}

// Weights a level, in strips of rows when somebody may want to stop. True when that is so.
static bool WeighLevel(const FusionBandJob& job, FusionSamples samples, int channels, unsigned bits,
                       FusionStop stop)
{
    constexpr int kStripPixels = 1 << 20; // some hundredths of a second
    const int width = job.gauss[0].width, height = job.gauss[0].height;
    const int strip = stop ? kStripPixels / width + 1 : height;
    for (int row = 0; row < height; row += strip)
    {
        if (stop && stop())
            return true;
        VcWeighBand(job, samples, unsigned(channels), bits, row, std::min(row + strip, height));
    }
    return false;
}

static bool AccumulatePlanes(float* const (*channelPlanes)[kFusionPlanes], const SBxPicBuf* planes,
                             int count, const VcFusionAccumulator& acc, FusionStop stop)
{
    Scratch scratch;
    if (AllocateScratch(&scratch, acc, count))
        return true;
    for (unsigned k = 0; k < acc.levels; ++k)
    {
        const FusionSamples samples = SamplesOf(planes, k);
        const FusionBandJob job = JobOf(scratch, channelPlanes, planes, acc, k, count);
        MakeCoarser(job, samples, &scratch, k, count);
        if (CarriesBand(SizeOf(acc, k)) &&
            WeighLevel(job, samples, count, acc.bitsPerComponent, stop))
            return true;
        for (int c = 0; c < count; ++c)
            scratch.gauss[c][k].reset();
    }
    VcWeighTop(JobOf(scratch, channelPlanes, planes, acc, acc.levels, count), unsigned(count),
               acc.bitsPerComponent);
    return false;
}

bool VcAccumulatePlane(float* const (*channelPlanes)[kFusionPlanes], const SBxPicBuf& plane,
                       const VcFusionAccumulator& acc, FusionStop stop)
{
    return FailsOrLacksMemory([&]
                              { return AccumulatePlanes(channelPlanes, &plane, 1, acc, stop); });
}

bool VcAccumulatePlanes3(float* const (*channelPlanes)[kFusionPlanes], const SBxPicBuf planes[3],
                         const VcFusionAccumulator& acc, FusionStop stop)
{
    return FailsOrLacksMemory([&]
                              { return AccumulatePlanes(channelPlanes, planes, 3, acc, stop); });
}

// Rows [first, end) of a level of the blend: the coarser level expanded, plus what the sources have
// to say about this one. to(row) is where a row goes.
template <typename RowAt>
static void ComposeRows(const VcFusionAccumulator& acc, unsigned channel, unsigned level,
                        const float* coarse, int first, int end, RowAt to)
{
    const FusionKernels& kernels = VcFusionKernels();
    const LevelSize size = SizeOf(acc, level);
    const float* weights = WeightPlane(acc, acc.channels == 3 ? 0 : channel, level);
    const float* sums = SumPlane(acc, channel, level);
    for (int row = first; row < end; ++row)
    {
        float* out = to(row);
        if (!coarse || !CarriesBand(size))
            std::fill_n(out, size.width, 0.0f);
        if (coarse)
        {
            const FusionPlane from = {coarse, size.width / 2, size.height / 2};
            kernels.expandRow(out, size.width, size.height, &from, acc.kernel, row, 0, size.width);
        }
        const int64_t at = int64_t(row) * size.width;
        if (CarriesBand(size))
            kernels.addRatios(out, sums + at, weights + at, size.width);
    }
}

// Clamped and truncated, as blends are meant to be.
template <typename T>
static void WriteSamples(T* to, const float* from, int width)
{
    const float top = float((1u << (8 * sizeof(T))) - 1);
    for (int x = 0; x < width; ++x)
    {
        const float lifted = from[x] > 0.0f ? from[x] : 0.0f;
        to[x] = T(int(lifted < top ? lifted : top));
    }
}

// One row of the finest level.
static void ComposeFinestRow(float* out, const VcFusionAccumulator& acc, unsigned channel,
                             const float* coarse, int y)
{
    ComposeRows(acc, channel, 0, coarse, y, y + 1, [&](int) { return out; });
}

// All levels but the finest put together. True when memory is short.
static bool ComposeCoarse(FloatPlane* coarse, const VcFusionAccumulator& acc, unsigned channel)
{
    for (unsigned k = acc.levels; k > 0; --k)
    {
        const LevelSize size = SizeOf(acc, k);
        FloatPlane fine = PlaneOf(size);
        if (!fine)
            return true;
        VcParallelRows(size.height, size.width,
                       [&](int first, int end)
                       {
                           ComposeRows(acc, channel, k, coarse->get(), first, end,
                                       [&](int row)
                                       { return fine.get() + int64_t(row) * size.width; });
                       });
        *coarse = std::move(fine);
    }
    return false;
}

static bool ComposePlane(SBxPicBuf* plane, const VcFusionAccumulator& acc, unsigned channel)
{
    FloatPlane coarse;
    if (ComposeCoarse(&coarse, acc, channel))
        return true;
    VcParallelRows(plane->height, plane->width,
                   [&](int first, int end)
                   {
                       std::vector<float> row(size_t(plane->width));
                       for (int y = first; y < end; ++y)
                       {
                           ComposeFinestRow(row.data(), acc, channel, coarse.get(), y);
                           if (acc.bitsPerComponent == 8)
                               WriteSamples(PicRow<uint8_t>(*plane, y), row.data(), plane->width);
                           else
                               WriteSamples(PicRow<uint16_t>(*plane, y), row.data(), plane->width);
                       }
                   });
    return false;
}

bool VcComposePlane(SBxPicBuf* plane, const VcFusionAccumulator& acc, unsigned channel)
{
    return FailsOrLacksMemory([&] { return ComposePlane(plane, acc, channel); });
}

static bool ComposePlanes3(SBxPicBuf* picture, const VcFusionAccumulator& acc)
{
    FloatPlane coarse[3];
    for (unsigned c = 0; c < 3; ++c)
        if (ComposeCoarse(&coarse[c], acc, c))
            return true;
    const auto join =
        VcFusionKernels().joinRow[acc.bitsPerComponent == 8 ? kFusionBytes : kFusionWords];
    const size_t width = size_t(picture->width);
    VcParallelRows(picture->height, picture->width,
                   [&](int first, int end)
                   {
                       std::vector<float> samples(3 * width);
                       float* const rows[3] = {samples.data(), samples.data() + width,
                                               samples.data() + 2 * width};
                       for (int y = first; y < end; ++y)
                       {
                           for (unsigned c = 0; c < 3; ++c)
                               ComposeFinestRow(rows[c], acc, c, coarse[c].get(), y);
                           join(PicRow<void>(*picture, y), rows, picture->width);
                       }
                   });
    return false;
}

bool VcComposePlanes3(SBxPicBuf* picture, const VcFusionAccumulator& acc)
{
    return FailsOrLacksMemory([&] { return ComposePlanes3(picture, acc); });
}
