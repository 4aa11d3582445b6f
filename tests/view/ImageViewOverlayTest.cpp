#include "view/ImageViewOverlay.h"

#include "tests/support/TestView.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <set>
#include <utility>

namespace
{
using Pixels = std::set<std::pair<int, int>>;

// Pixels of the display that are not the 77 it started with.
Pixels Changed(const TestView& t)
{
    Pixels changed;
    for (int y = 0; y < t.display->height; ++y)
        for (int x = 0; x < t.display->width; ++x)
            if (t.display.At(x, y, 0) != 77 || t.display.At(x, y, 2) != 77)
                changed.insert({x, y});
    return changed;
}

Pixels Inside(const TestView& t, const Pixels& pixels)
{
    Pixels inside;
    for (const auto& [x, y] : pixels)
        if (x >= 0 && y >= 0 && x < t.display->width && y < t.display->height)
            inside.insert({x, y});
    return inside;
}

// The frame as it is defined: four rows without the outer two columns, then four columns.
Pixels FrameByDefinition(const TestView& t, const CBxRect<int>& r)
{
    Pixels frame;
    for (const int y : {r.top, r.top + 1, r.bottom - 1, r.bottom})
        for (int x = r.left + 2; x <= r.right - 2; ++x)
            frame.insert({x, y});
    for (const int x : {r.left, r.left + 1, r.right - 1, r.right})
        for (int y = r.top; y <= r.bottom; ++y)
            frame.insert({x, y});
    return Inside(t, frame);
}

// The curve as it is defined, without any thought of where the display ends.
struct SlowCurve
{
    Pixels pixels;
    double a[2][4] = {};

    int At(int axis, double t) const
    {
        const double* k = a[axis];
        return int(std::floor(((k[3] * t + k[2]) * t + k[1]) * t + k[0] + 0.5));
    }
    void Plot(double t) { pixels.insert({At(0, t), At(1, t)}); }
    void Halve(double t0, double t1)
    {
        if (std::abs(At(0, t1) - At(0, t0)) < 2 && std::abs(At(1, t1) - At(1, t0)) < 2)
            return;
        const double middle = (t0 + t1) / 2;
        Plot(middle);
        Halve(t0, middle);
        Halve(middle, t1);
    }
    void Draw(const std::vector<ScreenPoint>& points)
    {
        const int n = int(points.size());
        for (int i = 0; i + 1 < n; ++i)
        {
            for (int axis = 0; axis < 2; ++axis)
            {
                double p[4];
                for (int k = 0; k < 4; ++k)
                {
                    const ScreenPoint& point =
                        points[size_t(std::min(std::max(i + k - 1, 0), n - 1))];
                    p[k] = axis ? point.y : point.x;
                }
                a[axis][0] = p[1];
                a[axis][1] = 0.5 * (p[2] - p[0]);
                a[axis][2] = p[0] - 2.5 * p[1] + 2 * p[2] - 0.5 * p[3];
                a[axis][3] = 1.5 * p[1] - 0.5 * p[0] - 1.5 * p[2] + 0.5 * p[3];
            }
            Plot(0);
            Plot(1);
            Halve(0, 1);
        }
    }
};
} // namespace

TEST(PreviewFrame, InvertsTwoPixelsAllAroundOnceEach)
{
    const CBxRect<int> frames[] = {
        {10, 10, 50, 40}, {-5, -5, 50, 40}, {60, 50, 90, 90}, {-3, 20, 200, 30}, {10, 10, 14, 14},
        {30, 30, 34, 60}, {0, 0, 79, 69},   {-1, -1, 80, 70}, {20, 5, 25, 66},
    };
    for (const CBxRect<int>& frame : frames)
    {
        SCOPED_TRACE(testing::Message() << frame.left << ", " << frame.top << ", " << frame.right
                                        << ", " << frame.bottom);
        TestView t(80, 70);
        InvertFrame(t.display.Record(), frame);
        EXPECT_EQ(Changed(t), FrameByDefinition(t, frame));
        EXPECT_EQ(size_t(t.CountOf({178, 178, 178})), Changed(t).size());
        InvertFrame(t.display.Record(), frame);
        EXPECT_TRUE(Changed(t).empty()) << "twice restores";
    }
}

