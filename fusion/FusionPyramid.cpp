// Takes sources apart into Laplacian pyramids and weights them, and puts the blend together again.
// A level's band is needed only while that level is weighted, so one set of band planes serves all
// levels; a collapse keeps just the level it comes from.

#include "fusion/FusionAccumulator.h"
#include "fusion/FusionFilter.h"
#include "fusion/FusionKernels.h"
#include "fusion/FusionThreads.h"
#include "fusion/FusionWeights.h"
#include "picture/FloatPlane.h"

#include <algorithm>
#include <cmath>

namespace
{

constexpr int kMaxPlanes = 3;

struct LevelSize
{
    int width, height;
};

struct Scratch
{
    FloatPlane gauss[kMaxPlanes][kFusionLevelSlots];
    FloatPlane band[kMaxPlanes]; // of the level at hand
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

static bool AllocateScratch(Scratch* scratch, const VcFusionAccumulator& acc, int planes)
{
    const LevelSize full = SizeOf(acc, 0);
    for (int c = 0; c < planes; ++c)
    {
        for (unsigned k = 0; k <= acc.levels; ++k)
        {
            const LevelSize size = SizeOf(acc, k);
            scratch->gauss[c][k].reset(VcAllocPlane(int64_t(size.width) * size.height));
            if (!scratch->gauss[c][k])
                return true;
        }
        scratch->band[c].reset(VcAllocPlane(int64_t(full.width) * full.height));
        if (!scratch->band[c])
            return true;
    }
    return false;
}

template <typename T>
static void SamplesToFloat(float* to, const SBxPicBuf& plane, int first, int end)
{
    for (int y = first; y < end; ++y)
    {
        const T* from = PicRow<const T>(plane, y);
        float* row = to + int64_t(y) * plane.width;
        for (int x = 0; x < plane.width; ++x)
            row[x] = float(from[x]);
    }
}

static void PlaneToFloat(float* to, const SBxPicBuf& plane)
{
    VcParallelRows(plane.height, plane.width,
                   [&](int first, int end)
                   {
                       if (plane.bitsPerComponent == 8)
                           SamplesToFloat<uint8_t>(to, plane, first, end);
                       else
                           SamplesToFloat<uint16_t>(to, plane, first, end);
                   });
}

// band = fine - expand(coarse), row by row while the expanded row is still in the cache. A level
// too small to expand into keeps its Gaussian as its band.
static void MakeBand(float* band, const float* fine, const float* coarse, LevelSize fineSize,
                     LevelSize coarseSize, const float kernel[5][5])
{
    const FusionKernels& kernels = VcFusionKernels();
    VcParallelRows(fineSize.height, fineSize.width,
                   [&](int first, int end)
                   {
                       for (int y = first; y < end; ++y)
                       {
                           float* to = band + int64_t(y) * fineSize.width;
                           const float* from = fine + int64_t(y) * fineSize.width;
                           if (CarriesBand(fineSize))
                               kernels.expandRows(band, coarse, fineSize.width, fineSize.height,
                                                  coarseSize.width, coarseSize.height, kernel, y,
                                                  y + 1);
                           else
                               std::fill_n(to, fineSize.width, 0.0f);
                           for (int x = 0; x < fineSize.width; ++x)
                               to[x] = from[x] - to[x];
                       }
                   });
}

static FusionBandJob JobOf(const Scratch& scratch, float* const (*channelPlanes)[kFusionPlanes],
                           const VcFusionAccumulator& acc, unsigned level, int planes)
{
    FusionBandJob job = {};
    job.mid = float(acc.exposureMid) * float(1u << (acc.bitsPerComponent - 8));
    for (int c = 0; c < planes; ++c)
    {
        job.gauss[c] = scratch.gauss[c][level].get();
        job.band[c] = scratch.band[c].get();
        job.sums[c] = channelPlanes[c][kFusionLevelSlots + level];
    }
    job.weights = channelPlanes[0][level];
    job.width = SizeOf(acc, level).width;
    job.height = SizeOf(acc, level).height;
    return job;
}

static bool AccumulatePlanes(float* const (*channelPlanes)[kFusionPlanes], const SBxPicBuf* planes,
                             int count, const VcFusionAccumulator& acc)
{
    Scratch scratch;
    if (AllocateScratch(&scratch, acc, count))
        return true;
    const unsigned channels = unsigned(count);
    for (unsigned k = 0; k < acc.levels; ++k)
    {
        const LevelSize fine = SizeOf(acc, k), coarse = SizeOf(acc, k + 1);
        for (int c = 0; c < count; ++c)
        {
            float* gauss = scratch.gauss[c][k].get();
            float* next = scratch.gauss[c][k + 1].get();
            if (k == 0)
                PlaneToFloat(gauss, planes[c]);
            VcReduce(next, gauss, coarse.width, coarse.height, fine.width, fine.height, acc.kernel);
            MakeBand(scratch.band[c].get(), gauss, next, fine, coarse, acc.kernel);
        }
        if (CarriesBand(fine))
            VcWeighBand(JobOf(scratch, channelPlanes, acc, k, count), channels,
                        acc.bitsPerComponent);
        for (int c = 0; c < count; ++c)
            scratch.gauss[c][k].reset();
    }
    VcWeighTop(JobOf(scratch, channelPlanes, acc, acc.levels, count), channels,
               acc.bitsPerComponent);
    return false;
}

bool VcAccumulatePlane(float* const (*channelPlanes)[kFusionPlanes], const SBxPicBuf& plane,
                       const VcFusionAccumulator& acc)
{
    return AccumulatePlanes(channelPlanes, &plane, 1, acc);
}

bool VcAccumulatePlanes3(float* const (*channelPlanes)[kFusionPlanes], const SBxPicBuf planes[3],
                         const VcFusionAccumulator& acc)
{
    return AccumulatePlanes(channelPlanes, planes, 3, acc);
}

static float Ratio(float sum, float weight)
{
    return std::fabs(double(weight)) > 1e-10 ? sum / weight : 0.0f;
}

// Adds the blended band of a level to what was expanded into it.
static void AddBlend(float* plane, const VcFusionAccumulator& acc, unsigned channel, unsigned level)
{
    const LevelSize size = SizeOf(acc, level);
    if (!CarriesBand(size))
        return;
    const float* sums = SumPlane(acc, channel, level);
    const float* weights = WeightPlane(acc, acc.channels == 3 ? 0 : channel, level);
    VcParallelRows(size.height, size.width,
                   [&](int first, int end)
                   {
                       const int64_t last = int64_t(end) * size.width;
                       for (int64_t i = int64_t(first) * size.width; i < last; ++i)
                           plane[i] += Ratio(sums[i], weights[i]);
                   });
}

template <typename T>
static void WriteSamples(SBxPicBuf* plane, const float* from, int first, int end)
{
    const float top = float((1u << (8 * sizeof(T))) - 1);
    for (int y = first; y < end; ++y)
    {
        const float* row = from + int64_t(y) * plane->width;
        T* to = PicRow<T>(*plane, y);
        for (int x = 0; x < plane->width; ++x)
        {
            const float lifted = row[x] > 0.0f ? row[x] : 0.0f;
            to[x] = T(int(lifted < top ? lifted : top)); // truncates, as blends are meant to
        }
    }
}

bool VcComposePlane(SBxPicBuf* plane, const VcFusionAccumulator& acc, unsigned channel)
{
    FloatPlane coarse, fine;
    for (unsigned k = acc.levels + 1; k-- > 0;)
    {
        const LevelSize size = SizeOf(acc, k);
        fine.reset(VcAllocPlane(int64_t(size.width) * size.height));
        if (!fine)
            return true;
        if (k < acc.levels)
            VcExpand(fine.get(), coarse.get(), size.width, size.height, SizeOf(acc, k + 1).width,
                     SizeOf(acc, k + 1).height, acc.kernel);
        AddBlend(fine.get(), acc, channel, k);
        coarse = std::move(fine);
    }
    VcParallelRows(plane->height, plane->width,
                   [&](int first, int end)
                   {
                       if (acc.bitsPerComponent == 8)
                           WriteSamples<uint8_t>(plane, coarse.get(), first, end);
                       else
                           WriteSamples<uint16_t>(plane, coarse.get(), first, end);
                   });
    return false;
}
