#include "picture/ParallelRows.h"
#include "picture/PicBuf.h"
#include "picture/PicMap.h"
#include "picture/PicTransformRows.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <type_traits>
#include <vector>

// Resampling. A tap says which samples along one axis a position takes and with what weights; the
// taps of all columns are made once per call (the map is not turned in practice), so that a pixel
// costs only its multiplications. The filters differ in their tap and in one row routine. Rows are
// split over the task pool.
//
// These row routines are the plain loops that the tuned ones of PicTransformRows.h are measured
// by; the tuned ones take over where a row's taps lie well inside the picture.
//
// A position is in corner coordinates: sample i covers i..i+1 and has its centre at i + 0.5.

struct NearestFilter
{
    struct Tap
    {
        int index;
    };

    static Tap Make(double position, int size) { return {std::min(int(position), size - 1)}; }

    template <typename T, int C>
    static void Row(T* out, const SBxPicBuf& src, const Tap* columns, int count, const Tap& row)
    {
        const T* from = PicRow<const T>(src, row.index);
        int x = 0;
        // Four bytes move faster than three. The fourth is overwritten by the next pixel, so the
        // last one goes without, and so do those whose fourth byte would be behind the row.
        if constexpr (sizeof(T) * C == 3)
            for (; x < count - 1 && columns[x].index < src.width - 1; ++x, out += C)
                std::memcpy(out, from + columns[x].index * C, 4);
        for (; x < count; ++x, out += C)
            for (int c = 0; c < C; ++c)
                out[c] = from[columns[x].index * C + c];
    }
};

struct BilinearFilter
{
    static constexpr uint32_t kOne = 1u << kBilinearBits;
    using Tap = BilinearTap;

    static Tap Make(double position, int size)
    {
        const double centred = position - 0.5;
        const int low = int(std::floor(centred));
        const uint32_t weight = uint32_t((centred - low) * kOne + 0.5);
        return {std::max(low, 0), std::min(low + 1, size - 1), (kOne - weight) | weight << 16};
    }

    template <typename T, int C>
    static void Row(T* out, const SBxPicBuf& src, const Tap* columns, int count, const Tap& row)
    {
        using Sum = std::conditional_t<sizeof(T) == 1, uint32_t, uint64_t>;
        constexpr Sum round = Sum(1) << (2 * kBilinearBits - 1);
        const T* upper = PicRow<const T>(src, row.low);
        const T* lower = PicRow<const T>(src, row.high);
        const Sum upperWeight = row.weights & 0xFFFF, lowerWeight = row.weights >> 16;
        for (int x = 0; x < count; ++x, out += C)
        {
            const int left = columns[x].low * C, right = columns[x].high * C;
            const Sum leftWeight = columns[x].weights & 0xFFFF;
            const Sum rightWeight = columns[x].weights >> 16;
            for (int c = 0; c < C; ++c)
            {
                const Sum above = upper[left + c] * leftWeight + upper[right + c] * rightWeight;
                const Sum below = lower[left + c] * leftWeight + lower[right + c] * rightWeight;
                const Sum sum = above * upperWeight + below * lowerWeight + round;
                out[c] = T(sum >> (2 * kBilinearBits));
            }
        }
    }
};

// Catmull-Rom (Keys with a = -0.5): interpolating, so scale 1 reproduces the samples.
static void CatmullRomWeights(float weight[4], float t)
{
    weight[0] = ((-0.5f * t + 1.0f) * t - 0.5f) * t;
    weight[1] = (1.5f * t - 2.5f) * t * t + 1.0f;
    weight[2] = ((-1.5f * t + 2.0f) * t + 0.5f) * t;
    weight[3] = (0.5f * t - 0.5f) * t * t;
}

// Samples beyond the picture's edge repeat the edge.
static int EdgeClamped(int index, int size)
{
    return std::clamp(index, 0, size - 1);
}

// 8 bits, in integers.
struct BicubicFilter8
{
    using Tap = BicubicTap;

