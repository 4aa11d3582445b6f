#include "sample/Exposure.h"

#include <algorithm>

// The camera: exposure, noise, white clipping and the sRGB curve (IEC 61966-2-1).

// Chosen so that in a series of five the darkest frame holds the sunlit clouds and the brightest
// one shows the bookcase.
constexpr float kMiddleExposure = 1.05f;

constexpr float kElectronsAtWhite = 40000.0f;
constexpr float kReadNoise = 4.0f; // electrons
constexpr int kCurveSteps = 65535;

static std::vector<uint8_t> MakeCurve()
{
    std::vector<uint8_t> curve(kCurveSteps + 1);
    for (int i = 0; i <= kCurveSteps; i++)
    {
        // The power 1 / 2.4 by a cube root (Newton) and square roots, which round alike everywhere:
        // 5/12 = (1 + 2/3) / 4.
        const double v = double(i) / kCurveSteps;
        double root = 1.0;
        for (int round = 0; round < 60; round++)
            root -= (root - v / (root * root)) / 3.0;
        const double power = std::sqrt(std::sqrt(v * root * root));
        const double code = v <= 0.0031308 ? 12.92 * v : 1.055 * power - 0.055;
        curve[size_t(i)] = uint8_t(code * 255.0 + 0.5);
    }
    return curve;
}

// Near enough to a normal deviate: the sum of four bytes, scaled to variance 1.
static float Deviate(uint32_t hash)
{
    const uint32_t sum = (hash & 255) + (hash >> 8 & 255) + (hash >> 16 & 255) + (hash >> 24);
    return (float(sum) - 510.0f) * (1.0f / 147.8f);
}

Picture ExposeSample(const SampleRadiance& scene, int stops)
{
    Picture picture(scene.width, scene.height, 3, 8);
    const std::vector<uint8_t> curve = MakeCurve();
    const float gain = std::ldexp(kMiddleExposure, stops);
    const size_t rowSamples = size_t(scene.width) * 3;
    for (int y = 0; !picture.Empty() && y < scene.height; y++)
    {
        const float* light = &scene.light[size_t(y) * rowSamples];
        uint8_t* row = PicRow<uint8_t>(picture, y);
        const uint32_t seed = sample::Hash(uint32_t(y), uint32_t(stops + 100));
        for (size_t x = 0; x < rowSamples; x++)
        {
            const float v = std::min(light[x] * gain, 2.0f);
            const float electrons = v * kElectronsAtWhite + kReadNoise * kReadNoise;
            const float noise = std::sqrt(electrons) * Deviate(sample::Hash(uint32_t(x) + seed));
            const float seen = sample::Saturate(v + noise * (1.0f / kElectronsAtWhite));
            row[x] = curve[size_t(seen * float(kCurveSteps) + 0.5f)];
        }
    }
    return picture;
}
