#include "picture/PicTransformRows.h"

#include "fusion/FusionThreads.h"
#include "picture/PicMap.h"
#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace
{
using TransformFn = void (*)(SBxPicBuf*, const SBxPicBuf&, const CBxPicMap&);
const TransformFn kTransforms[] = {CBxPicBufAPI::TransformConstantFast,
                                   CBxPicBufAPI::TransformBilinearFast,
                                   CBxPicBufAPI::TransformBicubicFast};

template <typename Check>
void ForEachTransformVariant(Check check)
{
    for (int i = 0; i < kTransformVariants; ++i)
    {
        const TransformRows* rows = VcTransformRowsOf(TransformVariant(i));
        if (!rows)
            continue;
        SCOPED_TRACE(rows->name);
        VcForceTransformRows(rows);
        check();
        VcForceTransformRows(nullptr);
    }
}

TestPicture Transformed(const TestPicture& source, TransformFn transform, int width, int height,
                        double scale, double centreX, double centreY)
{
    TestPicture area(width, height, source.pic.components, source.pic.bitsPerComponent);
    CBxPicBufAPI::SetConst(&area.pic, 190);
    CBxPicMap map;
    map.Compute(width / 2.0, height / 2.0, centreX, centreY, 0.0, scale);
    transform(&area.pic, source.pic, map);
    return area;
}

// Full-range noise: every wrong weight, sample or saturation shows.
TestPicture Noise(int width, int height, int components, int bits)
{
    uint32_t state = 12345;
    return PictureOf(width, height, components, bits,
                     [&](int, int, int)
                     {
                         state = state * 1664525u + 1013904223u;
                         return double(bits == 8 ? state >> 24 : state >> 16);
                     });
}

double CatmullRom(double distance)
{
    const double d = std::fabs(distance);
    if (d < 1)
        return 1.5 * d * d * d - 2.5 * d * d + 1;
    return d < 2 ? -0.5 * d * d * d + 2.5 * d * d - 4 * d + 2 : 0;
}

double Tent(double distance)
{
    return std::max(0.0, 1 - std::fabs(distance));
}

// The filter as a sum over all samples near a position (corner coordinates), edges repeated.
double Filtered(const TestPicture& source, double sx, double sy, int c, double (*kernel)(double))
{
    const int nearX = int(std::floor(sx)), nearY = int(std::floor(sy));
    double sum = 0;
    for (int y = nearY - 3; y <= nearY + 3; ++y)
        for (int x = nearX - 3; x <= nearX + 3; ++x)
            sum += kernel(x + 0.5 - sx) * kernel(y + 0.5 - sy) *
                   source.At(std::clamp(x, 0, source.pic.width - 1),
                             std::clamp(y, 0, source.pic.height - 1), c);
    return sum;
}
} // namespace

// Widths around the four pixels of a step and the reach at the right edge; at high zoom most
// pixels take an edge sample, at low zoom neighbours are far apart.
TEST(TransformVariants, GiveTheSameBits)
{
    for (const int width : {1, 2, 3, 5, 6, 7, 9, 31})
        for (const double scale : {0.37, 0.999, 1.7, 8.0, 40.0})
            for (const TransformFn transform : kTransforms)
            {
                const TestPicture source = Noise(width, 8, 3, 8);
                const TransformRows* plain = VcTransformRowsOf(TransformVariant::Plain);
                VcForceTransformRows(plain);
                const TestPicture expected =
                    Transformed(source, transform, 101, 33, scale, width * 0.5 + 0.21, 4.3);
                ForEachTransformVariant(
                    [&]
                    {
                        SCOPED_TRACE(testing::Message() << width << " wide, scale " << scale);
                        const TestPicture actual =
                            Transformed(source, transform, 101, 33, scale, width * 0.5 + 0.21, 4.3);
                        ExpectSamePicture(actual.pic, expected.pic);
                    });
            }
}

