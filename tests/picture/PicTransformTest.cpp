#include "picture/PicMap.h"

#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

#include <climits>

namespace
{
using TransformFn = void (*)(SBxPicBuf*, const SBxPicBuf&, const CBxPicMap&);
const TransformFn kTransforms[] = {CBxPicBufAPI::TransformConstantFast,
                                   CBxPicBufAPI::TransformBilinearFast,
                                   CBxPicBufAPI::TransformBicubicFast};

// Both centres in the middle, as the view has them after "fit".
CBxPicMap CentredMap(const SBxPicBuf& dst, const SBxPicBuf& src, double scale)
{
    CBxPicMap map;
    map.Compute(dst.width / 2.0, dst.height / 2.0, src.width / 2.0, src.height / 2.0, 0.0, scale);
    return map;
}

TestPicture Pattern(int width, int height, int components, int bits)
{
    return PictureOf(width, height, components, bits,
                     [](int x, int y, int c)
                     { return (x * 53 + y * 101 + c * 29 + x * y * 7) % 251; });
}
} // namespace

TEST(PictureMap, MapsBothWays)
{
    CBxPicMap map;
    map.Compute(400, 300, 50, 40, 0.0, 2.0);
    double sx, sy;
    map.MapPointDstToSrc(&sx, &sy, 402, 296);
    EXPECT_DOUBLE_EQ(sx, 51);
    EXPECT_DOUBLE_EQ(sy, 38);
    int dx, dy;
    map.MapPointSrcToDst(&dx, &dy, 60, 30);
    EXPECT_EQ(dx, 420);
    EXPECT_EQ(dy, 280);

    map.Compute(0, 0, 0, 0, 1.5707963267948966, 1.0); // a quarter turn
    map.MapPointSrcToDst(&dx, &dy, 10, 0);
    EXPECT_EQ(dx, 0);
    EXPECT_EQ(dy, 10);
}

TEST(PictureMap, BringsEveryScreenPixelBack)
{
    for (const double scale : {0.1, 0.333, 0.8333333333333334, 1.0, 1.2, 3.7, 8.0})
    {
        CBxPicMap map;
        map.Compute(517.5, 401.0, 2000.25, 1333.3, 0.0, scale);
        for (int x = -300; x < 1500; x += 7)
        {
            double sx, sy;
            int dx, dy;
            map.MapPointDstToSrc(&sx, &sy, x, 2 * x);
            map.MapPointSrcToDst(&dx, &dy, sx, sy);
            ASSERT_EQ(dx, x) << "scale " << scale;
            ASSERT_EQ(dy, 2 * x) << "scale " << scale;
        }
    }
}

TEST(PictureMap, SaturatesWhereAnIntEnds)
{
    CBxPicMap map;
    map.Compute(0, 0, 0, 0, 0.0, 1e9);
    int dx, dy;
    map.MapPointSrcToDst(&dx, &dy, 100.0, -100.0);
    EXPECT_EQ(dx, INT_MAX);
    EXPECT_EQ(dy, INT_MIN);
    map.Compute(0, 0, 0, 0, 0.0, 0.0);
    double sx, sy;
    map.MapPointDstToSrc(&sx, &sy, 1, 1);
    EXPECT_GT(sx, 1e8); // no division by zero
}

TEST(Transforms, AtScaleOneReproduceThePicture)
{
    for (const int bits : {8, 16})
        for (const int components : {1, 3})
            for (const TransformFn transform : kTransforms)
            {
                const TestPicture source = Pattern(17, 12, components, bits);
                TestPicture same(17, 12, components, bits);
                transform(&same.pic, source.pic, CentredMap(same.pic, source.pic, 1.0));
                ExpectSamePicture(same.pic, source.pic);
            }
}

// The area's side is even and the picture's odd: half a pixel would blur
// everything.
TEST(Transforms, AtScaleOneKeepToWholePixels)
{
    for (const TransformFn transform : kTransforms)
    {
        const TestPicture source = Pattern(17, 13, 3, 8);
        TestPicture area(24, 20, 3, 8);
        CBxPicBufAPI::SetConst(&area.pic, 190);
        const CBxPicMap map = CentredMap(area.pic, source.pic, 1.0);
        transform(&area.pic, source.pic, map);
        int left, top;
        map.MapPointSrcToDst(&left, &top, 0, 0);
        for (int y = 0; y < 13; ++y)
            for (int x = 0; x < 17; ++x)
                ASSERT_EQ(area.At(left + x, top + y, 1), source.At(x, y, 1)) << x << ", " << y;
        EXPECT_EQ(area.At(left - 1, top), 190);
        EXPECT_EQ(area.At(left + 17, top + 12), 190);
    }
}

