#include "tonemap/Pyramid.h"

#include "tests/support/TestPictures.h"
#include "tonemap/PyramidPadding.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace
{
using Samples = std::vector<float>;

Samples Down(const Samples& src, int width, int height)
{
    Samples dst(size_t(width / 2) * size_t(height / 2));
    std::vector<char> scratch(size_t(PyrScratchBytes(width)));
    PyrDown(src.data(), width * 4, dst.data(), width * 2, {width, height}, scratch.data());
    return dst;
}

Samples Up(const Samples& src, int width, int height)
{
    Samples dst(size_t(width * 2) * size_t(height * 2));
    std::vector<char> scratch(size_t(PyrScratchBytes(2 * width)));
    PyrUp(src.data(), width * 4, dst.data(), width * 8, {width, height}, scratch.data());
    return dst;
}

int MirroredIndex(int i, int size)
{
    i = std::abs(i);
    return i < size ? i : 2 * (size - 1) - i;
}

// The two-dimensional sums as they are defined, in double.
double DownByFormula(const Samples& src, int width, int height, int x, int y)
{
    const double k[] = {1, 4, 6, 4, 1};
    double sum = 0.0;
    for (int j = -2; j <= 2; ++j)
        for (int i = -2; i <= 2; ++i)
            sum += k[i + 2] * k[j + 2] / 256.0 *
                   double(src[size_t(MirroredIndex(2 * y + j, height)) * size_t(width) +
                              size_t(MirroredIndex(2 * x + i, width))]);
    return sum;
}

double UpByFormula(const Samples& src, int width, int height, int x, int y)
{
    const double k[] = {1, 4, 6, 4, 1};
    double sum = 0.0;
    for (int j = -2; j <= 2; ++j)
        for (int i = -2; i <= 2; ++i)
        {
            const int sx = MirroredIndex(x + i, 2 * width), sy = MirroredIndex(y + j, 2 * height);
            if (sx % 2 == 0 && sy % 2 == 0)
                sum += 4.0 * k[i + 2] * k[j + 2] / 256.0 *
                       double(src[size_t(sy / 2) * size_t(width) + size_t(sx / 2)]);
        }
    return sum;
}
} // namespace

TEST(PyrDownAndPyrUp, FollowTheirFormulaUpToEveryEdge)
{
    for (const auto& size : {CBxSize<int>{2, 2}, {4, 2}, {6, 10}, {34, 16}, {66, 32}})
    {
        std::mt19937 random(5);
        Samples plane(size_t(size.cx) * size_t(size.cy));
        for (float& v : plane)
            v = float(random() % 1000) * 0.25f;
        const Samples down = Down(plane, size.cx, size.cy), up = Up(plane, size.cx, size.cy);
        for (int y = 0; y < size.cy / 2; ++y)
            for (int x = 0; x < size.cx / 2; ++x)
                ASSERT_NEAR(down[size_t(y * size.cx / 2 + x)],
                            DownByFormula(plane, size.cx, size.cy, x, y), 1e-4)
                    << size.cx << "x" << size.cy << " at " << x << ", " << y;
        for (int y = 0; y < size.cy * 2; ++y)
            for (int x = 0; x < size.cx * 2; ++x)
                ASSERT_NEAR(up[size_t(y * size.cx * 2 + x)],
                            UpByFormula(plane, size.cx, size.cy, x, y), 1e-4)
                    << size.cx << "x" << size.cy << " at " << x << ", " << y;
    }
}

TEST(Pyramid, CollapsesToWhatItWasBuiltFrom)
{
    const CBxSize<int> size = {544, 288};
    std::mt19937 random(3);
    Samples plane(size_t(size.cx) * size_t(size.cy));
    for (float& v : plane)
        v = float(random() % 65536) / 256.0f;
    const Samples original = plane;
    PyramidSet set;
    ASSERT_EQ(AllocatePyramid(&set, plane.data(), size, 5), Outcome::Done);
    for (int level = 0; level < 5; ++level)
        ASSERT_EQ(BuildLevel(&set, level), Outcome::Done);
    ASSERT_EQ(CollapsePyramid(&set), Outcome::Done);
    for (size_t i = 0; i < plane.size(); ++i)
        ASSERT_NEAR(plane[i], original[i], 1e-3) << i;
}

TEST(Padding, AlwaysAddsAWholeBlock)
{
    const int sides[][2] = {{1, 64},  {31, 64},   {32, 64},     {33, 96},
                            {64, 96}, {544, 576}, {1000, 1056}, {1024, 1056}};
    for (const auto& side : sides)
        EXPECT_EQ(PaddedSide(side[0], 5), side[1]) << side[0];
}

TEST(Padding, RepeatsTheLastPixelOfEachRowAndTheLastRow)
{
    for (const int bits : {8, 16})
        for (const int components : {1, 3})
        {
            const TestPicture picture =
                PictureOf(33, 5, components, bits,
                          [](int x, int y, int c) { return (x * 7 + y * 31 + c * 90) % 256; });
            TestPicture padded;
            ASSERT_EQ(PadForPyramid(padded.Record(), picture, 5), Outcome::Done);
            ASSERT_EQ(padded->width, 96);
            ASSERT_EQ(padded->height, 64);
            for (int y = 0; y < 64; ++y)
                for (int x = 0; x < 96; ++x)
                    for (int c = 0; c < components; ++c)
                        ASSERT_EQ(padded.At(x, y, c),
                                  picture.At(std::min(x, 32), std::min(y, 4), c))
                            << x << ", " << y;
        }
}
