#include "fusion/FusionLevels.h"

#include "base/ParallelRows.h"

#include <algorithm>

CBxSize<int> FusionLevelSize(const VcFusionAccumulator& acc, unsigned level)
{
    return {int(acc.levelWidth[level]), int(acc.levelHeight[level])};
}

bool CarriesBand(const CBxSize<int>& size)
{
    return size.cx >= 5 && size.cy >= 5;
}

FusionSamples SamplesOfLevel(const VcFusionAccumulator& acc, unsigned level)
{
    if (level > 0)
        return kFusionFloats;
    return acc.bitsPerComponent == 8 ? kFusionBytes : kFusionWords;
}

Outcome AllocateLevels(SourceLevels* source, const VcFusionAccumulator& acc)
{
    for (int c = 0; c < source->count; ++c)
        for (unsigned k = acc.levels > 0 ? 1 : 0; k <= acc.levels; ++k)
        {
            const CBxSize<int> size = FusionLevelSize(acc, k);
            const int64_t samples = int64_t(size.cx) * size.cy;
            FloatPlane& plane = source->gauss[c][k];
            plane.reset(VcAllocUnsetPlane(samples));
            if (!plane)
                return Outcome::Failed;
            if (k == 0 || !CarriesBand(size))
                std::fill_n(plane.get(), samples, 0.0f);
        }
    return Outcome::Done;
}

static FusionPlane GaussPlane(const SourceLevels& source, int plane, const CBxSize<int>& size,
                              unsigned level)
{
    const float* stored = source.gauss[plane][level].get();
    return {stored ? static_cast<const void*>(stored) : source.finest[plane].data, size.cx,
            size.cy};
}

void MakeCoarser(SourceLevels* source, const VcFusionAccumulator& acc, unsigned level)
{
    const auto reduce = VcFusionKernels().reduceRows[SamplesOfLevel(acc, level)];
    const CBxSize<int> coarse = FusionLevelSize(acc, level + 1);
    for (int c = 0; c < source->count; ++c)
    {
        const FusionPlane from = GaussPlane(*source, c, FusionLevelSize(acc, level), level);
        float* to = source->gauss[c][level + 1].get();
        VcParallelRows(coarse.cy, coarse.cx,
                       [&](int first, int end)
                       { reduce(to, coarse.cx, coarse.cy, &from, acc.kernel, first, end); });
    }
}

FusionBandJob BandJobOf(const SourceLevels& source, float* const (*channelPlanes)[kFusionPlanes],
                        const VcFusionAccumulator& acc, unsigned level)
{
    const CBxSize<int> size = FusionLevelSize(acc, level);
    FusionBandJob job = {};
    job.mid = float(acc.exposureMid) * float(1u << (acc.bitsPerComponent - 8));
    job.kernel = acc.kernel;
    job.weights = channelPlanes[0][level];
    for (int c = 0; c < source.count; ++c)
    {
        job.gauss[c] = GaussPlane(source, c, size, level);
        job.sums[c] = channelPlanes[c][kFusionLevelSlots + level];
        if (level < acc.levels)
            job.coarse[c] = source.gauss[c][level + 1].get();
    }
    job.coarseWidth = size.cx / 2;
    job.coarseHeight = size.cy / 2;
    return job;
}
