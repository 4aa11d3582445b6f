#include "alignment/WholeShift.h"

#include "base/ParallelRows.h"

#include <algorithm>
#include <cmath>

// The logarithm turns another exposure into an offset, and taking the surroundings' mean away turns
// that into nothing. It is our own: the C libraries differ in bits.

constexpr float kLogOffset = 4;      // grey levels; keeps the noise of shadows small
constexpr int kSurroundings = 7;     // pixels to each side, a box, twice
constexpr double kLeastShare = 0.05; // of the plane that must be common to both
constexpr double kLongShift = 0.002; // correlation that the longest shift is behind

// Natural logarithm of 4 .. 260, to 1e-7 or so: mantissa by the series of atanh, exponent exactly.
static float LogOf(float value)
{
    constexpr double kLn2 = 0.69314718055994530942;
    int exponent = 0;
    const double mantissa = std::frexp(double(value), &exponent); // 0.5 .. 1
    const double z = (mantissa - 0.75) / (mantissa + 0.75), z2 = z * z;
    const double series = z * (2 + z2 * (2.0 / 3 + z2 * (2.0 / 5 + z2 * (2.0 / 7 + z2 * 2.0 / 9))));
    constexpr double kLnThreeQuarters = -0.28768207245178092744;
    return float(series + kLnThreeQuarters + exponent * kLn2);
}

// The mean of 2 * kSurroundings + 1 neighbours along one axis, less at the ends.
static void BoxBlur(float* out, const float* in, int count, int step)
{
    double sum = 0;
    int held = 0;
    for (int i = -kSurroundings; i < count; ++i)
    {
        if (i + kSurroundings < count)
            sum += in[size_t(i + kSurroundings) * size_t(step)], ++held;
        if (i - kSurroundings - 1 >= 0)
            sum -= in[size_t(i - kSurroundings - 1) * size_t(step)], --held;
        if (i >= 0)
            out[size_t(i) * size_t(step)] = float(sum / held);
    }
}

static std::vector<float> BandPassed(const LumaPlane& plane)
{
    std::vector<float> band(plane.samples.size());
    std::transform(plane.samples.begin(), plane.samples.end(), band.begin(),
                   [](float luma) { return LogOf(luma + kLogOffset); });
    std::vector<float> blurred = band, scratch(band.size());
    const size_t width = size_t(plane.width);
    for (int pass = 0; pass < 2; ++pass)
    {
        for (int y = 0; y < plane.height; ++y)
            BoxBlur(&scratch[size_t(y) * width], &blurred[size_t(y) * width], plane.width, 1);
        for (int x = 0; x < plane.width; ++x)
            BoxBlur(&blurred[size_t(x)], &scratch[size_t(x)], plane.height, plane.width);
    }
    for (size_t i = 0; i < band.size(); ++i)
        band[i] -= blurred[i];
    return band;
}

// A plane that is compared: its band, and which samples count.
struct ShiftPlane
{
    std::vector<float> band;
    std::vector<char> counts;
};

static ShiftPlane ShiftPlaneOf(const LumaPlane& plane)
{
    ShiftPlane made = {BandPassed(plane), std::vector<char>(plane.samples.size())};
    std::transform(plane.samples.begin(), plane.samples.end(), made.counts.begin(), IsUnclipped);
    return made;
}

// -2 when too little is common to both.
static double CorrelationOfShift(const ShiftPlane& stays, const ShiftPlane& moving,
                                 CBxSize<int> size, int dx, int dy)
{
    double n = 0, sumA = 0, sumB = 0, sumAA = 0, sumBB = 0, sumAB = 0;
    for (int y = std::max(0, -dy); y < std::min(size.cy, size.cy - dy); ++y)
    {
        const size_t a = size_t(y) * size_t(size.cx), b = size_t(y + dy) * size_t(size.cx);
        for (int x = std::max(0, -dx); x < std::min(size.cx, size.cx - dx); ++x)
        {
            const size_t ia = a + size_t(x), ib = b + size_t(x + dx);
            if (!stays.counts[ia] || !moving.counts[ib])
                continue;
            const double va = double(stays.band[ia]), vb = double(moving.band[ib]);
            n += 1;
            sumA += va;
            sumB += vb;
            sumAA += va * va;
            sumBB += vb * vb;
            sumAB += va * vb;
        }
    }
    if (n < kLeastShare * size.cx * size.cy)
        return -2;
    const double product = (sumAA - sumA * sumA / n) * (sumBB - sumB * sumB / n);
    return product > 1e-12 ? (sumAB - sumA * sumB / n) / std::sqrt(product) : -2;
}

CBxPoint<int> WholeShift(const LumaPlane& stays, const LumaPlane& moving, int reach)
{
    const ShiftPlane a = ShiftPlaneOf(stays), b = ShiftPlaneOf(moving);
    const int across = 2 * reach + 1;
    std::vector<double> score(size_t(across) * size_t(across));
    const CBxSize<int> size = {stays.width, stays.height};
    VcParallelRows(across, across * size.cx * size.cy,
                   [&](int first, int end)
                   {
                       for (int row = first; row < end; ++row)
                           for (int column = 0; column < across; ++column)
                           {
                               const int dx = column - reach, dy = row - reach;
                               const double length = std::sqrt(double(dx * dx + dy * dy));
                               score[size_t(row) * size_t(across) + size_t(column)] =
                                   CorrelationOfShift(a, b, size, dx, dy) -
                                   kLongShift * length / std::max(reach, 1);
                           }
                   });
    const int best = int(std::max_element(score.begin(), score.end()) - score.begin());
    if (score[size_t(best)] < -1)
        return {0, 0}; // nothing to go by
    return {best % across - reach, best / across - reach};
}
