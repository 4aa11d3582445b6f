#include "picture/PicTransform.h"

#include "base/ParallelRows.h"
#include "picture/PicTransformFilters.h"

#include <algorithm>
#include <cmath>
#include <type_traits>
#include <vector>

// Resampling. The taps of all columns are made once per call (the map is not turned in practice),
// so that a pixel costs only its multiplications. Rows are split over the task pool. Where a row's
// taps lie well inside the picture, the tuned loops of PicTransformRows.h take over from the plain
// ones of the filters.

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

void TransformNearest(SBxPicBuf* dst, const SBxPicBuf& src, const CBxPicMap& map)
{
    Transform<NearestFilter>(dst, src, map);
}

void TransformBilinear(SBxPicBuf* dst, const SBxPicBuf& src, const CBxPicMap& map)
{
    Transform<BilinearFilter>(dst, src, map);
}

void TransformBicubic(SBxPicBuf* dst, const SBxPicBuf& src, const CBxPicMap& map)
{
    Transform<BicubicFilter8, BicubicFilter16>(dst, src, map);
}
