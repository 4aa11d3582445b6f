#include "fusion/FusionFilter.h"

#include "fusion/FusionAccumulator.h"
#include "tests/support/Variants.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace
{

using Samples = std::vector<float>;

struct Kernel
{
    float k[5][5];

    Kernel() { FillGeneratingKernel(k); }
};
const Kernel kKernel;

Samples Reduced(const Samples& src, int srcW, int srcH)
{
    Samples dst(size_t(srcW / 2) * size_t(srcH / 2), 0.0f);
    VcReduce(dst.data(), src.data(), srcW / 2, srcH / 2, srcW, srcH, kKernel.k);
    return dst;
}

Samples Expanded(const Samples& src, int dstW, int dstH)
{
    Samples dst(size_t(dstW) * size_t(dstH), 0.0f);
    VcExpand(dst.data(), src.data(), dstW, dstH, dstW / 2, dstH / 2, kKernel.k);
    return dst;
}

// A plane whose every row is that ramp.
Samples Ramp(int w, int h)
{
    Samples ramp;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            ramp.push_back(float(x));
    return ramp;
}

void ExpectRow(const Samples& plane, int width, int row, const Samples& expected)
{
    for (int x = 0; x < width; ++x)
        EXPECT_NEAR(plane[size_t(row) * size_t(width) + size_t(x)], expected[size_t(x)], 1e-4)
            << "row " << row << ", column " << x;
}

} // namespace

TEST(ReduceAndExpand, MoveTheirWindowInsideThePlane)
{
    ForEachVariant(
        []
        {
            const Samples small = Reduced(Ramp(10, 10), 10, 10),
                          large = Expanded(Ramp(5, 5), 10, 10);
            for (int row = 0; row < 10; ++row)
            {
                ExpectRow(small, 5, row / 2, {2, 2, 4, 6, 7});
                ExpectRow(large, 10, row, {1, 1, 1, 1.5f, 2, 2.5f, 3, 3.5f, 3.5f, 3.5f});
            }
            Samples impulse(121, 0.0f);
            impulse[5 * 11 + 5] = 100.0f;
            const Samples spread = Reduced(impulse, 11, 11);
            for (int y = 0; y < 5; ++y)
                for (int x = 0; x < 5; ++x)
                    EXPECT_NEAR(spread[size_t(5 * y + x)], x / 2 == 1 && y / 2 == 1 ? 6.25f : 0.0f,
                                1e-5)
                        << x << ", " << y;
            // An odd size darkens its last three rows and columns.
            const Samples flat = Expanded(Samples(25, 100.0f), 11, 11);
            for (int y = 0; y < 11; ++y)
                for (int x = 0; x < 11; ++x)
                    EXPECT_NEAR(flat[size_t(11 * y + x)],
                                (x > 7 ? 0.9f : 1.0f) * (y > 7 ? 0.9f : 1.0f) * 100.0f, 1e-4)
                        << x << ", " << y;
        });
}

TEST(ReduceAndExpand, LeaveADestinationBelowFiveSamplesAlone)
{
    Samples dst(4 * 9, 7.0f);
    VcReduce(dst.data(), Samples(8 * 18, 1.0f).data(), 4, 9, 8, 18, kKernel.k);
    VcExpand(dst.data(), Samples(2 * 4, 1.0f).data(), 4, 9, 2, 4, kKernel.k);
    EXPECT_EQ(dst, Samples(4 * 9, 7.0f));
}

// Around every edge of the loops: borders, pairs, vector widths and the pieces
// of long rows.
TEST(ReduceAndExpand, TunedAgreeWithThePlainLoopsAtEverySize)
{
    const int sizes[][2] = {{6, 12},  {7, 11},   {9, 10},    {10, 9},    {11, 7},    {12, 6},
                            {13, 33}, {31, 16},  {32, 15},   {33, 14},   {63, 65},   {64, 13},
                            {65, 12}, {127, 10}, {2047, 10}, {2051, 11}, {4097, 12}, {4103, 13}};
    for (const auto& size : sizes)
    {
        const int w = size[0], h = size[1];
        std::mt19937 random(static_cast<unsigned>(w * 1000 + h));
        Samples fine(size_t(w) * size_t(h)), coarse(size_t(w / 2) * size_t(h / 2));
        for (float& v : fine)
            v = float(random() % 65536);
        for (float& v : coarse)
            v = float(random() % 65536);

        ForceInstructionSet(InstructionSet::Plain);
        const Samples reduced = Reduced(fine, w, h), expanded = Expanded(coarse, w, h);
        Samples firstReduced, firstExpanded;
        ForEachVariant(
            [&]
            {
                const Samples r = Reduced(fine, w, h), e = Expanded(coarse, w, h);
                // A few roundings of numbers near 65536 * 0.4.
                for (size_t i = 0; i < r.size(); ++i)
                    ASSERT_NEAR(r[i], reduced[i], 0.05) << w << "x" << h << " at " << i;
                for (size_t i = 0; i < e.size(); ++i)
                    ASSERT_NEAR(e[i], expanded[i], 0.05) << w << "x" << h << " at " << i;
                if (InstructionSetInUse() == InstructionSet::Plain)
                    return;
                if (firstReduced.empty())
                    firstReduced = r, firstExpanded = e;
                EXPECT_EQ(r, firstReduced) << "the tuned sets must agree to the bit";
                EXPECT_EQ(e, firstExpanded) << "the tuned sets must agree to the bit";
            });
    }
}