TEST(TransformThreads, ChangeNoBit)
{
    const TestPicture source = Noise(500, 400, 3, 8);
    for (const TransformFn transform : kTransforms)
    {
        VcLimitThreads(1);
        const TestPicture alone = Transformed(source, transform, 640, 480, 1.3, 250, 200);
        VcLimitThreads(0);
        const TestPicture split = Transformed(source, transform, 640, 480, 1.3, 250, 200);
        ExpectSamePicture(split.pic, alone.pic);
    }
}

TEST(TransformVariants, FollowTheFiltersDefinition)
{
    struct Filter
    {
        TransformFn transform;
        double (*kernel)(double);
    };
    const Filter filters[] = {{CBxPicBufAPI::TransformBilinearFast, Tent},
                              {CBxPicBufAPI::TransformBicubicFast, CatmullRom}};
    for (const int components : {1, 3})
    {
        const TestPicture source = Noise(40, 30, components, 8);
        for (const Filter& filter : filters)
            ForEachTransformVariant(
                [&]
                {
                    const TestPicture area =
                        Transformed(source, filter.transform, 90, 70, 2.3, 20.3, 15.1);
                    CBxPicMap map;
                    map.Compute(45, 35, 20.3, 15.1, 0.0, 2.3);
                    const double* to = map.Inverse();
                    double worst = 0;
                    for (int y = 2; y < 68; ++y)
                        for (int x = 2; x < 88; ++x)
                        {
                            const double sx = to[0] * (x + 0.5) + to[2];
                            const double sy = to[4] * (y + 0.5) + to[5];
                            const double exact =
                                std::clamp(Filtered(source, sx, sy, components - 1, filter.kernel),
                                           0.0, 255.0);
                            const double got = area.At(x, y, components - 1);
                            worst = std::max(worst, std::fabs(got - exact));
                            // Half a step of rounding, and weights of 11 bits (bilinear): a
                            // quarter of a step at the most between black and white.
                            ASSERT_NEAR(got, exact, 0.75) << x << ", " << y;
                        }
                    EXPECT_GT(worst, 0.4) << "rounding to whole steps must show";
                });
    }
}

// One source pixel per area pixel takes a shortcut; it must meet the ordinary way.
TEST(Transforms, AgreeJustBesideScaleOne)
{
    for (const int bits : {8, 16})
        for (const TransformFn transform : kTransforms)
        {
            const TestPicture source = Noise(30, 22, 3, bits);
            const double nearOne = 1.0 + 1e-12;
            const TestPicture exact = Transformed(source, transform, 40, 16, 1.0, 13, 12);
            const TestPicture close = Transformed(source, transform, 40, 16, nearOne, 13, 12);
            ExpectSamePicture(exact.pic, close.pic);
            // Nothing of the picture in the area, far away on every side.
            for (const double away : {-1e12, -60.0, 60.0, 1e12})
            {
                const TestPicture none = Transformed(source, transform, 40, 16, 1.0, away, 12);
                const TestPicture above = Transformed(source, transform, 40, 16, 1.0, 13, away);
                EXPECT_EQ(none.At(20, 8), 190);
                EXPECT_EQ(above.At(20, 8), 190);
            }
        }
}

// A wrapper's rows may lie further apart than its pixels need, and what lies between is not ours.
TEST(Transforms, LeaveTheGapBetweenRowsAlone)
{
    const TestPicture source = Noise(12, 9, 3, 8);
    uint8_t block[40 * 9];
    for (const TransformFn transform : kTransforms)
        for (const double scale : {1.0, 1.5})
        {
            std::memset(block, 77, sizeof block);
            SBxPicBuf wrapper = {block, sizeof block, 40, 12, 9, 3, 8};
            CBxPicMap map;
            map.Compute(6, 4.5, 6, 4.5, 0.0, scale);
            transform(&wrapper, source.pic, map);
            for (int y = 0; y < 9; ++y)
                for (int i = 36; i < 40; ++i)
                    ASSERT_EQ(block[40 * y + i], 77) << y << ", " << i;
        }
}
