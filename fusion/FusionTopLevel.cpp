// Weights of the coarsest level. Its formulas are not those of the bands: no small terms inside
// the factors, the exponentials in double for all but 16-bit colour, and 16-bit colour without the
// powers. A grey pixel of a colour picture therefore has no say beyond the last 1e-5, and such
// places end up as the plain mean of all exposures.

#include "fusion/FusionTopLevel.h"

#include "fusion/FusionWeights.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace
{
#include "fusion/FusionMath.inl"
}

// exp(x) for x <= 0 to about 1e-15, the same bits with every C library: Taylor series of 13 terms
// on |r| <= ln2 / 2, then scaled by a power of two. Zero below the smallest normal number.
static double ExpDouble(double x)
{
    if (x < -708.0)
        return 0.0;
    const double n = std::floor(x * 1.4426950408889634 + 0.5);
    const double r = (x - n * 0.693145751953125) - n * 1.42860682030941723212e-6;
    double sum = 1.0;
    for (int term = 13; term >= 1; --term)
        sum = 1.0 + sum * r / term;
    const uint64_t bits = uint64_t(int64_t(n) + 1023) << 52;
    double power;
    std::memcpy(&power, &bits, sizeof power);
    return sum * power;
}

static float Power016(float x)
{
    return x < FLT_MIN ? 0.0f : Pow016(x);
}

static float Weight1(float value, float lap, float mid, double spread)
{
    const float d = value - mid;
    const double exposure = ExpDouble(-double(d * d) / spread);
    const float contrast = std::sqrt(std::fabs(lap));
    return float(contrast * exposure * exposure + 1e-5);
}

static const float* Samples(const FusionBandJob& job, unsigned channel)
{
    return static_cast<const float*>(job.gauss[channel].samples);
}

// Mean and variance of the three samples of a pixel.
struct Colour
{
    float mean;
    double variance;
};

static Colour ColourOf(const FusionBandJob& job, size_t p)
{
    const float g[3] = {Samples(job, 0)[p], Samples(job, 1)[p], Samples(job, 2)[p]};
    const float mean = (g[0] + g[1] + g[2]) / 3.0f;
    float squares = 0.0f;
    for (const float sample : g)
        squares += (mean - sample) * (mean - sample);
    return {mean, double(squares) / 3.0};
}

static float Weight3Of8Bits(const Colour& colour, float lap, float mid)
{
    const float d = colour.mean - mid;
    const float exposure = Power016(float(ExpDouble(-double(d * d) / 7200.0)));
    const float contrast = std::sqrt(Power016(std::fabs(lap) / 3.0f));
    const float saturation = Power016(float(std::sqrt(colour.variance)));
    return float(double(contrast * saturation * exposure * exposure) + 1e-5);
}

static float Weight3Of16Bits(const Colour& colour, float lap, float mid, float spread)
{
    const float d = colour.mean - mid;
    const float exposure = Exp(-(d * d) / (10.0f * spread));
    const float contrast = std::sqrt(std::fabs(lap) / 3.0f);
    const float saturation = float(std::sqrt(colour.variance));
    return float(double(contrast * saturation * exposure * exposure) + 1e-5);
}

static float LaplacianAt(const FusionBandJob& job, unsigned channels, int row, int column)
{
    const size_t width = size_t(job.gauss[0].width);
    const size_t centre = size_t(std::clamp(row, 1, job.gauss[0].height - 2)) * width +
                          size_t(std::clamp(column, 1, job.gauss[0].width - 2));
    const auto at = [&](size_t i)
    {
        const float sample = Samples(job, 0)[i];
        return double(channels == 3 ? sample + Samples(job, 1)[i] + Samples(job, 2)[i] : sample);
    };
    return float(at(centre - width) + at(centre - 1) - 4.0 * at(centre) + at(centre + 1) +
                 at(centre + width));
}

void VcWeighTop(const FusionBandJob& job, unsigned channels, unsigned bitsPerComponent)
{
    const int width = job.gauss[0].width, height = job.gauss[0].height;
    if (width < 5 || height < 5)
        return;
    const float spread = VcExposureSpread(bitsPerComponent);
    for (int y = 0; y < height; ++y)
    {
        for (int x = 0; x < width; ++x)
        {
            const size_t p = size_t(y) * size_t(width) + size_t(x);
            const float lap = LaplacianAt(job, channels, y, x);
            float weight;
            if (channels != 3)
                weight = Weight1(Samples(job, 0)[p], lap, job.mid,
                                 bitsPerComponent == 8 ? 7200.0 : 10.0 * double(spread));
            else if (bitsPerComponent == 8)
                weight = Weight3Of8Bits(ColourOf(job, p), lap, job.mid);
            else
                weight = Weight3Of16Bits(ColourOf(job, p), lap, job.mid, spread);
            job.weights[p] += weight;
            for (unsigned c = 0; c < channels; ++c)
                job.sums[c][p] += weight * Samples(job, c)[p];
        }
    }
}
