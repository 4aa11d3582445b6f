// Immerkaer, "Fast Noise Variance Estimation" (1996): a mask that gives zero on planes and straight
// edges along the axes, so that what is left is noise and texture. It is applied to patches spread
// over the picture, and a low quantile of theirs is taken: noise is everywhere, texture is not.

#include "series/DenoiseNoise.h"

#include "picture/Picture.h"

#include <algorithm>
#include <cmath>
#include <vector>

constexpr int kPatch = 32;
constexpr int kPatchesPerSide = 48;
constexpr double kQuantile = 0.15;

// Camera noise is coarser than white noise, but what is much coarser is texture.
constexpr double kCoarsest = 1.5;

// Clipped samples have lost their noise and are marked by a value below zero.
constexpr float kClipped = -1.0f;

namespace
{
struct Patch
{
    int width, height;
    float samples[kPatch * kPatch];
};
} // namespace

// False when so many samples are clipped that the patch says nothing.
static bool ImmerkaerNoise(double* noise, const Patch& patch)
{
    double sum = 0.0;
    int used = 0;
    const int w = patch.width;
    for (int y = 1; y < patch.height - 1; ++y)
        for (int x = 1; x < w - 1; ++x)
        {
            const float *b = patch.samples + y * w + x, *a = b - w, *c = b + w;
            const float lowest =
                std::min({a[-1], a[0], a[1], b[-1], b[0], b[1], c[-1], c[0], c[1]});
            if (lowest < 0.0f)
                continue;
            sum += std::fabs(a[-1] + a[1] + c[-1] + c[1] - 2.0f * (a[0] + b[-1] + b[1] + c[0]) +
                             4.0f * b[0]);
            ++used;
        }
    constexpr double rootOfHalfPi = 1.2533141373155003;
    *noise = rootOfHalfPi / 6.0 * sum / std::max(used, 1);
    return 3 * used >= patch.width * patch.height;
}

static Patch HalfSize(const Patch& patch)
{
    Patch half;
    half.width = patch.width / 2;
    half.height = patch.height / 2;
    for (int y = 0; y < half.height; ++y)
        for (int x = 0; x < half.width; ++x)
        {
            const float* a = patch.samples + 2 * y * patch.width + 2 * x;
            const float* b = a + patch.width;
            const bool clipped = std::min({a[0], a[1], b[0], b[1]}) < 0.0f;
            half.samples[y * half.width + x] =
                clipped ? kClipped : 0.25f * (a[0] + a[1] + b[0] + b[1]);
        }
    return half;
}

static Patch PatchOf(const SBxPicBuf& grey)
{
    Patch patch;
    patch.width = grey.width;
    patch.height = grey.height;
    for (int y = 0; y < grey.height; ++y)
    {
        const uint8_t* row = PicRow<const uint8_t>(grey, y);
        for (int x = 0; x < grey.width; ++x)
            patch.samples[y * grey.width + x] =
                row[x] == 0 || row[x] == 255 ? kClipped : float(row[x]);
    }
    return patch;
}

static double Quantile(std::vector<double>* values)
{
    if (values->empty())
        return 0.0;
    const auto at = values->begin() + std::ptrdiff_t(kQuantile * double(values->size()));
    std::nth_element(values->begin(), at, values->end());
    return *at;
}

Outcome EstimateNoise(double noise[2], const SBxPicBuf& picture)
{
    std::vector<double> fine, coarse;
    const int width = std::min(kPatch, picture.width), height = std::min(kPatch, picture.height);
    const int stepX = std::max(kPatch, picture.width / kPatchesPerSide);
    const int stepY = std::max(kPatch, picture.height / kPatchesPerSide);
    Picture grey;
    for (int y = 0; y + height <= picture.height; y += stepY)
        for (int x = 0; x + width <= picture.width; x += stepX)
        {
            CBxPicBufAPI::ReinitHeap(grey.Record(), width, height, picture.components,
                                     picture.bitsPerComponent);
            if (grey.Empty())
                return Outcome::Failed;
            CBxPicBufAPI::CopyRect(grey.Record(), picture, {0, 0}, {x, y}, {width, height});
            const bool done = CBxPicBufAPI::ConvertBpcComp(grey.Record(), 8, 1);
            if (!done)
                return Outcome::Failed;
            const Patch patch = PatchOf(grey);
            double here;
            if (ImmerkaerNoise(&here, patch))
                fine.push_back(here);
            if (ImmerkaerNoise(&here, HalfSize(patch)))
                coarse.push_back(2.0 * here);
        }
    noise[0] = Quantile(&fine);
    noise[1] = std::clamp(Quantile(&coarse), noise[0], kCoarsest * noise[0]);
    return Outcome::Done;
}
