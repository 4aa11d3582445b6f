#pragma once

#include "picture/PicBuf.h"
#include "picture/PicTransformRows.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <type_traits>

// The filters of resampling, for PicTransform.cpp. Each has a tap, which says which samples along
// one axis a position takes and with what weights, and Row, the plain loop over one row's columns
// that the tuned ones of PicTransformRows.h are measured by.
//
// A position is in corner coordinates: sample i covers i..i+1 and has its centre at i + 0.5. It
// lies inside the picture, whose side is `size`; the samples around it need not.

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
inline void CatmullRomWeights(float weight[4], float t)
{
    weight[0] = ((-0.5f * t + 1.0f) * t - 0.5f) * t;
    weight[1] = (1.5f * t - 2.5f) * t * t + 1.0f;
    weight[2] = ((-1.5f * t + 2.0f) * t + 0.5f) * t;
    weight[3] = (0.5f * t - 0.5f) * t * t;
}

// Samples beyond the picture's edge repeat the edge.
inline int EdgeClamped(int index, int size)
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
