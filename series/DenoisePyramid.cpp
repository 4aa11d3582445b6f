// Blocks: Yu and Sapiro, "DCT image denoising: a simple and effective image denoising algorithm"
// (2011), with the coefficients shrunk instead of cut. Sizes: Pierazzo and Facciolo, "Data adaptive
// dual domain denoising: a method to boost state of the art denoising algorithms" (2017), where
// each size takes its low frequencies from the next coarser one.

#include "series/DenoisePyramid.h"

#include "base/InstructionSet.h"
#include "base/ParallelRows.h"
#include "fusion/FusionFilter.h"

#include <algorithm>
#include <cmath>
#include <vector>

void SplitRows(unsigned threads, int rows, const LoopBody<int, int, int>& rowRange)
{
    const int parts = int(std::min(threads, unsigned(rows)));
    constexpr int kAlwaysWorthATask = 1 << 20;
    VcParallelRows(parts, kAlwaysWorthATask,
                   [&](int first, int end)
                   {
                       for (int part = first; part < end; ++part)
                           rowRange(part, int(int64_t(rows) * part / parts),
                                    int(int64_t(rows) * (part + 1) / parts));
                   });
}

Outcome AllocateDenoisePyramid(DenoisePyramid* pyramid, int width, int height, unsigned threads)
{
    pyramid->width = width;
    pyramid->height = height;
    pyramid->threads = threads;
    FillGeneratingKernel(pyramid->kernel);
    const int64_t samples = int64_t(width) * height;
    pyramid->scratch.reset(VcAllocUnsetPlane(samples));
    pyramid->blocks.reset(VcAllocUnsetPlane(int64_t(threads) * kScratchPerColumn * width));
    bool failed = !pyramid->scratch || !pyramid->blocks;
    for (int l = 0; l < kDenoiseLevels; ++l)
    {
        if (l > 0)
            pyramid->noisy[l].reset(VcAllocUnsetPlane(samples >> (2 * l)));
        pyramid->smooth[l].reset(VcAllocUnsetPlane(samples >> (2 * l)));
        failed = failed || (l > 0 && !pyramid->noisy[l]) || !pyramid->smooth[l];
    }
    return FailedIf(failed);
}

// Correlation of samples `distance` apart in a row that was white noise before `level` halvings.
static double RowCorrelation(int level, int distance)
{
    if (level == 0)
        return distance == 0 ? 1.0 : 0.0;
    double sum = 0.0;
    for (int a = 0; a < 5; ++a)
        for (int b = 0; b < 5; ++b)
            sum += double(kGeneratingTaps[a]) * double(kGeneratingTaps[b]) *
                   RowCorrelation(level - 1, 2 * distance + a - b);
    return sum;
}

static double CosineOf(int frequency, int sample)
{
    constexpr double pi = 3.14159265358979323846;
    return std::cos(pi * frequency * (2 * sample + 1) / (2.0 * kBlock)) *
           std::sqrt((frequency == 0 ? 1.0 : 2.0) / kBlock);
}

// Energy of white noise of 1 in each coefficient of a block row after `level` halvings.
static std::vector<double> RowSpectrum(int level)
{
    double correlation[kBlock];
    for (int i = 0; i < kBlock; ++i)
        correlation[i] = RowCorrelation(level, i);
    std::vector<double> spectrum(kBlock);
    for (int u = 0; u < kBlock; ++u)
        for (int i = 0; i < kBlock; ++i)
            for (int j = 0; j < kBlock; ++j)
                spectrum[size_t(u)] +=
                    CosineOf(u, i) * CosineOf(u, j) * correlation[std::abs(i - j)];
    return spectrum;
}

// The mean of a block is left alone. At full size the noise goes over from `coarse` for the lowest
// frequencies to `fine` for the highest; a halving has done away with the latter.
static void SetNoise(DenoiseBlockJob* job, const DenoiseStrength& strength, int level)
{
    static const std::vector<double> spectra[kDenoiseLevels] = {RowSpectrum(0), RowSpectrum(1),
                                                                RowSpectrum(2), RowSpectrum(3)};
    const std::vector<double>& spectrum = spectra[level];
    const double fine = strength.fine * strength.fine, coarse = strength.coarse * strength.coarse;
    for (int v = 0; v < kBlock; ++v)
        for (int u = 0; u < kBlock; ++u)
        {
            const double height = level == 0 ? (u * u + v * v) / 98.0 : 0.0;
            const double noise =
                (coarse + (fine - coarse) * height) * spectrum[size_t(u)] * spectrum[size_t(v)];
            job->inverseNoise[kBlock * v + u] =
                float(1.0 / std::max(noise, 1e-9) / (kBlock * kBlock - 1));
            job->cut[kBlock * v + u] = float(strength.cut * strength.cut * noise);
        }
    job->inverseNoise[0] = job->cut[0] = 0.0f;
}

