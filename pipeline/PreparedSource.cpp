#include "pipeline/PreparedSource.h"

#include "base/ParallelRows.h"
#include "fusion/FusionKernels.h"
#include "fusion/FusionTopLevel.h"
#include "fusion/FusionWeights.h"

#include <algorithm>

// All levels together have a third more samples than the finest.
static int64_t SamplesOfAllLevels(const SBxPicBuf& geometry)
{
    return int64_t(geometry.width) * geometry.height * 4 / 3;
}

int64_t VcPreparedBytes(const SBxPicBuf& geometry)
{
    const int64_t finest = int64_t(geometry.width) * geometry.height;
    return geometry.components * (finest * geometry.bitsPerComponent / 8 +
                                  (SamplesOfAllLevels(geometry) - finest) * int64_t(sizeof(float)));
}

int64_t VcAccumulatorBytes(const SBxPicBuf& geometry)
{
    const int planes = geometry.components == 3 ? 4 : 2 * geometry.components;
    return planes * SamplesOfAllLevels(geometry) * int64_t(sizeof(float));
}

PreparedSourcePtr VcPrepareSource(const VcFusionAccumulator& acc, const SBxPicBuf& picture)
{
    const auto source = std::make_shared<PreparedSource>();
    SourceLevels* levels = &source->levels;
    levels->count = int(acc.channels);
    for (unsigned c = 0; c < acc.channels; ++c)
    {
        Picture& plane = source->finest[c];
        plane = Picture(picture.width, picture.height, 1, picture.bitsPerComponent);
        if (plane.Empty())
            return nullptr;
        (void)CBxPicBufAPI::ExtractComponent(plane.Record(), c, picture);
        levels->finest[c] = plane;
    }
    if (AllocateLevels(levels, acc) != Outcome::Done)
        return nullptr;
    for (unsigned k = 0; k < acc.levels; ++k)
        MakeCoarser(levels, acc, k);
    return source;
}

static FusionBandJob JobOf(const VcFusionAccumulator& acc, const PreparedSource& source,
                           unsigned level)
{
    FusionBandJob job = BandJobOf(source.levels, acc.planes, acc, level);
    job.spread = VcExposureSpread(acc.bitsPerComponent);
    job.additions = acc.channels == 3 && acc.bitsPerComponent == 8 ? 2 : 1;
    return job;
}

static void ClearRows(const VcFusionAccumulator& acc, unsigned level, int first, int end)
{
    const int64_t width = acc.levelWidth[level];
    for (unsigned c = 0; c < acc.channels; ++c)
        for (float* plane : {WeightPlane(acc, c, level), SumPlane(acc, c, level)})
            if (plane)
                std::fill(plane + first * width, plane + end * width, 0.0f);
}

// Rows [first, end) of a band level with all sources, a few rows at a time: their sums stay in the
// processor's cache until the last source has been added.
static void SumRows(const VcFusionAccumulator& acc, const std::vector<FusionBandJob>& jobs,
                    unsigned level, int first, int end)
{
    constexpr int kSamplesAtOnce = 16384; // a quarter of a megabyte of sums
    const int width = int(acc.levelWidth[level]), rows = kSamplesAtOnce / width + 1;
    const FusionKernels& kernels = VcFusionKernels();
    const FusionSamples samples = SamplesOfLevel(acc, level);
    const auto weigh = acc.channels == 3 ? kernels.weigh3[samples] : kernels.weigh1[samples];
    for (int row = first; row < end; row += rows)
    {
        const int stop = std::min(row + rows, end);
        ClearRows(acc, level, row, stop);
        for (const FusionBandJob& job : jobs)
            for (int y = row; y < stop; ++y)
                weigh(&job, y, 0, width);
    }
}

static bool SumLevel(const VcFusionAccumulator& acc, const std::vector<FusionBandJob>& jobs,
                     unsigned level, const std::function<bool()>& stop)
{
    constexpr int kSamplesPerStrip = 1 << 18; // of all sources some hundredths of a second
    const int width = int(acc.levelWidth[level]), height = int(acc.levelHeight[level]);
    const int strip = kSamplesPerStrip / width + 1;
    for (int row = 0; row < height; row += strip)
    {
        if (stop && stop())
            return true;
        VcParallelRows(std::min(strip, height - row), width,
                       [&](int first, int end)
                       { SumRows(acc, jobs, level, row + first, row + end); });
    }
    return false;
}

bool VcSumPrepared(VcFusionAccumulator* acc, const std::vector<PreparedSourcePtr>& sources,
                   const std::function<bool()>& stop)
{
    for (unsigned k = 0; k <= acc->levels; ++k)
    {
        std::vector<FusionBandJob> jobs;
        for (const PreparedSourcePtr& source : sources)
            jobs.push_back(JobOf(*acc, *source, k));
        const bool band = k < acc->levels && CarriesBand(FusionLevelSize(*acc, k));
        if (band && SumLevel(*acc, jobs, k, stop))
            return true;
        if (!band)
            ClearRows(*acc, k, 0, int(acc->levelHeight[k]));
        for (size_t i = 0; i < jobs.size() && k == acc->levels; ++i)
            VcWeighTop(jobs[i], acc->channels, acc->bitsPerComponent);
    }
    return false;
}
