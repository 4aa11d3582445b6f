// The obvious loops of fusion: two-dimensional kernels, one sample after the other, every factor of
// a weight with its own power. Slow, and what the tuned loops are compared with.

#include "fusion/FusionKernels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace
{
#include "fusion/FusionMath.inl"
}

static void ReduceRows(float* dst, const float* src, int dstW, int dstH, int srcW, int srcH,
                       const float kernel[5][5], int firstRow, int endRow)
{
    if (dstW < 5 || dstH < 5)
        return;
    for (int i = firstRow; i < endRow; ++i)
    {
        const int r0 = std::min(i < 2 ? 0 : 2 * i - 2, srcH - 5);
        for (int j = 0; j < dstW; ++j)
        {
            const int c0 = std::min(j < 2 ? 0 : 2 * j - 2, srcW - 5);
            float sum = 0.0f;
            for (int a = 0; a < 5; ++a)
                for (int b = 0; b < 5; ++b)
                    sum += kernel[a][b] * src[size_t(r0 + a) * size_t(srcW) + size_t(c0 + b)];
            dst[size_t(i) * size_t(dstW) + size_t(j)] = sum;
        }
    }
}

static void ExpandRows(float* dst, const float* src, int dstW, int dstH, int srcW, int srcH,
                       const float kernel[5][5], int firstRow, int endRow)
{
    if (dstW < 5 || dstH < 5)
        return;
    for (int i = firstRow; i < endRow; ++i)
    {
        const int s = std::min(i < 3 ? 0 : i - 2, dstH - 5);
        for (int j = 0; j < dstW; ++j)
        {
            const int t = std::min(j < 3 ? 0 : j - 2, dstW - 5);
            float sum = 0.0f;
            for (int r = s + s % 2; r < std::min(s + 5, 2 * srcH); r += 2)
                for (int c = t + t % 2; c < std::min(t + 5, 2 * srcW); c += 2)
                    sum += kernel[r - s][c - t] * src[size_t(r / 2) * size_t(srcW) + size_t(c / 2)];
            dst[size_t(i) * size_t(dstW) + size_t(j)] = 4.0f * sum;
        }
    }
}

// Offset of the centre of the 3x3 window of pixel (row, column), moved inward on the borders.
static size_t WindowCentre(const FusionBandJob& job, int row, int column)
{
    const int y = std::clamp(row, 1, job.height - 2);
    const int x = std::clamp(column, 1, job.width - 2);
    return size_t(y) * size_t(job.width) + size_t(x);
}

template <typename SampleAt>
static float Laplacian(size_t centre, size_t width, SampleAt at)
{
    return float(double(at(centre - width)) + at(centre - 1) - 4.0 * at(centre) + at(centre + 1) +
                 at(centre + width));
}

static void Weigh1(const FusionBandJob* job, int row, int firstColumn, int endColumn)
{
    const float* g = job->gauss[0];
    for (int x = firstColumn; x < endColumn; ++x)
    {
        const size_t p = size_t(row) * size_t(job->width) + size_t(x);
        const float lap = Laplacian(WindowCentre(*job, row, x), size_t(job->width),
                                    [g](size_t i) { return g[i]; });
        const float d = g[p] - job->mid;
        const float exposure = Exp(-(d * d / job->spread)) + 1e-5f;
        const float contrast = std::sqrt(std::fabs(lap) + 1e-5f);
        const float weight = float(double(contrast * exposure * exposure) + 1e-5);
        job->weights[p] += weight;
        job->sums[0][p] += weight * job->band[0][p];
    }
}

static void Weigh3(const FusionBandJob* job, int row, int firstColumn, int endColumn)
{
    const float* const* g = job->gauss;
    for (int x = firstColumn; x < endColumn; ++x)
    {
        const size_t p = size_t(row) * size_t(job->width) + size_t(x);
        const float lap = Laplacian(WindowCentre(*job, row, x), size_t(job->width),
                                    [g](size_t i) { return g[0][i] + g[1][i] + g[2][i]; });
        const float mean = (g[0][p] + g[1][p] + g[2][p]) / 3.0f;
        const float d = mean - job->mid;
        const float exposure = Pow016(Exp(-(d * d / job->spread)) + 1e-5f);
        const float contrast = std::sqrt(Pow016(std::fabs(lap) / 3.0f + 1e-5f));
        float squares = 0.0f;
        for (int c = 0; c < 3; ++c)
            squares += (mean - g[c][p]) * (mean - g[c][p]);
        const float saturation = Pow016(float(std::sqrt(double(squares) / 3.0) + 1e-5));
        const float weight = float(double(contrast * saturation * exposure * exposure) + 1e-5);
        for (int addition = 0; addition < job->additions; ++addition)
        {
            job->weights[p] += weight;
            for (int c = 0; c < 3; ++c)
                job->sums[c][p] += weight * job->band[c][p];
        }
    }
}

extern const FusionKernels kFusionKernelsPlain;
const FusionKernels kFusionKernelsPlain = {"plain", ReduceRows, ExpandRows, Weigh1, Weigh3};
