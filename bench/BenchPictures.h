#pragma once

#include "picture/PicBuf.h"

#include <utility>

// Pictures to measure with, and what their results are compared by.

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
BenchPicture BenchScene(int width, int height, int components, int bits, int ev);

// A picture of three components whose samples tell where they are, so that any filter at any scale
// can be predicted.
BenchPicture BenchRamp(int width, int height, int bits);

// What the middle component of a ramp has at a point inside of it, for 8 bits.
double BenchRampAt(double x, double y, int width, int height);

int LargestDifference(const SBxPicBuf& a, const SBxPicBuf& b);

// Mean of all samples, of floats as well. Filters keep it, so a wrong one shows.
double MeanOf(const SBxPicBuf& picture);