// Sides that meet must not invert back.
TEST(PreviewFrame, IsFullWhenItIsSmall)
{
    for (int side = 0; side <= 3; ++side)
        for (int other = 0; other <= 9; ++other)
        {
            TestView wide(20, 20), high(20, 20);
            InvertFrame(wide.display.Record(), {5, 6, 5 + other, 6 + side});
            InvertFrame(high.display.Record(), {5, 6, 5 + side, 6 + other});
            EXPECT_EQ(Changed(wide).size(), size_t((side + 1) * (other + 1))) << side;
            EXPECT_EQ(Changed(high).size(), size_t((side + 1) * (other + 1))) << side;
        }
    TestView t(20, 20);
    InvertFrame(t.display.Record(), {9, 9, 5, 5});
    EXPECT_TRUE(Changed(t).empty());
    // Quick and right at the ends of an int.
    InvertFrame(t.display.Record(), {INT_MIN, INT_MIN, INT_MAX, INT_MAX});
    InvertFrame(t.display.Record(), {INT_MAX, INT_MAX, INT_MAX, INT_MAX});
    EXPECT_TRUE(Changed(t).empty());
    InvertFrame(t.display.Record(), {INT_MIN, 4, INT_MAX, 15});
    EXPECT_EQ(Changed(t).size(), 80u);
}

TEST(PointCurve, FollowsItsDefinitionInsideAndOutsideOfTheDisplay)
{
    uint32_t state = 7;
    const auto random = [&](int from, int to)
    {
        state = state * 1664525u + 1013904223u;
        return from + int(state >> 8) % (to - from);
    };
    for (int round = 0; round < 40; ++round)
    {
        std::vector<ScreenPoint> points;
        for (int i = 0; i < 1 + round % 6; ++i)
            points.push_back({random(-900, 1000), random(-900, 1000), false});
        if (round % 3 == 0)
            points.push_back(points.back()); // a segment that goes nowhere
        SlowCurve expected;
        expected.Draw(points);
        TestView t(120, 100);
        DrawPointCurve(t.display.Record(), points, {0, 0});
        ASSERT_EQ(Changed(t), Inside(t, expected.pixels)) << "round " << round;
    }
}

// Followed pixel by pixel this would take minutes.
TEST(PointCurve, IsQuickAtAHighZoom)
{
    TestView t(400, 300);
    DrawPointCurve(t.display.Record(),
                   {{INT_MIN, INT_MIN, false},
                    {INT_MAX, INT_MAX, false},
                    {INT_MAX, INT_MIN, false},
                    {200, 150, false},
                    {2000000000, 150, false}},
                   {0, 37});
    EXPECT_TRUE(Changed(t).count({200, 113}));
    EXPECT_GE(Changed(t).size(), 200u);
}

TEST(PointMarkers, AreHollowSquaresThatMayBeCut)
{
    TestView t(60, 40);
    DrawPointMarkers(t.display.Record(), {{20, 20, true}, {40, 20, false}}, {0, 0});
    EXPECT_EQ(t.CountOf({100, 250, 250}), 56);
    EXPECT_EQ(t.CountOf({100, 100, 250}), 56);
    const Pixels changed = Changed(t);
    EXPECT_TRUE(changed.count({16, 16}) && changed.count({23, 20}) && changed.count({20, 24}));
    EXPECT_FALSE(changed.count({22, 20}) || changed.count({18, 18}) || changed.count({25, 20}));

    TestView cut(60, 40);
    DrawPointMarkers(cut.display.Record(),
                     {{0, 0, false}, {INT_MAX, INT_MIN, false}, {INT_MIN, INT_MAX, true}}, {0, 37});
    EXPECT_TRUE(Changed(cut).empty());
    DrawPointMarkers(cut.display.Record(), {{0, 37, false}}, {0, 37});
    EXPECT_EQ(Changed(cut).size(), 16u); // a 5 x 5 corner without its inner 3 x 3
}
