#include "tests/support/TestPictures.h"

#include <algorithm>
#include <cmath>

TestPicture TestPicture::Like(const SBxPicBuf& other)
{
    return TestPicture(other.width, other.height, other.components, other.bitsPerComponent);
}

double SampleOf(const SBxPicBuf& picture, int x, int y, int component)
{
    const int index = x * picture.components + component;
    if (picture.bitsPerComponent == 8)
        return PicRow<const uint8_t>(picture, y)[index];
    if (picture.bitsPerComponent == 16)
        return PicRow<const uint16_t>(picture, y)[index];
    return PicRow<const float>(picture, y)[index];
}

void TestPicture::Set(int x, int y, int component, double value)
{
    const SBxPicBuf& picture = *this;
    const int index = x * picture.components + component;
    if (picture.bitsPerComponent == 8)
        PicRow<uint8_t>(picture, y)[index] = uint8_t(value);
    else if (picture.bitsPerComponent == 16)
        PicRow<uint16_t>(picture, y)[index] = uint16_t(value);
    else
        PicRow<float>(picture, y)[index] = float(value);
}

TestPicture PictureOf(int width, int height, int components, int bits,
                      const std::function<double(int, int, int)>& sample)
{
    TestPicture picture(width, height, components, bits);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < components; ++c)
                picture.Set(x, y, c, sample(x, y, c));
    return picture;
}

TestPicture FlatPicture(int width, int height, int bits, const std::vector<double>& values)
{
    return PictureOf(width, height, int(values.size()), bits,
                     [&](int, int, int c) { return values[size_t(c)]; });
}

static uint32_t NextRandom(uint32_t* state)
{
    *state = *state * 1664525u + 1013904223u;
    return *state >> 8;
}

TestPicture ScenePicture(int width, int height, int components, int bits, int ev, uint32_t seed)
{
    const double top = bits == 8 ? 255.0 : 65535.0;
    uint32_t state = seed * 2654435761u + 12345u;
    return PictureOf(width, height, components, bits,
                     [&](int x, int y, int c)
                     {
                         const double u = double(x) / width, v = double(y) / height;
                         // Only arithmetic that every machine does alike; the light spans about
                         // eight stops.
                         double light =
                             0.02 + u * u * (1.5 + 0.3 * c) + (x / 9 + y / 7) % 2 * 0.2 * v;
                         if (u > 0.6 && v < 0.4)
                             light = 3.0 - c;
                         light *= 0.9 + 0.2 * NextRandom(&state) / 16777216.0;
                         const double exposed = light * std::ldexp(1.0, ev) * 0.5;
                         return std::floor(std::min(std::sqrt(exposed), 1.0) * top + 0.5);
                     });
}

void ExpectSamePicture(const SBxPicBuf& actual, const SBxPicBuf& expected, double tolerance)
{
    ASSERT_EQ(actual.width, expected.width);
    ASSERT_EQ(actual.height, expected.height);
    ASSERT_EQ(actual.components, expected.components);
    ASSERT_EQ(actual.bitsPerComponent, expected.bitsPerComponent);
    for (int y = 0; y < actual.height; ++y)
        for (int x = 0; x < actual.width; ++x)
            for (int c = 0; c < actual.components; ++c)
            {
                const double a = SampleOf(actual, x, y, c), e = SampleOf(expected, x, y, c);
                ASSERT_LE(std::fabs(a - e), tolerance)
                    << "first difference at x " << x << ", y " << y << ", component " << c << ": "
                    << a << " instead of " << e;
            }
}

uint64_t HashOf(const SBxPicBuf& picture)
{
    uint64_t hash = 14695981039346656037ull;
    const int rowBytes = picture.width * picture.components * picture.bitsPerComponent / 8;
    for (int y = 0; y < picture.height; ++y)
    {
        const uint8_t* row = PicRow<const uint8_t>(picture, y);
        for (int i = 0; i < rowBytes; ++i)
            hash = (hash ^ row[i]) * 1099511628211ull;
    }
    return hash;
}
