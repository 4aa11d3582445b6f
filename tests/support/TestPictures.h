#pragma once

#include "picture/Picture.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// Sample as a number, whatever the depth.
double SampleOf(const SBxPicBuf& picture, int x, int y, int component = 0);

// A picture that tests look into and write to, sample by sample.
struct TestPicture : Picture
{
    using Picture::Picture;
    static TestPicture Like(const SBxPicBuf& other); // of that geometry

    double At(int x, int y, int component = 0) const { return SampleOf(*this, x, y, component); }
    void Set(int x, int y, int component, double value);
};

// Every sample of component c is values[c].
TestPicture FlatPicture(int width, int height, int bits, const std::vector<double>& values);

// Every sample from a function of x, y and component.
TestPicture PictureOf(int width, int height, int components, int bits,
                      const std::function<double(int, int, int)>& sample);

// A scene with gradients, edges and fine grain in different colours, seen with
// 2^ev times the light and clipped like a photograph. The grain depends on the
// seed only.
TestPicture ScenePicture(int width, int height, int components, int bits, int ev,
                         uint32_t seed = 1);

// Fails with the first differing pixel, both values and the tolerance.
void ExpectSamePicture(const SBxPicBuf& actual, const SBxPicBuf& expected, double tolerance = 0);

// FNV-1a over all rows: equal pictures have equal hashes on every machine.
uint64_t HashOf(const SBxPicBuf& picture);