    static Tap Make(double position, int)
    {
        const double centred = position - 0.5;
        const int low = int(std::floor(centred));
        float weight[4];
        CatmullRomWeights(weight, float(centred - low));
        Tap tap = {low - 1, {}};
        int sum = 0;
        for (int i = 0; i < 4; ++i)
        {
            tap.weight[i] = int16_t(std::lround(weight[i] * float(1 << kBicubicBits)));
            sum += tap.weight[i];
        }
        // What rounding has left over goes to the nearest sample, so that flat stays flat.
        int16_t& nearest = tap.weight[tap.weight[1] >= tap.weight[2] ? 1 : 2];
        nearest = int16_t(nearest + (1 << kBicubicBits) - sum);
        return tap;
    }

    template <typename T, int C>
    static void Row(T* out, const SBxPicBuf& src, const Tap* columns, int count, const Tap& row)
    {
        const T* rows[4];
        for (int i = 0; i < 4; ++i)
            rows[i] = PicRow<const T>(src, EdgeClamped(row.first + i, src.height));
        for (int x = 0; x < count; ++x, out += C)
        {
            int at[4];
            for (int j = 0; j < 4; ++j)
                at[j] = EdgeClamped(columns[x].first + j, src.width) * C;
            for (int c = 0; c < C; ++c)
                out[c] = Sample(rows, at, c, columns[x].weight, row.weight);
        }
    }

    static uint8_t Sample(const uint8_t* const rows[4], const int at[4], int c,
                          const int16_t columnWeight[4], const int16_t rowWeight[4])
    {
        int sum = 1 << (kBicubicShift - 1);
        for (int i = 0; i < 4; ++i)
        {
            int along = 1 << (kBicubicRowShift - 1);
            for (int j = 0; j < 4; ++j)
                along += columnWeight[j] * rows[i][at[j] + c];
            sum += rowWeight[i] * (along >> kBicubicRowShift);
        }
        return uint8_t(std::clamp(sum >> kBicubicShift, 0, 255));
    }
};

// 16 bits, whose sums would not fit 32.
struct BicubicFilter16
{
    struct Tap
    {
        int index[4];
        float weight[4];
    };

    static Tap Make(double position, int size)
    {
        const double centred = position - 0.5;
        const int low = int(std::floor(centred));
        Tap tap;
        for (int i = 0; i < 4; ++i)
            tap.index[i] = EdgeClamped(low - 1 + i, size);
        CatmullRomWeights(tap.weight, float(centred - low));
        return tap;
    }

    template <typename T, int C>
    static void Row(T* out, const SBxPicBuf& src, const Tap* columns, int count, const Tap& row)
    {
        const T* rows[4];
        for (int i = 0; i < 4; ++i)
            rows[i] = PicRow<const T>(src, row.index[i]);
        for (int x = 0; x < count; ++x, out += C)
        {
            const Tap& column = columns[x];
            for (int c = 0; c < C; ++c)
            {
                float sum = 0.0f;
                for (int i = 0; i < 4; ++i)
                {
                    float along = 0.0f;
                    for (int j = 0; j < 4; ++j)
                        along += column.weight[j] * float(rows[i][column.index[j] * C + c]);
                    sum += row.weight[i] * along;
                }
                out[c] = T(std::clamp(sum, 0.0f, 65535.0f) + 0.5f);
            }
        }
    }
};

// Which pixels of a row the tuned loop of a filter may make: those whose taps have enough samples
// on both sides. The same for all rows of a picture.
struct InnerSpan
{
    int first, end;
};

template <typename Tap, typename IsInner>
static InnerSpan LongestInner(const std::vector<Tap>& columns, IsInner isInner)
{
    const int count = int(columns.size());
    InnerSpan span = {0, 0};
    while (span.first < count && !isInner(columns[size_t(span.first)]))
        ++span.first;
    span.end = span.first;
    while (span.end < count && isInner(columns[size_t(span.end)]))
        ++span.end;
    if (span.end - span.first < kLeastTunedPixels)
        span.end = span.first;
    return span;
}

