#include "alignment/Warp.h"

#include "base/ParallelRows.h"

#include <algorithm>
#include <array>
#include <cmath>

constexpr int kTaps = 4;
constexpr int kPhases = 64;     // places of the filter between two pixels
constexpr int kWeightBits = 12; // weights of a phase add up to 1 << kWeightBits
constexpr int kSideBits = 4;    // kept behind the point between the two directions
constexpr double kSharpness = -0.5;

using PhaseWeights = std::array<int32_t, kTaps>;

static double Keys(double t)
{
    t = std::abs(t);
    if (t < 1)
        return ((kSharpness + 2) * t - (kSharpness + 3)) * t * t + 1;
    return t < 2 ? ((kSharpness * t - 5 * kSharpness) * t + 8 * kSharpness) * t - 4 * kSharpness
                 : 0;
}

static std::array<PhaseWeights, kPhases> MakeWeights()
{
    std::array<PhaseWeights, kPhases> table = {};
    for (int phase = 0; phase < kPhases; ++phase)
    {
        int32_t sum = 0;
        for (int tap = 0; tap < kTaps; ++tap)
        {
            const double weight = Keys(double(phase) / kPhases + 1 - tap);
            table[size_t(phase)][size_t(tap)] =
                int32_t(std::floor(weight * (1 << kWeightBits) + 0.5));
            sum += table[size_t(phase)][size_t(tap)];
        }
        table[size_t(phase)][phase < kPhases / 2 ? 1 : 2] += (1 << kWeightBits) - sum;
    }
    return table;
}

// A place in the source: the pixel to its upper left, and how far it is away from that in 64ths.
struct SourcePlace
{
    int x, y, phaseX, phaseY;
};

static SourcePlace PlaceOf(const CBxPoint<double>& at, const SBxPicBuf& src)
{
    // Anything farther away mirrors to nonsense anyway, and stays in the range of an int here.
    const double x = std::clamp(at.x, -2.0 * src.width, 3.0 * src.width);
    const double y = std::clamp(at.y, -2.0 * src.height, 3.0 * src.height);
    const int fineX = int(std::floor(x * kPhases + 0.5)),
              fineY = int(std::floor(y * kPhases + 0.5));
    return {fineX >> 6, fineY >> 6, fineX & (kPhases - 1), fineY & (kPhases - 1)};
}
static_assert(kPhases == 1 << 6);

// About the outermost sample, as often as it takes.
static int Mirrored(int i, int count)
{
    if (count == 1)
        return 0;
    const int period = 2 * (count - 1);
    i = ((i % period) + period) % period;
    return i < count ? i : period - i;
}

template <typename T, int kComponents>
static void Mix(T* out, const T* const rows[kTaps], const int offsets[kTaps],
                const PhaseWeights& across, const PhaseWeights& down)
{
    constexpr int64_t top = int64_t(T(~T(0)));
    for (int c = 0; c < kComponents; ++c)
    {
        int64_t sum = 0;
        for (int j = 0; j < kTaps; ++j)
        {
            int32_t row = 0;
            for (int i = 0; i < kTaps; ++i)
                row += across[size_t(i)] * int32_t(rows[j][offsets[i] + c]);
            // A sharp filter leaves the range of its samples by a quarter at most: this fits.
            sum += int64_t(down[size_t(j)]) * (row >> (kWeightBits - kSideBits));
        }
        constexpr int kShift = kWeightBits + kSideBits;
        out[c] = T(std::clamp<int64_t>((sum + (int64_t(1) << (kShift - 1))) >> kShift, 0, top));
    }
}

template <typename T, int kComponents>
static void WarpRows(SBxPicBuf* dst, const SBxPicBuf& src, const Homography& map,
                     const CBxPoint<int>& origin, int first, int end)
{
    static const std::array<PhaseWeights, kPhases> weights = MakeWeights();
    for (int y = first; y < end; ++y)
    {
        T* out = PicRow<T>(*dst, y);
        for (int x = 0; x < dst->width; ++x, out += kComponents)
        {
            const SourcePlace at = PlaceOf(MapPoint(map, x + origin.x, y + origin.y), src);
            const T* rows[kTaps];
            int offsets[kTaps];
            const bool inside =
                at.x >= 1 && at.y >= 1 && at.x + 2 < src.width && at.y + 2 < src.height;
            for (int tap = 0; tap < kTaps; ++tap)
            {
                const int column = at.x + tap - 1, row = at.y + tap - 1;
                rows[tap] = PicRow<T>(src, inside ? row : Mirrored(row, src.height));
                offsets[tap] = kComponents * (inside ? column : Mirrored(column, src.width));
            }
            Mix<T, kComponents>(out, rows, offsets, weights[size_t(at.phaseX)],
                                weights[size_t(at.phaseY)]);
        }
    }
}

void WarpPicture(SBxPicBuf* dst, const SBxPicBuf& src, const Homography& map,
                 const CBxPoint<int>& origin)
{
    VcParallelRows(dst->height, dst->width * dst->components,
                   [&](int first, int end)
                   {
                       const bool bytes = dst->bitsPerComponent == 8;
                       if (dst->components == 3)
                           bytes ? WarpRows<uint8_t, 3>(dst, src, map, origin, first, end)
                                 : WarpRows<uint16_t, 3>(dst, src, map, origin, first, end);
                       else
                           bytes ? WarpRows<uint8_t, 1>(dst, src, map, origin, first, end)
                                 : WarpRows<uint16_t, 1>(dst, src, map, origin, first, end);
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
