#include "sample/Exposure.h"

#include "base/ParallelRows.h"
#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace
{

std::vector<double> SortedLuminance(const SampleRadiance& scene)
{
    std::vector<double> values;
    for (size_t i = 0; i < scene.light.size(); i += 3)
        values.push_back(0.0722 * scene.light[i] + 0.7152 * scene.light[i + 1] +
                         0.2126 * scene.light[i + 2]);
    std::sort(values.begin(), values.end());
    return values;
}

double Percentile(const std::vector<double>& sorted, double percent)
{
    return sorted[size_t(percent / 100.0 * double(sorted.size() - 1))];
}

const SampleRadiance& Scene()
{
    static const SampleRadiance scene = RenderSampleScene(180, 120);
    return scene;
}

double At(const Picture& picture, int x, int y, int component)
{
    return SampleOf(picture, x, y, component);
}

TEST(SampleScene, IsHeldByASeriesOfFive)
{
    const Picture darkest = ExposeSample(Scene(), -4), brightest = ExposeSample(Scene(), 4);
    int clipped = 0, shadows = 0, readable = 0;
    const double limit = Percentile(SortedLuminance(Scene()), 5.0);
    for (int y = 0; y < 120; y++)
        for (int x = 0; x < 180; x++)
        {
            const float* light = &Scene().light[size_t(y * 180 + x) * 3];
            const double level = 0.0722 * light[0] + 0.7152 * light[1] + 0.2126 * light[2];
            clipped += At(darkest, x, y, 1) == 255;
            shadows += level < limit;
            readable += level < limit && At(brightest, x, y, 1) + At(brightest, x, y, 2) >= 30;
        }
    EXPECT_LE(clipped, 180 * 120 / 1000);
    EXPECT_GE(readable, shadows * 3 / 4);
}

double LinearOf(double code)
{
    return code <= 10.0 ? code / 255.0 / 12.92 : std::pow((code / 255.0 + 0.055) / 1.055, 2.4);
}

// Single elements carry the camera's noise and the steps of eight bits, their sum does not.
TEST(SampleScene, TwoStopsMoreAreFourTimesTheLight)
{
    const Picture less = ExposeSample(Scene(), 0), more = ExposeSample(Scene(), 2);
    double sumLess = 0.0, sumMore = 0.0;
    for (int y = 0; y < 120; y++)
        for (int x = 0; x < 180; x++)
            if (At(more, x, y, 1) < 240.0 && At(less, x, y, 1) > 20.0)
            {
                sumLess += LinearOf(At(less, x, y, 1));
                sumMore += LinearOf(At(more, x, y, 1));
            }
    EXPECT_NEAR(sumMore / sumLess, 4.0, 0.04);
}

// Each view has a grain of its own, from where it looks inside of its elements and gathers soft
// light; two views that have nothing in common differ by more than twenty.
TEST(SampleScene, StandsOnItsHeadForACameraTurnedByHalf)
{
    SampleCamera turned;
    turned.roll = 0.5f;
    const Picture picture = ExposeSample(Scene(), 0);
    const Picture other = ExposeSample(RenderSampleScene(180, 120, turned), 0);
    double difference = 0.0;
    for (int y = 0; y < 120; y++)
        for (int x = 0; x < 180; x++)
            difference += std::abs(At(picture, x, y, 1) - At(other, 179 - x, 119 - y, 1));
    EXPECT_LT(difference / (180 * 120), 4.0);
}

// The number is the hash of this size, found with an optimised native build. It has to be replaced
// when the scene is changed on purpose.
TEST(SampleScene, HasTheSameBytesInEveryBuildOnAnyNumberOfThreads)
{
    for (const int threads : {1, 3})
    {
        VcLimitThreads(threads);
        EXPECT_EQ(HashOf(ExposeSample(RenderSampleScene(60, 40), 1)), 8769400825420722428u)
            << threads;
    }
    VcLimitThreads(0);
}

} // namespace