static InnerSpan TunedSpan(const TransformRows& tuned, const std::vector<BilinearTap>& columns,
                           const SBxPicBuf& src)
{
    const bool grey = src.components == 1;
    if (!(grey ? tuned.bilinearGrey : tuned.bilinear))
        return {0, 0};
    const int last = src.width - (grey ? tuned.bilinearGreyReach : tuned.bilinearReach);
    return LongestInner(columns, [&](const BilinearTap& tap)
                        { return tap.high == tap.low + 1 && tap.low <= last; });
}

static InnerSpan TunedSpan(const TransformRows& tuned, const std::vector<BicubicTap>& columns,
                           const SBxPicBuf& src)
{
    if (!tuned.bicubic || src.components == 1)
        return {0, 0};
    return LongestInner(columns, [&](const BicubicTap& tap)
                        { return tap.first >= 0 && tap.first <= src.width - tuned.bicubicReach; });
}

static void TunedRow(const TransformRows& tuned, uint8_t* out, const SBxPicBuf& src,
                     const BilinearTap* columns, int count, const BilinearTap& row)
{
    const auto make = src.components == 1 ? tuned.bilinearGrey : tuned.bilinear;
    make(out, PicRow<uint8_t>(src, row.low), PicRow<uint8_t>(src, row.high), columns, count,
         row.weights);
}

static void TunedRow(const TransformRows& tuned, uint8_t* out, const SBxPicBuf& src,
                     const BicubicTap* columns, int count, const BicubicTap& row)
{
    const uint8_t* rows[4];
    for (int i = 0; i < 4; ++i)
        rows[i] = PicRow<uint8_t>(src, EdgeClamped(row.first + i, src.height));
    tuned.bicubic(out, rows, columns, count, row.weight);
}

static bool Inside(double position, int size)
{
    return position >= 0.0 && position < double(size);
}

template <typename Filter, typename T, int C>
static void TransformUpright(SBxPicBuf* dst, const SBxPicBuf& src, const double inverse[6])
{
    using Tap = typename Filter::Tap;
    int first = 0, end = dst->width;
    const auto columnAt = [&](int x) { return inverse[0] * (x + 0.5) + inverse[2]; };
    while (first < end && !Inside(columnAt(first), src.width))
        ++first;
    while (end > first && !Inside(columnAt(end - 1), src.width))
        --end;
    std::vector<Tap> columns(static_cast<size_t>(end - first));
    for (int x = first; x < end; ++x)
        columns[size_t(x - first)] = Filter::Make(columnAt(x), src.width);

    const TransformRows& tuned = VcTransformRows();
    constexpr bool canTune =
        sizeof(T) == 1 && (std::is_same_v<Tap, BilinearTap> || std::is_same_v<Tap, BicubicTap>);
    InnerSpan span = {0, 0};
    if constexpr (canTune)
        span = TunedSpan(tuned, columns, src);

    const auto makeRow = [&](int y)
    {
        const double position = inverse[4] * (y + 0.5) + inverse[5];
        if (!Inside(position, src.height))
            return;
        const Tap row = Filter::Make(position, src.height);
        T* out = PicRow<T>(*dst, y) + int64_t(first) * C;
        Filter::template Row<T, C>(out, src, columns.data(), span.first, row);
        if constexpr (canTune)
            if (span.end > span.first)
                TunedRow(tuned, out + int64_t(span.first) * C, src, columns.data() + span.first,
                         span.end - span.first, row);
        Filter::template Row<T, C>(out + int64_t(span.end) * C, src, columns.data() + span.end,
                                   end - first - span.end, row);
    };
    VcParallelRows(dst->height, (end - first) * C,
                   [&](int firstRow, int endRow)
                   {
                       for (int y = firstRow; y < endRow; ++y)
                           makeRow(y);
                   });
}

