#include "fusion/FusionWeights.h"

#include <tbb/blocked_range2d.h>
#include <tbb/parallel_for.h>

// Beside base/ParallelRows.cpp the only file that knows the task library: the weighting splits its
// work along both axes.

using TaskRange = tbb::blocked_range2d<int, int>;

// Bodies of the weighting loop, one per depth and channel count. The spelling is part of their
// interface. Each task writes only the sums of the pixels in its own range.

class VcUpdateAplitude_x8
{
public:
    VcUpdateAplitude_x8(const FusionBandJob& band, FusionSamples samples)
        : job(band), weigh(VcFusionKernels().weigh1[samples])
    {
    }

    void operator()(const TaskRange& range) const
    {
        for (int row = range.rows().begin(); row < range.rows().end(); ++row)
            weigh(&job, row, range.cols().begin(), range.cols().end());
    }

private:
    FusionBandJob job;
    void (*weigh)(const FusionBandJob* job, int row, int firstColumn, int endColumn);
};

// The same arithmetic; only the spread in the job differs.
class VcUpdateAplitude_x16 : public VcUpdateAplitude_x8
{
public:
    using VcUpdateAplitude_x8::VcUpdateAplitude_x8;
};

// Adds once.
class VcUpdateAplitude_3x16
{
public:
    VcUpdateAplitude_3x16(const FusionBandJob& band, FusionSamples samples)
        : job(band), weigh(VcFusionKernels().weigh3[samples])
    {
        job.additions = 1;
    }

    void operator()(const TaskRange& range) const
    {
        for (int row = range.rows().begin(); row < range.rows().end(); ++row)
            weigh(&job, row, range.cols().begin(), range.cols().end());
    }

protected:
    FusionBandJob job;
    void (*weigh)(const FusionBandJob* job, int row, int firstColumn, int endColumn);
};

// Adds each pixel twice. Weight and weighted value grow together, so the quotient is unchanged;
// but merging counts on it, since an accumulator that added only once would carry half the say of
// its partner.
class VcUpdateAplitude_3x8 : public VcUpdateAplitude_3x16
{
public:
    VcUpdateAplitude_3x8(const FusionBandJob& band, FusionSamples samples)
        : VcUpdateAplitude_3x16(band, samples)
    {
        job.additions = 2;
    }
};

template <typename Body>
static void RunBody(const FusionBandJob& job, FusionSamples samples, int firstRow, int endRow)
{
    tbb::task_group_context context(tbb::task_group_context::bound);
    tbb::parallel_for(TaskRange(firstRow, endRow, 1, 0, job.gauss[0].width, 1), Body(job, samples),
                      tbb::auto_partitioner(), context);
}

float VcExposureSpread(unsigned bitsPerComponent)
{
    if (bitsPerComponent == 8)
        return 7200.0f;
    const float s = float(1u << bitsPerComponent) * 0.25f;
    return float(double(s) * double(s) * 1.41);
}

void VcWeighBand(FusionBandJob job, FusionSamples samples, unsigned channels,
                 unsigned bitsPerComponent, int firstRow, int endRow)
{
    job.spread = VcExposureSpread(bitsPerComponent);
    job.additions = 1;
    if (channels == 3)
        bitsPerComponent == 8 ? RunBody<VcUpdateAplitude_3x8>(job, samples, firstRow, endRow)
                              : RunBody<VcUpdateAplitude_3x16>(job, samples, firstRow, endRow);
    else
        bitsPerComponent == 8 ? RunBody<VcUpdateAplitude_x8>(job, samples, firstRow, endRow)
                              : RunBody<VcUpdateAplitude_x16>(job, samples, firstRow, endRow);
}
