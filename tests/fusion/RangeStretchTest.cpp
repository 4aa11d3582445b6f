#include "fusion/RangeStretch.h"

#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

namespace
{
double Stretched8(int value, unsigned lo, unsigned hi)
{
    const TestPicture source = FlatPicture(3, 2, 8, {double(value), 0, 255});
    TestPicture result(3, 2, 3, 8);
    EXPECT_FALSE(VcStretchRange8(result.Record(), source, lo, hi));
    return result.At(2, 1, 0);
}

double Stretched16(int value, unsigned lo, unsigned hi)
{
    TestPicture picture = FlatPicture(3, 2, 16, {double(value)});
    EXPECT_FALSE(VcStretchRange16(picture.Record(), picture, lo, hi)); // in place
    return picture.At(2, 1);
}
} // namespace

TEST(RangeStretch, TruncatesBetweenItsBounds)
{
    const unsigned highs[] = {240, 200, 160, 120, 80};
    const double expected[] = {106, 127, 159, 212, 255};
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(Stretched8(100, 0, highs[i]), expected[i]) << highs[i];
    EXPECT_EQ(Stretched8(240, 160, 255), 214);
    EXPECT_EQ(Stretched8(159, 160, 255), 0);
    EXPECT_EQ(Stretched16(30000, 0, 61440), 31999);
    EXPECT_EQ(Stretched16(30000, 20480, 65535), 13847);
}

TEST(RangeStretch, LooksAtItsUpperBoundFirst)
{
    EXPECT_EQ(Stretched8(99, 100, 100), 0);
    EXPECT_EQ(Stretched8(100, 100, 100), 255);
    EXPECT_EQ(Stretched8(90, 120, 80), 255) << "bounds the wrong way round";
    EXPECT_EQ(Stretched16(65535, 0, 65535), 65535);
}
