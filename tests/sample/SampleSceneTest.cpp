#include "sample/Scene.h"

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
    static const SampleRadiance scene = RenderSampleScene(180, 120, 2);
    return scene;
}

TestPicture Exposed(int stops)
{
    TestPicture picture;
    EXPECT_FALSE(ExposeSample(picture.Record(), Scene(), stops));
    return picture;
}

TEST(SampleScene, IsHeldByASeriesOfFive)
{
    const TestPicture darkest = Exposed(-4), brightest = Exposed(4);
    int clipped = 0, shadows = 0, readable = 0;
    const double limit = Percentile(SortedLuminance(Scene()), 5.0);
    for (int y = 0; y < 120; y++)
        for (int x = 0; x < 180; x++)
        {
            const float* light = &Scene().light[size_t(y * 180 + x) * 3];
            const double level = 0.0722 * light[0] + 0.7152 * light[1] + 0.2126 * light[2];
            clipped += darkest.At(x, y, 1) == 255;
            shadows += level < limit;
            readable += level < limit && brightest.At(x, y, 1) + brightest.At(x, y, 2) >= 30;
        }
    EXPECT_LE(clipped, 180 * 120 / 1000);
    EXPECT_GE(readable, shadows * 3 / 4);
}

// The number is the hash of this size on one thread, found with an optimised native build. It has
// to be replaced when the scene is changed on purpose.
TEST(SampleScene, HasTheSameBytesInEveryBuildOnAnyNumberOfThreads)
{
    for (const int threads : {1, 3})
    {
        TestPicture picture;
        ASSERT_FALSE(ExposeSample(picture.Record(), RenderSampleScene(60, 40, threads), 1));
        EXPECT_EQ(HashOf(picture), 6395286976733639248u) << threads;
    }
}

} // namespace
