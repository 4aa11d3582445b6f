#include "picture/PicTransformRows.h"

#include "base/ParallelRows.h"
#include "picture/PicMap.h"
#include "tests/support/TestPictures.h"
#include "tests/support/Variants.h"

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

// The area's middle shows this place of the picture.
CBxPicMap MapTo(int width, int height, double scale, double centreX, double centreY,
                double turn = 0.0)
{
    CBxPicMap map;
    map.Compute(width / 2.0, height / 2.0, centreX, centreY, turn, scale);
    return map;
}

TestPicture Transformed(const TestPicture& source, TransformFn transform, int width, int height,
                        const CBxPicMap& map)
{
    TestPicture area(width, height, source->components, source->bitsPerComponent);
    CBxPicBufAPI::SetConst(area.Record(), 190);
    transform(area.Record(), source, map);
    return area;
}

// Noise over all of 8 bits, or over as many steps at the top of 16: every wrong weight, sample or
// saturation shows.
TestPicture Noise(int width, int height, int components, int bits)
{
    uint32_t state = 12345;
    return PictureOf(width, height, components, bits,
                     [&](int, int, int)
                     {
                         state = state * 1664525u + 1013904223u;
                         return double(state >> 24) + (bits == 16 ? 65280 : 0);
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
                   source.At(std::clamp(x, 0, source->width - 1),
                             std::clamp(y, 0, source->height - 1), c);
    return std::clamp(sum, 0.0, source->bitsPerComponent == 8 ? 255.0 : 65535.0);
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
                const CBxPicMap map = MapTo(101, 33, scale, width * 0.5 + 0.21, 4.3);
                ForceInstructionSet(InstructionSet::Plain);
                const TestPicture expected = Transformed(source, transform, 101, 33, map);
                SCOPED_TRACE(testing::Message() << width << " wide, scale " << scale);
                ForEachVariant(
                    [&]
                    { ExpectSamePicture(Transformed(source, transform, 101, 33, map), expected); });
            }
}

// Taken from the native build; holds for every variant and system.
TEST(Transforms, GiveTheSameBitsOnEveryBuild)
{
    const struct
    {
        int components, bits;
        uint64_t hash;
    } cases[] = {{1, 8, 12005541800936136141u},
                 {3, 8, 8126235535416766140u},
                 {1, 16, 15928601316779655713u},
                 {3, 16, 4603863155614916853u}};
    for (const auto& c : cases)
    {
        const TestPicture source = Noise(133, 91, c.components, c.bits);
        ForEachVariant(
            [&]
            {
                uint64_t hash = 0;
                for (const TransformFn transform : kTransforms)
                    for (const double scale : {0.37, 1.0, 1.7, 8.0})
                        hash = hash * 31 + HashOf(Transformed(source, transform, 101, 77,
                                                              MapTo(101, 77, scale, 61.21, 44.3)));
                EXPECT_EQ(hash, c.hash) << c.components << " x " << c.bits;
            });
    }
}

TEST(TransformThreads, ChangeNoBit)
{
    const TestPicture source = Noise(500, 400, 3, 8);
    const CBxPicMap map = MapTo(640, 480, 1.3, 250, 200);
    for (const TransformFn transform : kTransforms)
    {
        VcLimitThreads(1);
        const TestPicture alone = Transformed(source, transform, 640, 480, map);
        VcLimitThreads(0);
        ExpectSamePicture(Transformed(source, transform, 640, 480, map), alone);
    }
}

TEST(TransformVariants, FollowTheFiltersDefinition)
{
    const std::pair<TransformFn, double (*)(double)> filters[] = {
        {CBxPicBufAPI::TransformBilinearFast, Tent},
        {CBxPicBufAPI::TransformBicubicFast, CatmullRom}};
    for (const int components : {1, 3})
        for (const int bits : {8, 16})
            for (const double scale : {0.37, 0.8333333333333334, 2.3})
                for (const auto& [transform, kernel] : filters)
                {
                    const TestPicture source = Noise(300, 240, components, bits);
                    const CBxPicMap map = MapTo(90, 70, scale, 150.3, 120.1);
                    const double* to = map.Inverse();
                    ForEachVariant(
                        [&, transform = transform, kernel = kernel]
                        {
                            const TestPicture area = Transformed(source, transform, 90, 70, map);
                            double worst = 0;
                            for (int y = 0; y < 70; ++y)
                                for (int x = 0; x < 90; ++x)
                                {
                                    const double exact =
                                        Filtered(source, to[0] * (x + 0.5) + to[2],
                                                 to[4] * (y + 0.5) + to[5], components - 1, kernel);
                                    const double got = area.At(x, y, components - 1);
                                    worst = std::max(worst, std::fabs(got - exact));
                                    // Half a step of rounding, and weights of 11 bits
                                    // (bilinear): a quarter of a step at the most between
                                    // black and white.
                                    ASSERT_NEAR(got, exact, 0.75)
                                        << scale << ": " << x << ", " << y;
                                }
                            EXPECT_GT(worst, 0.4) << "rounding to whole steps must show";
                        });
                }
}

TEST(NearestTransform, MakesBlocksAndKeepsTheBackground)
{
    const TestPicture source = Noise(2, 2, 1, 8);
    const TestPicture area = Transformed(source, kTransforms[0], 6, 6, MapTo(6, 6, 2.0, 1, 1));
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 6; ++x)
        {
            const bool border = x == 0 || y == 0 || x == 5 || y == 5;
            EXPECT_EQ(area.At(x, y), border ? 190 : source.At((x - 1) / 2, (y - 1) / 2))
                << x << ", " << y;
        }
}

