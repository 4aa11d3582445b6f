#include "picture/PicBuf.h"
#include "picture/PicMap.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <type_traits>
#include <vector>

// Resampling. A tap says which samples along one axis a position takes and with what weights; the
// taps of all columns are made once per call (the map is not turned in practice), so that a pixel
// costs only its multiplications. The three filters differ in their tap and in one row routine.
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
        for (int x = 0; x < count; ++x, out += C)
            for (int c = 0; c < C; ++c)
                out[c] = from[columns[x].index * C + c];
    }
};

struct BilinearFilter
{
    // Weights have 11 bits: the product of two and an 8-bit sample stays below 2^31.
    static constexpr int kWeightBits = 11;
    static constexpr uint32_t kOne = 1u << kWeightBits;

    struct Tap
    {
        int low, high;
        uint32_t weight; // of the high sample, 0..kOne
    };

    static Tap Make(double position, int size)
    {
        const double centred = position - 0.5;
        const int low = int(std::floor(centred));
        const uint32_t weight = uint32_t((centred - low) * kOne + 0.5);
        return {std::max(low, 0), std::min(low + 1, size - 1), weight};
    }

    template <typename T, int C>
    static void Row(T* out, const SBxPicBuf& src, const Tap* columns, int count, const Tap& row)
    {
        using Sum = std::conditional_t<sizeof(T) == 1, uint32_t, uint64_t>;
        constexpr Sum round = Sum(1) << (2 * kWeightBits - 1);
        const T* upper = PicRow<const T>(src, row.low);
        const T* lower = PicRow<const T>(src, row.high);
        const Sum lowerWeight = row.weight, upperWeight = kOne - row.weight;
        for (int x = 0; x < count; ++x, out += C)
        {
            const int left = columns[x].low * C, right = columns[x].high * C;
            const Sum rightWeight = columns[x].weight, leftWeight = kOne - rightWeight;
            for (int c = 0; c < C; ++c)
            {
                const Sum above = upper[left + c] * leftWeight + upper[right + c] * rightWeight;
                const Sum below = lower[left + c] * leftWeight + lower[right + c] * rightWeight;
                const Sum sum = above * upperWeight + below * lowerWeight + round;
                out[c] = T(sum >> (2 * kWeightBits));
            }
        }
    }
};

// Catmull-Rom (Keys with a = -0.5): interpolating, so scale 1 reproduces the samples.
struct BicubicFilter
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
        const float t = float(centred - low);
        Tap tap;
        for (int i = 0; i < 4; ++i)
            tap.index[i] = std::clamp(low - 1 + i, 0, size - 1);
        tap.weight[0] = ((-0.5f * t + 1.0f) * t - 0.5f) * t;
        tap.weight[1] = (1.5f * t - 2.5f) * t * t + 1.0f;
        tap.weight[2] = ((-1.5f * t + 2.0f) * t + 0.5f) * t;
        tap.weight[3] = (0.5f * t - 0.5f) * t * t;
        return tap;
    }

    template <typename T, int C>
    static void Row(T* out, const SBxPicBuf& src, const Tap* columns, int count, const Tap& row)
    {
        constexpr float top = sizeof(T) == 1 ? 255.0f : 65535.0f;
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
                out[c] = T(std::clamp(sum, 0.0f, top) + 0.5f);
            }
        }
    }
};

// At scale 1 a picture whose side has another parity than the area's would lie half a pixel off the
// screen's raster and blur; whole pixels are taken instead. Halves go down, which is where
// MapPointSrcToDst puts the same points.
static void SnapShiftAtScaleOne(double inverse[6])
{
    if (inverse[0] != 1.0 || inverse[4] != 1.0 || inverse[1] != 0.0 || inverse[3] != 0.0)
        return;
    inverse[2] = std::ceil(inverse[2] - 0.5);
    inverse[5] = std::ceil(inverse[5] - 0.5);
}

static bool Inside(double position, int size)
{
    return position >= 0.0 && position < double(size);
}

template <typename Filter, typename T, int C>
static void TransformUpright(SBxPicBuf* dst, const SBxPicBuf& src, const double inverse[6])
{
    int first = 0, end = dst->width;
    const auto columnAt = [&](int x) { return inverse[0] * (x + 0.5) + inverse[2]; };
    while (first < end && !Inside(columnAt(first), src.width))
        ++first;
    while (end > first && !Inside(columnAt(end - 1), src.width))
        --end;
    std::vector<typename Filter::Tap> columns(static_cast<size_t>(end - first));
    for (int x = first; x < end; ++x)
        columns[size_t(x - first)] = Filter::Make(columnAt(x), src.width);

    for (int y = 0; y < dst->height; ++y)
    {
        const double position = inverse[4] * (y + 0.5) + inverse[5];
        if (Inside(position, src.height))
            Filter::template Row<T, C>(PicRow<T>(*dst, y) + int64_t(first) * C, src, columns.data(),
                                       end - first, Filter::Make(position, src.height));
    }
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

template <typename Filter, typename T, int C>
static void TransformSamples(SBxPicBuf* dst, const SBxPicBuf& src, const CBxPicMap& map)
{
    double inverse[6];
    std::copy_n(map.Inverse(), 6, inverse);
    if (inverse[1] != 0.0 || inverse[3] != 0.0)
    {
        TransformTurned<Filter, T, C>(dst, src, inverse);
        return;
    }
    SnapShiftAtScaleOne(inverse);
    TransformUpright<Filter, T, C>(dst, src, inverse);
}

template <typename Filter>
static void Transform(SBxPicBuf* dst, const SBxPicBuf& src, const CBxPicMap& map)
{
    if (!dst->data || !src.data)
        return;
    const bool colour = src.components == 3;
    if (src.bitsPerComponent == 8)
        colour ? TransformSamples<Filter, uint8_t, 3>(dst, src, map)
               : TransformSamples<Filter, uint8_t, 1>(dst, src, map);
    else if (src.bitsPerComponent == 16)
        colour ? TransformSamples<Filter, uint16_t, 3>(dst, src, map)
               : TransformSamples<Filter, uint16_t, 1>(dst, src, map);
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
    Transform<BicubicFilter>(dst, src, map);
}
