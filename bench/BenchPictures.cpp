#include "bench/BenchPictures.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

Picture BenchScene(int width, int height, int components, int bits, int ev)
{
    Picture picture(width, height, components, bits);
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
                PicRow<uint8_t>(picture, y)[x] = uint8_t(value);
            else
                PicRow<uint16_t>(picture, y)[x] = uint16_t(value);
        }
    return picture;
}

Picture BenchRamp(int width, int height, int bits)
{
    Picture picture(width, height, 3, bits);
    const int unit = bits == 8 ? 1 : 256;
    for (int y = 0; y < height; ++y)
        for (int i = 0; i < 3 * width; ++i)
        {
            const int value = (i / 3 * 160 / width + y * 80 / height + i % 3) * unit;
            if (bits == 8)
                PicRow<uint8_t>(picture, y)[i] = uint8_t(value);
            else
                PicRow<uint16_t>(picture, y)[i] = uint16_t(value);
        }
    return picture;
}

double BenchRampAt(double x, double y, int width, int height)
{
    return x * 160 / width + y * 80 / height + 1;
}

static double SampleAt(const SBxPicBuf& picture, int y, int i)
{
    switch (picture.bitsPerComponent)
    {
    case 8: return PicRow<uint8_t>(picture, y)[i];
    case 16: return PicRow<uint16_t>(picture, y)[i];
    default: return double(PicRow<float>(picture, y)[i]);
    }
}

int LargestDifference(const SBxPicBuf& a, const SBxPicBuf& b)
{
    double worst = 0;
    for (int y = 0; y < a.height; ++y)
        for (int i = 0; i < a.width * a.components; ++i)
            worst = std::max(worst, std::fabs(SampleAt(a, y, i) - SampleAt(b, y, i)));
    return int(std::ceil(worst));
}

double MeanOf(const SBxPicBuf& picture)
{
    double sum = 0.0;
    for (int y = 0; y < picture.height; ++y)
        for (int i = 0; i < picture.width * picture.components; ++i)
            sum += SampleAt(picture, y, i);
    return sum / (double(picture.width) * picture.height * picture.components);
}