template <typename Filter, typename T, int C>
static void TransformTurned(SBxPicBuf* dst, const SBxPicBuf& src, const double inverse[6])
{
    for (int y = 0; y < dst->height; ++y)
    {
        T* out = PicRow<T>(*dst, y);
        for (int x = 0; x < dst->width; ++x, out += C)
        {
            const double sx = inverse[0] * (x + 0.5) + inverse[1] * (y + 0.5) + inverse[2];
            const double sy = inverse[3] * (x + 0.5) + inverse[4] * (y + 0.5) + inverse[5];
            if (!Inside(sx, src.width) || !Inside(sy, src.height))
                continue;
            const auto column = Filter::Make(sx, src.width);
            Filter::template Row<T, C>(out, src, &column, 1, Filter::Make(sy, src.height));
        }
    }
}

// At scale 1 a picture whose side has another parity than the area's would lie half a pixel off the
// screen's raster and blur; whole pixels are taken instead. Halves go down, which is where
// MapPointSrcToDst puts the same points.
static double WholeShift(double shift)
{
    return std::ceil(shift - 0.5);
}

// First and last (exclusive) destination position that a picture of that size covers when it is
// moved by whole pixels.
static void CoveredRange(int* first, int* end, double shift, int dstSize, int srcSize)
{
    *first = int(std::clamp(-shift, 0.0, double(dstSize)));
    *end = int(std::clamp(srcSize - shift, double(*first), double(dstSize)));
}

// Every filter gives the samples themselves here.
static void CopyShifted(SBxPicBuf* dst, const SBxPicBuf& src, const double inverse[6])
{
    const double shiftX = WholeShift(inverse[2]), shiftY = WholeShift(inverse[5]);
    int left, right, top, bottom;
    CoveredRange(&left, &right, shiftX, dst->width, src.width);
    CoveredRange(&top, &bottom, shiftY, dst->height, src.height);
    if (right <= left || bottom <= top)
        return;
    VcParallelRows(
        bottom - top, (right - left) * dst->components,
        [&](int firstRow, int endRow)
        {
            const CBxPoint<int> to = {left, top + firstRow};
            const CBxPoint<int> from = {left + int(shiftX), to.y + int(shiftY)};
            CBxPicBufAPI::CopyRect(dst, src, to, from, {right - left, endRow - firstRow});
        });
}

template <typename Filter, typename T, int C>
static void TransformSamples(SBxPicBuf* dst, const SBxPicBuf& src, const double inverse[6])
{
    if (inverse[1] != 0.0 || inverse[3] != 0.0)
        TransformTurned<Filter, T, C>(dst, src, inverse);
    else
        TransformUpright<Filter, T, C>(dst, src, inverse);
}

template <typename Filter8, typename Filter16 = Filter8>
static void Transform(SBxPicBuf* dst, const SBxPicBuf& src, const CBxPicMap& map)
{
    if (!dst->data || !src.data || (src.bitsPerComponent != 8 && src.bitsPerComponent != 16))
        return;
    const double* inverse = map.Inverse();
    const bool colour = src.components == 3;
    if (inverse[0] == 1.0 && inverse[4] == 1.0 && inverse[1] == 0.0 && inverse[3] == 0.0)
        CopyShifted(dst, src, inverse);
    else if (src.bitsPerComponent == 8)
        colour ? TransformSamples<Filter8, uint8_t, 3>(dst, src, inverse)
               : TransformSamples<Filter8, uint8_t, 1>(dst, src, inverse);
    else
        colour ? TransformSamples<Filter16, uint16_t, 3>(dst, src, inverse)
               : TransformSamples<Filter16, uint16_t, 1>(dst, src, inverse);
}

void CBxPicBufAPI::TransformConstantFast(SBxPicBuf* dst, const SBxPicBuf& src, const CBxPicMap& map)
{
    Transform<NearestFilter>(dst, src, map);
}

void CBxPicBufAPI::TransformBilinearFast(SBxPicBuf* dst, const SBxPicBuf& src, const CBxPicMap& map)
{
    Transform<BilinearFilter>(dst, src, map);
}

void CBxPicBufAPI::TransformBicubicFast(SBxPicBuf* dst, const SBxPicBuf& src, const CBxPicMap& map)
{
    Transform<BicubicFilter8, BicubicFilter16>(dst, src, map);
}