// The area's sides are even and the picture's odd, as often as not: half a pixel would blur
// everything. One source pixel per area pixel takes a shortcut, which must meet the ordinary way.
TEST(Transforms, AtScaleOneReproduceThePicture)
{
    for (const int bits : {8, 16})
        for (const int components : {1, 3})
            for (const TransformFn transform : kTransforms)
            {
                const TestPicture source = Noise(17, 13, components, bits);
                const CBxPicMap map = MapTo(24, 20, 1.0, 8.5, 6.5);
                const TestPicture area = Transformed(source, transform, 24, 20, map);
                int left, top;
                map.MapPointSrcToDst(&left, &top, 0, 0);
                for (int y = 0; y < 20; ++y)
                    for (int x = 0; x < 24; ++x)
                    {
                        const int sx = x - left, sy = y - top;
                        const bool inside = sx >= 0 && sx < 17 && sy >= 0 && sy < 13;
                        ASSERT_EQ(area.At(x, y), inside ? source.At(sx, sy) : 190)
                            << x << ", " << y;
                    }
                ExpectSamePicture(
                    Transformed(source, transform, 24, 20, MapTo(24, 20, 1.0, 8, 6)),
                    Transformed(source, transform, 24, 20, MapTo(24, 20, 1 + 1e-12, 8, 6)));
                // Nothing of the picture in the area, far away on every side.
                for (const double away : {-1e12, -60.0, 60.0, 1e12})
                    EXPECT_EQ(Transformed(source, transform, 24, 20, MapTo(24, 20, 1, away, 6))
                                  .At(12, 10),
                              190);
            }
}

TEST(Transforms, FollowATurnedMap)
{
    const TestPicture source = Noise(9, 9, 3, 8);
    for (const TransformFn transform : kTransforms)
    {
        const TestPicture turned =
            Transformed(source, transform, 9, 9, MapTo(9, 9, 1.0, 4.5, 4.5, 1.5707963267948966));
        for (int y = 0; y < 9; ++y)
            for (int x = 0; x < 9; ++x)
                ASSERT_EQ(turned.At(8 - y, x, 2), source.At(x, y, 2)) << x << ", " << y;
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
            transform(&wrapper, source, MapTo(12, 9, scale, 6, 4.5));
            for (int y = 0; y < 9; ++y)
                for (int i = 36; i < 40; ++i)
                    ASSERT_EQ(block[40 * y + i], 77) << y << ", " << i;
        }
}
