#include "alignment/Warp.h"

#include "alignment/WarpRows.h"
#include "base/ParallelRows.h"

#include <algorithm>
#include <cmath>

// Every 16 pixels along a row the map is followed exactly, and between them the places lie on a
// straight line. What a hand-held camera does bends such a line by less than 64 times the map's
// perspective, in pixels: the filter's own steps are coarser on any photograph.

static constexpr double kPlacesPerPixel = 1 << kWarpPlaceBits;

struct FinePlace
{
    int64_t x, y;
};

static FinePlace PlaceOf(const CBxPoint<double>& at, const SBxPicBuf& src)
{
    constexpr int64_t kHalfPhase = int64_t(1) << (kWarpPlaceBits - kWarpPhaseBits - 1);
    // Anything farther away mirrors to nonsense anyway.
    const double x = std::clamp(at.x, -2.0 * src.width, 3.0 * src.width);
    const double y = std::clamp(at.y, -2.0 * src.height, 3.0 * src.height);
    return {int64_t(std::floor(x * kPlacesPerPixel + 0.5)) + kHalfPhase,
            int64_t(std::floor(y * kPlacesPerPixel + 0.5)) + kHalfPhase};
}

static bool IsWithin(int64_t place, int low, int high)
{
    return (place >> kWarpPlaceBits) >= low && (place >> kWarpPlaceBits) <= high;
}

static bool SuitsTunedLoops(const WarpRun& run, const SBxPicBuf& src)
{
    const int64_t last = run.count - 1;
    for (const int64_t x : {run.x, run.x + last * run.stepX})
        if (!IsWithin(x, kWarpLeft, src.width - kWarpRight))
            return false;
    for (const int64_t y : {run.y, run.y + last * run.stepY})
        if (!IsWithin(y, kWarpAbove, src.height - kWarpBelow))
            return false;
    return true;
}

void WarpPicture(SBxPicBuf* dst, const SBxPicBuf& src, const Homography& map,
                 const CBxPoint<int>& origin)
{
    const size_t depth = dst->bitsPerComponent == 16, colour = dst->components == 3;
    const WarpLoop tuned = VcWarpLoops().loop[depth][colour];
    const WarpLoop plain = VcPlainWarpLoops().loop[depth][colour];
    const WarpSource source = {src.data, src.stride, src.width, src.height, VcWarpPhases()};
    const int pixelBytes = dst->components * dst->bitsPerComponent / 8;
    const auto warpRow = [&](int y)
    {
        const auto placeAt = [&](int x)
        { return PlaceOf(MapPoint(map, x + origin.x, y + origin.y), src); };
        uint8_t* out = PicRow<uint8_t>(*dst, y);
        FinePlace at = placeAt(0);
        for (int x = 0; x < dst->width; x += kWarpRun, out += kWarpRun * pixelBytes)
        {
            const FinePlace next = placeAt(x + kWarpRun);
            const WarpRun run = {at.x, at.y, (next.x - at.x) / kWarpRun, (next.y - at.y) / kWarpRun,
                                 std::min(kWarpRun, dst->width - x)};
            (SuitsTunedLoops(run, src) ? tuned : plain)(out, source, run);
            at = next;
        }
    };
    VcParallelRows(dst->height, dst->width * dst->components,
                   [&](int first, int end)
                   {
                       for (int y = first; y < end; ++y)
                           warpRow(y);
                   });
}

// Whether the corners, and with them all of a convex map's image, stay clear of the border by the
// filter's surroundings.
static bool IsInside(const CBxRect<int>& rect, const Homography& map, CBxSize<int> frame)
{
    constexpr double kMargin = 1;
    for (const int x : {rect.left, rect.right - 1})
        for (const int y : {rect.top, rect.bottom - 1})
        {
            const CBxPoint<double> at = MapPoint(map, x, y);
            if (!(at.x >= kMargin && at.y >= kMargin && at.x <= frame.cx - 1 - kMargin &&
                  at.y <= frame.cy - 1 - kMargin))
                return false;
        }
    return true;
}

// Every side is moved outwards as long as the rectangle stays inside, by halving steps, all sides
// in turn, so that none takes the room of the others.
CBxRect<int> CommonRectangle(const std::vector<Homography>& maps, CBxSize<int> frame)
{
    const auto fits = [&](const CBxRect<int>& rect)
    {
        return rect.left >= 0 && rect.top >= 0 && rect.right <= frame.cx &&
               rect.bottom <= frame.cy &&
               std::all_of(maps.begin(), maps.end(),
                           [&](const Homography& map) { return IsInside(rect, map, frame); });
    };
    CBxRect<int> rect = {frame.cx / 2, frame.cy / 2, frame.cx / 2 + 1, frame.cy / 2 + 1};
    if (!fits(rect))
        return {0, 0, 0, 0};
    // Diagonally first, in the frame's proportions, then each side for itself.
    for (int step = std::max(frame.cx, frame.cy); step > 0; step /= 2)
        for (;;)
        {
            const int stepY = int(int64_t(step) * frame.cy / std::max(frame.cx, frame.cy));
            const int stepX = int(int64_t(step) * frame.cx / std::max(frame.cx, frame.cy));
            const CBxRect<int> larger = {rect.left - stepX, rect.top - stepY, rect.right + stepX,
                                         rect.bottom + stepY};
            if ((stepX == 0 && stepY == 0) || !fits(larger))
                break;
            rect = larger;
        }
    for (int step = std::max(frame.cx, frame.cy); step > 0; step /= 2)
        for (int side = 0; side < 4; ++side)
        {
            CBxRect<int> larger = rect;
            (side == 0   ? larger.left
             : side == 1 ? larger.top
             : side == 2 ? larger.right
                         : larger.bottom) += side < 2 ? -step : step;
            if (fits(larger))
                rect = larger;
        }
    return rect;
}
