#include "view/ImageViewOverlay.h"

#include "base/ParallelRows.h"
#include "picture/PicTransformRows.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

constexpr int kSquare = 15; // pixels of a square of the checkerboard

// Blue, green, red.
static constexpr uint8_t kCurveColour[3] = {100, 250, 100};
static constexpr uint8_t kSelectedColour[3] = {100, 250, 250};
static constexpr uint8_t kMarkerColour[3] = {100, 100, 250};

// One row of the checkerboard for each parity of its squares.
static std::vector<uint8_t> CheckerRow(int width, int parity)
{
    constexpr uint8_t kSame = 190, kDiffering = 220;
    std::vector<uint8_t> row(size_t(width) * 3);
    for (int x = 0; x < width; ++x)
        std::memset(row.data() + 3 * size_t(x), x / kSquare % 2 == parity ? kSame : kDiffering, 3);
    return row;
}

void BlendOverChecker(SBxPicBuf* picture, const SBxPicBuf& alpha)
{
    const std::vector<uint8_t> checker[2] = {CheckerRow(picture->width, 0),
                                             CheckerRow(picture->width, 1)};
    VcParallelRows(picture->height, 3 * picture->width,
                   [&](int firstRow, int endRow)
                   {
                       for (int y = firstRow; y < endRow; ++y)
                           VcTransformRows().blend(PicRow<uint8_t>(*picture, y),
                                                   checker[y / kSquare % 2].data(),
                                                   PicRow<const uint8_t>(alpha, y), picture->width);
                   });
}

// Columns first .. last, both included, as far as they lie in the row.
static void InvertColumns(const SBxPicBuf& display, int64_t y, int64_t first, int64_t last)
{
    first = std::max<int64_t>(first, 0);
    last = std::min<int64_t>(last, display.width - 1);
    uint8_t* row = PicRow<uint8_t>(display, int(y));
    for (int64_t i = 3 * first; i < 3 * (last + 1); ++i)
        row[i] = uint8_t(~row[i]);
}

void InvertFrame(SBxPicBuf* display, const CBxRect<int>& frame)
{
    // Two pixels more than an edge can overflow an int.
    const int64_t left = frame.left, top = frame.top, right = frame.right, bottom = frame.bottom;
    const int64_t endRow = std::min<int64_t>(bottom + 1, display->height);
    for (int64_t y = std::max<int64_t>(top, 0); y < endRow; ++y)
    {
        if (y < top + 2 || y > bottom - 2)
        {
            InvertColumns(*display, y, left, right);
            continue;
        }
        InvertColumns(*display, y, left, std::min(left + 1, right));
        InvertColumns(*display, y, std::max(right - 1, left + 2), right);
    }
}

static void Plot(SBxPicBuf* display, int64_t x, int64_t y, const uint8_t colour[3])
{
    if (x < 0 || y < 0 || x >= display->width || y >= display->height)
        return;
    std::copy_n(colour, 3, PicRow<uint8_t>(*display, int(y)) + 3 * x);
}

// One coordinate of a segment as a cubic of t, 0..1.
struct Cubic
{
    double a0, a1, a2, a3;
};

// Catmull-Rom: goes through p1 and p2, with the slopes of their neighbours.
static Cubic SegmentCubic(double p0, double p1, double p2, double p3)
{
    return {p1, (p2 - p0) / 2, (2 * p0 - 5 * p1 + 4 * p2 - p3) / 2,
            (3 * p1 - p0 - 3 * p2 + p3) / 2};
}

static int64_t At(const Cubic& cubic, double t)
{
    return int64_t(std::floor(((cubic.a3 * t + cubic.a2) * t + cubic.a1) * t + cubic.a0 + 0.5));
}

// How far the coordinate can change per t.
static double LargestSlope(const Cubic& cubic)
{
    return std::fabs(cubic.a1) + 2 * std::fabs(cubic.a2) + 3 * std::fabs(cubic.a3);
}

struct Segment
{
    Cubic x, y;
    double slopeX, slopeY;
};

// Whether anything between t - reach and t + reach can lie in the display. Without this test a
// segment at a high zoom would be followed for thousands of millions of pixels.
static bool MayShow(const SBxPicBuf& display, const Segment& segment, double t, double reach)
{
    const double x = double(At(segment.x, t)), y = double(At(segment.y, t));
    const double farX = segment.slopeX * reach + 2, farY = segment.slopeY * reach + 2;
    return x + farX >= 0 && x - farX <= display.width && y + farY >= 0 &&
           y - farY <= display.height;
}

// Halves the piece t0..t1 until its ends are neighbours, and plots the middles.
static void PlotBetween(SBxPicBuf* display, const Segment& segment, double t0, double t1)
{
    const double middle = (t0 + t1) / 2;
    if (!MayShow(*display, segment, middle, (t1 - t0) / 2))
        return;
    const int64_t acrossX = std::llabs(At(segment.x, t1) - At(segment.x, t0));
    const int64_t acrossY = std::llabs(At(segment.y, t1) - At(segment.y, t0));
    if (acrossX < 2 && acrossY < 2)
        return;
    Plot(display, At(segment.x, middle), At(segment.y, middle), kCurveColour);
    PlotBetween(display, segment, t0, middle);
    PlotBetween(display, segment, middle, t1);
}

void DrawPointCurve(SBxPicBuf* display, const std::vector<ScreenPoint>& points,
                    const CBxPoint<int>& origin)
{
    const int last = int(points.size()) - 1;
    const auto x = [&](int i)
    { return double(points[size_t(std::clamp(i, 0, last))].x) - origin.x; };
    const auto y = [&](int i)
    { return double(points[size_t(std::clamp(i, 0, last))].y) - origin.y; };
    for (int i = 0; i < last; ++i)
    {
        Segment segment = {SegmentCubic(x(i - 1), x(i), x(i + 1), x(i + 2)),
                           SegmentCubic(y(i - 1), y(i), y(i + 1), y(i + 2)), 0, 0};
        segment.slopeX = LargestSlope(segment.x);
        segment.slopeY = LargestSlope(segment.y);
        for (const double end : {0.0, 1.0})
            Plot(display, At(segment.x, end), At(segment.y, end), kCurveColour);
        PlotBetween(display, segment, 0.0, 1.0);
    }
}

void DrawPointMarkers(SBxPicBuf* display, const std::vector<ScreenPoint>& points,
                      const CBxPoint<int>& origin)
{
    constexpr int kOuter = 4, kInner = 2; // from the centre; what is up to kInner away stays free
    for (const ScreenPoint& point : points)
    {
        const uint8_t* colour = point.selected ? kSelectedColour : kMarkerColour;
        for (int dy = -kOuter; dy <= kOuter; ++dy)
            for (int dx = -kOuter; dx <= kOuter; ++dx)
                if (std::abs(dx) > kInner || std::abs(dy) > kInner)
                    Plot(display, int64_t(point.x) - origin.x + dx,
                         int64_t(point.y) - origin.y + dy, colour);
    }
}
