// Takes sources apart into Laplacian pyramids and weights them, and puts the blend together again.
//
// Only the Gaussian levels above the finest are ever stored: the finest is read from the source's
// own samples, and a band exists for one piece of a row at a time, between its making and its
// adding. Putting together keeps the level it comes from and the one it makes; the finest goes
// straight into the picture.

#include "fusion/FusionPyramid.h"

#include "base/ParallelRows.h"
#include "base/ShortMemory.h"
#include "fusion/FusionKernels.h"
#include "fusion/FusionLevels.h"
#include "fusion/FusionTopLevel.h"
#include "fusion/FusionWeights.h"

#include <algorithm>
#include <utility>
#include <vector>

// Weights a level, in strips of rows when somebody may want to stop.
static Outcome WeighLevel(const FusionBandJob& job, FusionSamples samples, int channels,
                          unsigned bits, FusionStop stop)
{
    constexpr int kStripPixels = 1 << 20; // some hundredths of a second
    const int width = job.gauss[0].width, height = job.gauss[0].height;
    const int strip = stop ? kStripPixels / width + 1 : height;
    for (int row = 0; row < height; row += strip)
    {
        if (stop && stop())
            return Outcome::Cancelled;
        VcWeighBand(job, samples, unsigned(channels), bits, row, std::min(row + strip, height));
    }
    return Outcome::Done;
}

static Outcome AccumulatePlanes(float* const (*channelPlanes)[kFusionPlanes],
                                const SBxPicBuf* planes, int count, const VcFusionAccumulator& acc,
                                FusionStop stop)
{
    SourceLevels source;
    source.count = count;
    std::copy_n(planes, count, source.finest);
    if (AllocateLevels(&source, acc) != Outcome::Done)
        return Outcome::Failed;
    for (unsigned k = 0; k < acc.levels; ++k)
    {
        MakeCoarser(&source, acc, k);
        if (CarriesBand(FusionLevelSize(acc, k)) &&
            WeighLevel(BandJobOf(source, channelPlanes, acc, k), SamplesOfLevel(acc, k), count,
                       acc.bitsPerComponent, stop) != Outcome::Done)
            return Outcome::Cancelled;
        for (int c = 0; c < count; ++c)
            source.gauss[c][k].reset();
    }
    VcWeighTop(BandJobOf(source, channelPlanes, acc, acc.levels), unsigned(count),
               acc.bitsPerComponent);
    return Outcome::Done;
}

bool VcAccumulatePlane(float* const (*channelPlanes)[kFusionPlanes], const SBxPicBuf& plane,
                       const VcFusionAccumulator& acc, FusionStop stop)
{
    const auto add = [&] { return AccumulatePlanes(channelPlanes, &plane, 1, acc, stop); };
    return FailWithoutMemory(add) != Outcome::Done;
}

bool VcAccumulatePlanes3(float* const (*channelPlanes)[kFusionPlanes], const SBxPicBuf planes[3],
                         const VcFusionAccumulator& acc, FusionStop stop)
{
    const auto add = [&] { return AccumulatePlanes(channelPlanes, planes, 3, acc, stop); };
    return FailWithoutMemory(add) != Outcome::Done;
}

// Rows [first, end) of a level of the blend: the coarser level expanded, plus what the sources have
// to say about this one. to(row) is where a row goes.
template <typename RowAt>
static void ComposeRows(const VcFusionAccumulator& acc, unsigned channel, unsigned level,
                        const float* coarse, int first, int end, RowAt to)
{
    const FusionKernels& kernels = VcFusionKernels();
    const CBxSize<int> size = FusionLevelSize(acc, level);
    const float* weights = WeightPlane(acc, acc.channels == 3 ? 0 : channel, level);
    const float* sums = SumPlane(acc, channel, level);
    for (int row = first; row < end; ++row)
    {
        float* out = to(row);
        if (!coarse || !CarriesBand(size))
            std::fill_n(out, size.cx, 0.0f);
        if (coarse)
        {
            const FusionPlane from = {coarse, size.cx / 2, size.cy / 2};
            kernels.expandRow(out, size.cx, size.cy, &from, acc.kernel, row, 0, size.cx);
        }
        const int64_t at = int64_t(row) * size.cx;
        if (CarriesBand(size))
            kernels.addRatios(out, sums + at, weights + at, size.cx);
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

// All levels but the finest put together. Fails when memory is short.
static Outcome ComposeCoarse(FloatPlane* coarse, const VcFusionAccumulator& acc, unsigned channel)
{
    for (unsigned k = acc.levels; k > 0; --k)
    {
        const CBxSize<int> size = FusionLevelSize(acc, k);
        FloatPlane fine(VcAllocUnsetPlane(int64_t(size.cx) * size.cy));
        if (!fine)
            return Outcome::Failed;
        VcParallelRows(size.cy, size.cx,
                       [&](int first, int end)
                       {
                           ComposeRows(acc, channel, k, coarse->get(), first, end,
                                       [&](int row)
                                       { return fine.get() + int64_t(row) * size.cx; });
                       });
        *coarse = std::move(fine);
    }
    return Outcome::Done;
}

static Outcome ComposePlane(SBxPicBuf* plane, const VcFusionAccumulator& acc, unsigned channel)
{
    FloatPlane coarse;
    if (ComposeCoarse(&coarse, acc, channel) != Outcome::Done)
        return Outcome::Failed;
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
    return Outcome::Done;
}

bool VcComposePlane(SBxPicBuf* plane, const VcFusionAccumulator& acc, unsigned channel)
{
    const auto compose = [&] { return ComposePlane(plane, acc, channel); };
    return FailWithoutMemory(compose) != Outcome::Done;
}

static Outcome ComposePlanes3(SBxPicBuf* picture, const VcFusionAccumulator& acc)
{
    FloatPlane coarse[3];
    for (unsigned c = 0; c < 3; ++c)
        if (ComposeCoarse(&coarse[c], acc, c) != Outcome::Done)
            return Outcome::Failed;
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
    return Outcome::Done;
}

bool VcComposePlanes3(SBxPicBuf* picture, const VcFusionAccumulator& acc)
{
    const auto compose = [&] { return ComposePlanes3(picture, acc); };
    return FailWithoutMemory(compose) != Outcome::Done;
}