static void SmoothLevel(DenoisePyramid* pyramid, const float* src, int level,
                        const DenoiseStrength& strength)
{
    DenoiseBlockJob job = {};
    job.src = src;
    job.dst = pyramid->smooth[level].get();
    job.weights = pyramid->scratch.get();
    job.width = pyramid->width >> level;
    job.height = pyramid->height >> level;
    job.step = strength.step[level];
    SetNoise(&job, strength, level);
    const DenoiseBlockFn blocks =
        LoopsInUse<DenoiseBlockFn>({nullptr, &kDenoiseBlocksSse2, &kDenoiseBlocksAvx2, nullptr});
    const int64_t scratchSamples = int64_t(kScratchPerColumn) * job.width;
    SplitRows(pyramid->threads, job.height,
              [&](int part, int first, int end)
              { blocks(&job, first, end, pyramid->blocks.get() + part * scratchSamples); });
}

// Calls row(y) for every row of a size.
template <typename RowFn>
static void EachRow(const DenoisePyramid& pyramid, int level, RowFn row)
{
    SplitRows(pyramid.threads, pyramid.height >> level,
              [&](int, int first, int end)
              {
                  for (int y = first; y < end; ++y)
                      row(y);
              });
}

// Calls row(y, halved) for every row of `level`, src being a plane of the next finer size and
// `halved` the row of dst that was just made from it.
template <typename RowFn>
static void HalveAndDo(const DenoisePyramid& pyramid, float* dst, const float* src, int level,
                       RowFn row)
{
    const int w = pyramid.width >> level, h = pyramid.height >> level;
    EachRow(pyramid, level,
            [&](int y)
            {
                VcReduceRows(dst, src, w, h, 2 * w, 2 * h, pyramid.kernel, y, y + 1);
                row(y, dst + int64_t(y) * w);
            });
}

// What size level + 1 has found, minus what of it size `level` has found itself, is added there.
static void TakeFromCoarser(DenoisePyramid* pyramid, int level)
{
    const int w = pyramid->width >> level, h = pyramid->height >> level;
    float* fine = pyramid->smooth[level].get();
    float* found = pyramid->smooth[level + 1].get();
    float* expanded = pyramid->scratch.get();
    // The noisy plane of that size is no longer needed.
    HalveAndDo(*pyramid, pyramid->noisy[level + 1].get(), fine, level + 1,
               [&](int y, const float* own)
               {
                   float* row = found + int64_t(y) * (w / 2);
                   for (int x = 0; x < w / 2; ++x)
                       row[x] -= own[x];
               });
    EachRow(*pyramid, level,
            [&](int y)
            {
                VcExpandRows(expanded, found, w, h, w / 2, h / 2, pyramid->kernel, y, y + 1);
                float* __restrict to = fine + int64_t(y) * w;
                const float* __restrict from = expanded + int64_t(y) * w;
                for (int x = 0; x < w; ++x)
                    to[x] += from[x];
            });
}

Outcome SmoothPlane(DenoisePyramid* pyramid, float* plane, const DenoiseStrength& strength,
                    const RunControl& control)
{
    const float* src = plane;
    for (int l = 0; l < strength.levels; ++l)
    {
        if (control.Cancelled())
            return Outcome::Cancelled;
        SmoothLevel(pyramid, src, l, strength);
        if (l + 1 == strength.levels)
            break;
        HalveAndDo(*pyramid, pyramid->noisy[l + 1].get(), src, l + 1, [](int, const float*) {});
        src = pyramid->noisy[l + 1].get();
    }
    for (int l = strength.levels - 2; l >= 0; --l)
        TakeFromCoarser(pyramid, l);
    const int width = pyramid->width;
    EachRow(*pyramid, 0,
            [&](int y)
            {
                float* __restrict to = plane + int64_t(y) * width;
                const float* __restrict smooth = pyramid->smooth[0].get() + int64_t(y) * width;
                for (int x = 0; x < width; ++x)
                    to[x] = smooth[x] + strength.share * (to[x] - smooth[x]);
            });
    return Outcome::Done;
}