TEST(NearestTransform, MakesBlocksAndKeepsTheBackground)
{
    const TestPicture source = Pattern(2, 2, 1, 8);
    TestPicture area(6, 6, 1, 8);
    CBxPicBufAPI::SetConst(&area.pic, 190);
    CBxPicBufAPI::TransformConstantFast(&area.pic, source.pic,
                                        CentredMap(area.pic, source.pic, 2.0));
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 6; ++x)
        {
            const bool border = x == 0 || y == 0 || x == 5 || y == 5;
            EXPECT_EQ(area.At(x, y), border ? 190 : source.At((x - 1) / 2, (y - 1) / 2))
                << x << ", " << y;
        }
}

TEST(BilinearTransform, WeighsByTheDistanceOfPixelCentres)
{
    const TestPicture source = PictureOf(2, 1, 1, 8, [](int x, int, int) { return 100 * x; });
    TestPicture wide(4, 2, 1, 8);
    CBxPicBufAPI::TransformBilinearFast(&wide.pic, source.pic,
                                        CentredMap(wide.pic, source.pic, 2.0));
    const double expected[] = {0, 25, 75, 100};
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(wide.At(x, 1), expected[x]);
}

// A ramp has no preferred place: whatever the scale, its values must follow the
// mapped centres.
TEST(SmoothTransforms, ShowNoShiftAtFractionalScales)
{
    const TestPicture ramp = PictureOf(
        120, 90, 1, 16, [](int x, int y, int) { return 100.0 * (x + 0.5) + 300.0 * (y + 0.5); });
    for (const double scale : {0.37, 0.8333333333333334, 1.2, 2.5})
        for (const TransformFn transform : {kTransforms[1], kTransforms[2]})
        {
            TestPicture area(64, 50, 1, 16);
            const CBxPicMap map = CentredMap(area.pic, ramp.pic, scale);
            CBxPicBufAPI::SetConst(&area.pic, 0);
            transform(&area.pic, ramp.pic, map);
            const double* to = map.Inverse();
            int compared = 0;
            for (int y = 0; y < 50; ++y)
                for (int x = 0; x < 64; ++x)
                {
                    const double sx = to[0] * (x + 0.5) + to[2], sy = to[4] * (y + 0.5) + to[5];
                    if (sx < 2 || sy < 2 || sx > 118 || sy > 88)
                        continue;
                    ++compared;
                    // The bilinear weights have 11 bits: 400 steps a pixel / 2048, and
                    // rounding.
                    ASSERT_NEAR(area.At(x, y), 100.0 * sx + 300.0 * sy, 0.75)
                        << scale << ": " << x << ", " << y;
                }
            EXPECT_GT(compared, 500);
        }
}

TEST(BicubicTransform, OvershootsAtEdgesWithoutWrapping)
{
    const TestPicture edge = PictureOf(8, 8, 3, 8, [](int x, int, int) { return x < 4 ? 0 : 255; });
    TestPicture large(32, 32, 3, 8);
    CBxPicBufAPI::TransformBicubicFast(&large.pic, edge.pic, CentredMap(large.pic, edge.pic, 4.0));
    for (int x = 0; x < 32; ++x)
        EXPECT_EQ(large.At(x, 9, 1), x < 14 ? 0 : x > 17 ? 255 : large.At(x, 9, 1)) << x;
    EXPECT_EQ(large.At(15, 9) + large.At(16, 9), 255) << "symmetric about the edge";
}

TEST(Transforms, FollowATurnedMap)
{
    const TestPicture source = Pattern(9, 9, 3, 8);
    for (const TransformFn transform : kTransforms)
    {
        TestPicture turned(9, 9, 3, 8);
        CBxPicMap map;
        map.Compute(4.5, 4.5, 4.5, 4.5, 1.5707963267948966, 1.0);
        transform(&turned.pic, source.pic, map);
        for (int y = 0; y < 9; ++y)
            for (int x = 0; x < 9; ++x)
                ASSERT_EQ(turned.At(8 - y, x, 2), source.At(x, y, 2)) << x << ", " << y;
    }
}
