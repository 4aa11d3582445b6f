#include "picture/PicMap.h"

#include <gtest/gtest.h>

#include <climits>

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
