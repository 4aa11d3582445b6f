#include "alignment/Warp.h"

#include "tests/support/TestPictures.h"
#include "tests/support/Variants.h"

#include <cmath>

TEST(Warp, ByNothingAndByWholePixelsCopies)
{
    for (const int bits : {8, 16})
        for (const int components : {1, 3})
        {
            const TestPicture source = ScenePicture(61, 47, components, bits, 0);
            TestPicture out(61, 47, components, bits);
            WarpPicture(out.Record(), source, {}, {0, 0});
            ExpectSamePicture(out, source);
            TestPicture part(30, 20, components, bits);
            WarpPicture(part.Record(), source, Translation(-2, 5), {7, 3});
            const TestPicture meant =
                PictureOf(30, 20, components, bits,
                          [&](int x, int y, int c) { return source.At(x + 5, y + 8, c); });
            ExpectSamePicture(part, meant);
        }
}

// What is straight bends by the fiftieth of a pixel that a filter so sharp takes, by its steps of a
// 256th, and by a hundredth at most between the places where this map, steep as none of a hand's,
// is followed exactly.
TEST(Warp, KeepsARampARamp)
{
    const auto ramp = [](double x, double y) { return 9000 + 300 * x + 170 * y; };
    const TestPicture source =
        PictureOf(90, 80, 1, 16, [&](int x, int y, int) { return ramp(x, y); });
    const Homography map = {{0.9998, -0.02, 3.37, 0.02, 0.9998, -1.81, 2e-4, -1e-4, 1}};
    TestPicture out(70, 60, 1, 16);
    WarpPicture(out.Record(), source, map, {8, 8});
    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 70; ++x)
        {
            const CBxPoint<double> at = MapPoint(map, x + 8, y + 8);
            const bool inside = at.x > 2 && at.y > 2 && at.x < 87 && at.y < 77;
            EXPECT_TRUE(!inside || std::abs(out.At(x, y) - ramp(at.x, at.y)) < 470 * 0.033)
                << x << ", " << y;
        }
}

// Every set of loops, on runs of every length and at all borders.
TEST(Warp, HasTheSameBitsWithEveryInstructionSet)
{
    const Homography map = {{0.998, -0.04, -2.7, 0.04, 0.999, 2.3, 1e-5, -3e-5, 1}};
    const uint64_t hashes[2][2] = {{0x9f3c17a23849c3cull, 0xde3b1f8d85c4c991ull},
                                   {0xa555023a5ae6b1d1ull, 0x71e4476afbdffaaull}};
    for (const int bits : {8, 16})
        for (const int components : {1, 3})
        {
            const TestPicture source = ScenePicture(93, 61, components, bits, 1);
            ForEachVariant(
                [&]
                {
                    TestPicture out(87, 66, components, bits);
                    WarpPicture(out.Record(), source, map, {-3, -2});
                    EXPECT_EQ(HashOf(out), hashes[bits == 16][components == 3])
                        << bits << " bits, " << components << std::hex << " 0x" << HashOf(out);
                });
        }
}

TEST(Warp, MirrorsWhatLiesBeyondTheBorder)
{
    const TestPicture source = ScenePicture(20, 15, 3, 8, 0);
    TestPicture out(20, 15, 3, 8);
    WarpPicture(out.Record(), source, Translation(-6, 3), {0, 0});
    for (int c = 0; c < 3; ++c)
    {
        EXPECT_EQ(out.At(1, 2, c), source.At(5, 5, c));
        EXPECT_EQ(out.At(10, 14, c), source.At(4, 11, c));
    }
    WarpPicture(out.Record(), source, Translation(1e9, -1e9), {0, 0}); // far out: no crash
}

// Edges overshoot into the range's ends and no farther.
TEST(Warp, ClampsAtBlackAndWhite)
{
    const TestPicture source =
        PictureOf(32, 8, 1, 8, [](int x, int, int) { return x < 16 ? 0.0 : 255.0; });
    TestPicture out(32, 8, 1, 8);
    WarpPicture(out.Record(), source, Translation(0.5, 0), {0, 0});
    EXPECT_EQ(out.At(12, 4), 0);
    EXPECT_EQ(out.At(14, 4), 0);
    EXPECT_NEAR(out.At(15, 4), 128, 1);
    EXPECT_EQ(out.At(16, 4), 255);
}

TEST(CommonRectangle, IsAllThatEveryFrameHas)
{
    const CBxSize<int> frame = {400, 300};
    const CBxRect<int> whole = CommonRectangle({Homography()}, frame);
    EXPECT_GE(whole.right - whole.left, 396);
    EXPECT_GE(whole.bottom - whole.top, 296);
    const CBxRect<int> shifted = CommonRectangle({Translation(20, 0), Translation(0, -30)}, frame);
    EXPECT_LE(shifted.left, 4);
    EXPECT_NEAR(shifted.right, 378, 2);
    EXPECT_NEAR(shifted.top, 31, 2);
    EXPECT_GE(shifted.bottom, 296);
    const Homography turned = {{0.999, -0.03, 5, 0.03, 0.999, -6, 0, 0, 1}};
    const CBxRect<int> rect = CommonRectangle({turned}, frame);
    EXPECT_GT((rect.right - rect.left) * (rect.bottom - rect.top), 0.85 * 400 * 300);
    for (const int x : {rect.left, rect.right - 1})
        for (const int y : {rect.top, rect.bottom - 1})
        {
            const CBxPoint<double> at = MapPoint(turned, x, y);
            EXPECT_TRUE(at.x >= 0 && at.y >= 0 && at.x <= 399 && at.y <= 299) << x << ", " << y;
        }
    const CBxRect<int> none = CommonRectangle({Translation(500, 0)}, frame);
    EXPECT_TRUE(none.right <= none.left);
}
