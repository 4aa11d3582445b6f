#pragma once

#include "picture/PicBuf.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

// A picture that frees itself.
struct BenchPicture
{
    SBxPicBuf pic;

    BenchPicture(int width, int height, int components, int bits)
    {
        CBxPicBufAPI::Init(&pic);
        CBxPicBufAPI::ReinitHeap(&pic, width, height, components, bits);
    }
    BenchPicture(BenchPicture&& other) noexcept : pic(std::exchange(other.pic, {})) {}
    BenchPicture& operator=(BenchPicture&&) = delete;
    ~BenchPicture() { CBxPicBufAPI::DoneHeap(&pic); }
};

// Gradients with grain, 2^ev times the light; photographs compress and weigh much alike.
inline BenchPicture BenchScene(int width, int height, int components, int bits, int ev)
{
    BenchPicture picture(width, height, components, bits);
    const double top = bits == 8 ? 255.0 : 65535.0;
    uint32_t state = 1;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width * components; ++x)
        {
            state = state * 1664525u + 1013904223u;
            const double light = 0.05 + double(x) / (width * components) * (y % 700) / 700.0 +
                                 (state >> 24) / 4096.0;
            const double value = std::min(std::sqrt(light * std::ldexp(0.5, ev)), 1.0) * top;
            if (bits == 8)
                PicRow<uint8_t>(picture.pic, y)[x] = uint8_t(value);
            else
                PicRow<uint16_t>(picture.pic, y)[x] = uint16_t(value);
        }
    return picture;
}

inline int LargestDifference(const SBxPicBuf& a, const SBxPicBuf& b)
{
    int worst = 0;
    for (int y = 0; y < a.height; ++y)
        for (int i = 0; i < a.width * a.components; ++i)
        {
            const int d = a.bitsPerComponent == 8
                              ? PicRow<uint8_t>(a, y)[i] - PicRow<uint8_t>(b, y)[i]
                              : PicRow<uint16_t>(a, y)[i] - PicRow<uint16_t>(b, y)[i];
            worst = std::max(worst, std::abs(d));
        }
    return worst;
}

// Pixels a second, as items.
inline void ReportPixels(benchmark::State& state, int width, int height)
{
    state.SetItemsProcessed(state.iterations() * int64_t(width) * height);
}
