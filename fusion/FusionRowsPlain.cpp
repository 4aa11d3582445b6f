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

template <typename T>
static float SampleAt(const FusionPlane& plane, int row, int column)
{
    return float(
        static_cast<const T*>(plane.samples)[size_t(row) * size_t(plane.width) + size_t(column)]);
}

template <typename T>
static void ReduceRows(float* dst, int dstW, int dstH, const FusionPlane* src,
                       const float kernel[5][5], int firstRow, int endRow)
{
    if (dstW < 5 || dstH < 5)
        return;
    for (int i = firstRow; i < endRow; ++i)
    {
        const int r0 = std::min(i < 2 ? 0 : 2 * i - 2, src->height - 5);
        for (int j = 0; j < dstW; ++j)
        {
            const int c0 = std::min(j < 2 ? 0 : 2 * j - 2, src->width - 5);
            float sum = 0.0f;
            for (int a = 0; a < 5; ++a)
                for (int b = 0; b < 5; ++b)
                    sum += kernel[a][b] * SampleAt<T>(*src, r0 + a, c0 + b);
            dst[size_t(i) * size_t(dstW) + size_t(j)] = sum;
        }
    }
}

static float ExpandSample(int dstW, int dstH, const FusionPlane& src, const float kernel[5][5],
                          int row, int column)
{
    const int s = std::min(row < 3 ? 0 : row - 2, dstH - 5);
    const int t = std::min(column < 3 ? 0 : column - 2, dstW - 5);
    float sum = 0.0f;
    for (int r = s + s % 2; r < std::min(s + 5, 2 * src.height); r += 2)
        for (int c = t + t % 2; c < std::min(t + 5, 2 * src.width); c += 2)
            sum += kernel[r - s][c - t] * SampleAt<float>(src, r / 2, c / 2);
    return 4.0f * sum;
}

static void ExpandRow(float* out, int dstW, int dstH, const FusionPlane* src,
                      const float kernel[5][5], int row, int firstColumn, int endColumn)
{
    if (dstW < 5 || dstH < 5)
        return;
    for (int x = firstColumn; x < endColumn; ++x)
        out[x] = ExpandSample(dstW, dstH, *src, kernel, row, x);
}

static void AddRatios(float* out, const float* sums, const float* weights, int count)
{
    for (int i = 0; i < count; ++i)
        if (std::fabs(double(weights[i])) > 1e-10)
            out[i] += sums[i] / weights[i];
}

// The 3x3 window of a pixel, moved inward on the borders, in up to three planes at once.
template <typename T>
static float Laplacian(const FusionBandJob& job, int channels, int row, int column)
{
    const int y = std::clamp(row, 1, job.gauss[0].height - 2);
    const int x = std::clamp(column, 1, job.gauss[0].width - 2);
    const auto sum = [&](int dy, int dx)
    {
        float total = SampleAt<T>(job.gauss[0], y + dy, x + dx);
        for (int c = 1; c < channels; ++c)
            total += SampleAt<T>(job.gauss[c], y + dy, x + dx);
        return double(total);
    };
    return float(sum(-1, 0) + sum(0, -1) - 4.0 * sum(0, 0) + sum(0, 1) + sum(1, 0));
}

template <typename T>
static float Weight1(const FusionBandJob& job, int row, int column)
{
    const float d = SampleAt<T>(job.gauss[0], row, column) - job.mid;
    const float exposure = Exp(-(d * d / job.spread)) + 1e-5f;
    const float contrast = std::sqrt(std::fabs(Laplacian<T>(job, 1, row, column)) + 1e-5f);
    return float(double(contrast * exposure * exposure) + 1e-5);
}

template <typename T>
static float Weight3(const FusionBandJob& job, int row, int column)
{
    float g[3];
    for (int c = 0; c < 3; ++c)
        g[c] = SampleAt<T>(job.gauss[c], row, column);
    const float mean = (g[0] + g[1] + g[2]) / 3.0f;
    const float d = mean - job.mid;
    const float exposure = Pow016(Exp(-(d * d / job.spread)) + 1e-5f);
    const float lap = Laplacian<T>(job, 3, row, column);
    const float contrast = std::sqrt(Pow016(std::fabs(lap) / 3.0f + 1e-5f));
    float squares = 0.0f;
    for (const float sample : g)
        squares += (mean - sample) * (mean - sample);
    const float saturation = Pow016(float(std::sqrt(double(squares) / 3.0) + 1e-5));
    return float(double(contrast * saturation * exposure * exposure) + 1e-5);
}

template <typename T, int Channels>
static void Weigh(const FusionBandJob* job, int row, int firstColumn, int endColumn)
{
    const int width = job->gauss[0].width, height = job->gauss[0].height;
    for (int x = firstColumn; x < endColumn; ++x)
    {
        const size_t p = size_t(row) * size_t(width) + size_t(x);
        const float weight = Channels == 1 ? Weight1<T>(*job, row, x) : Weight3<T>(*job, row, x);
        for (int addition = 0; addition < job->additions; ++addition)
        {
            job->weights[p] += weight;
            for (int c = 0; c < Channels; ++c)
            {
                const FusionPlane coarse = {job->coarse[c], job->coarseWidth, job->coarseHeight};
                const float band = SampleAt<T>(job->gauss[c], row, x) -
                                   ExpandSample(width, height, coarse, job->kernel, row, x);
                job->sums[c][p] += weight * band;
            }
        }
    }
}

template <typename T>
static void SplitRow(void* const to[3], const void* from, int width)
{
    for (int i = 0; i < 3 * width; ++i)
        static_cast<T*>(to[i % 3])[i / 3] = static_cast<const T*>(from)[i];
}

template <typename T>
static void JoinRow(void* to, const float* const from[3], int width)
{
    const float top = float(std::numeric_limits<T>::max());
    for (int i = 0; i < 3 * width; ++i)
        static_cast<T*>(to)[i] = T(std::clamp(from[i % 3][i / 3], 0.0f, top));
}

extern const FusionKernels kFusionKernelsPlain;
const FusionKernels kFusionKernelsPlain = {
    {nullptr, SplitRow<uint8_t>, SplitRow<uint16_t>},
    {nullptr, JoinRow<uint8_t>, JoinRow<uint16_t>},
    {ReduceRows<float>, ReduceRows<uint8_t>, ReduceRows<uint16_t>},
    ExpandRow,
    AddRatios,
    {Weigh<float, 1>, Weigh<uint8_t, 1>, Weigh<uint16_t, 1>},
    {Weigh<float, 3>, Weigh<uint8_t, 3>, Weigh<uint16_t, 3>}};
