#include "sample/Landscape.h"

// Directions with z <= 0 look back into the house's own wall; they only occur in reflections.
namespace sample
{

static Vec3 Sky(float across, float up, float footprint)
{
    const Vec3 sky =
        Mix(Vec3{4.4f, 5.3f, 6.2f}, {0.75f, 1.8f, 4.6f}, SmoothStep(-0.02f, 0.23f, up));
    // Cumulus: flat below, piled up above, lit from the upper right.
    const Vec3 at = {across * 8.5f + 3.1f, up * 14.0f + 0.4f, 0.0f};
    const float body = Fractal(at, 61, 6, footprint * 14.0f);
    const float lit = Fractal(at + Vec3{0.22f, 0.34f, 0}, 61, 5, footprint * 14.0f);
    const float shine = Saturate(0.66f + (body - lit) * 3.6f);
    const Vec3 cloud = Mix(Vec3{5.2f, 5.8f, 6.8f}, {17.0f, 16.4f, 15.4f}, shine);
    return Mix(sky, cloud, SmoothStep(0.475f, 0.55f, body) * SmoothStep(0.0f, 0.05f, up));
}

// Noise with sharp crests instead of round ones: rock.
static float Crest(Vec3 p, uint32_t seed, float footprint)
{
    float sum = 0.0f, weight = 0.5f;
    for (; footprint < 0.7f && weight > 0.02f; footprint *= 2.1f, weight *= 0.45f)
    {
        sum += weight * (1.0f - std::fabs(Noise(p, seed++) * 2.0f - 1.0f));
        p = p * 2.1f + Vec3{3.7f, 8.1f, 1.3f};
    }
    return sum;
}

static Vec3 Mountains(float across, float up, float footprint)
{
    // Ribs and gullies; their right-hand sides have the sun.
    const Vec3 at = {across * 34.0f + up * 12.0f, up * 30.0f - across * 4.0f, 3.0f};
    const float rib = Crest(at, 72, footprint * 34.0f);
    const float beside = Crest(at + Vec3{0.10f, 0.04f, 0}, 72, footprint * 34.0f);
    const float lit = Saturate(0.50f + (rib - beside) * 3.0f);
    const float snow = SmoothStep(0.050f, 0.068f, up + (rib - 0.5f) * 0.045f);
    const Vec3 stone = Mix(Vec3{1.1f, 1.6f, 2.5f}, {3.0f, 3.0f, 3.0f}, lit);
    const Vec3 white = Mix(Vec3{3.6f, 4.9f, 7.2f}, {15.0f, 14.4f, 13.4f}, lit);
    return Mix(Mix(stone, white, snow), {3.9f, 4.7f, 5.7f}, SmoothStep(0.07f, -0.01f, up) * 0.55f);
}

// Woods in the sun: the light sides of their crowns against the gaps between them.
static Vec3 Woods(Vec3 at, uint32_t seed, float footprint, Vec3 dark, Vec3 light)
{
    const float crowns = Fractal(at, seed, 4, footprint);
    const float lit = crowns - Fractal(at + Vec3{0.35f, 0.45f, 0}, seed, 4, footprint);
    return Mix(dark, light, Saturate(0.48f + lit * 2.6f));
}

static Vec3 Hills(float across, float up, float footprint)
{
    const float meadow = Fractal({across * 22, up * 55, 4}, 83, 3, footprint * 55);
    const Vec3 trees = Woods({across * 150, up * 210, 0}, 82, footprint * 180,
                             {0.25f, 0.55f, 0.30f}, {1.6f, 2.3f, 0.75f});
    const Vec3 mixed = Mix(trees, {3.4f, 3.9f, 1.2f}, SmoothStep(0.50f, 0.58f, meadow));
    return Mix(mixed, {3.0f, 3.8f, 4.4f}, 0.22f);
}

// Pale under the far shore, deeper towards us, drawn out by ripples that glint in the middle.
static Vec3 Lake(float across, float depth, float footprint)
{
    const float ripple = Fractal({across * 30, depth * -700, 0}, 84, 4, footprint * 500);
    const Vec3 water = Mix(Vec3{1.2f, 2.6f, 3.5f}, {3.2f, 4.8f, 6.0f}, ripple);
    const float glint =
        SmoothStep(0.56f, 0.68f, ripple) * SmoothStep(0.13f, 0.0f, std::fabs(across - 0.02f));
    return Mix({1.1f, 1.8f, 1.3f}, water + Vec3{10.0f, 9.5f, 8.4f} * glint,
               SmoothStep(0.0f, 0.007f, depth));
}

static Vec3 Meadow(float across, float up, float footprint)
{
    const float grass = Fractal({across * 200, up * 860, 0}, 96, 4, footprint * 300);
    const float patches = Fractal({across * 12, up * 40, 0}, 98, 3, footprint * 30);
    const bool flower = footprint * 420 < 1.4f && Noise({across * 420, up * 900, 2}, 97) > 0.9f;
    return flower ? Vec3{11.0f, 9.6f, 8.6f}
                  : Mix(Vec3{1.6f, 2.4f, 0.35f}, {5.2f, 5.4f, 1.1f}, 0.5f * (grass + patches));
}

Vec3 Landscape(Vec3 dir, float footprint)
{
    const float z = dir.z > 0.08f ? dir.z : 0.08f;
    const float across = dir.x / z, up = dir.y / z;
    const auto ridge = [&](float scale, uint32_t seed) {
        return 0.062f * Fractal({across * scale + 11.0f, 0.5f, 0.5f}, seed, 6, footprint * scale);
    };
    // A birch to the right rises above the mountains, with light between its leaves.
    const Vec3 at = {across * 60, up * 60, 7}, off = {(across - 0.142f) * 1.5f, up - 0.085f, 0};
    if (Fractal(at, 101, 5, footprint * 60) > 0.36f + 1.3f * SmoothStep(0.01f, 0.17f, Length(off)))
        return Woods(at * 1.7f, 105, footprint * 102, {0.18f, 0.42f, 0.06f}, {3.6f, 4.6f, 0.7f});
    // From near to far.
    if (up < -0.070f + 0.010f * Noise({across * 9, 0, 0}, 95))
        return Meadow(across, up, footprint);
    if (up < -0.068f + ridge(24.0f, 91) * SmoothStep(0.0f, 0.12f, std::fabs(across + 0.035f)))
        return Woods({across * 110, up * 130, 0}, 92, footprint * 110, {0.10f, 0.28f, 0.06f},
                     {2.7f, 3.6f, 0.7f});
    if (up < -0.030f)
        return Lake(across, -0.030f - up, footprint);
    if (up < -0.016f + ridge(9.0f, 81))
        return Hills(across, up, footprint);
    if (up < 0.004f + 0.115f * Crest({across * 8.0f + 2.35f, 0.5f, 0.5f}, 71, footprint * 8.0f))
        return Mountains(across, up, footprint);
    return Sky(across, up, footprint);
}

Vec3 LandscapeLight(Vec3 dir)
{
    const Vec3 ground = {2.2f, 2.5f, 1.3f}, low = {5.5f, 6.0f, 6.5f}, high = {2.6f, 3.6f, 5.6f};
    return Mix(Mix(ground, low, SmoothStep(-0.12f, 0.02f, dir.y)), high,
               SmoothStep(0.0f, 0.5f, dir.y));
}

} // namespace sample
