#pragma once

#include "sample/Tree.h"

// The patterns of the scene's materials. Details finer than a picture element are averaged away
// rather than left to flicker.
namespace sample
{

// What shading needs to know of one point of a surface.
struct Look
{
    Vec3 color;  // diffuse reflectance
    float shine; // reflectance of the polished layer, looked at straight
    float glow;  // light of its own, as a share of lamp light
};

// One colour that varies by so many percent, with so many clouds per metre.
template <int kPercent, int kPerMetre>
Look Cloudy(const Material& m, const SurfacePoint& p, float footprint)
{
    const float cloud = Fractal(p.position * kPerMetre, m.seed, 4, footprint * kPerMetre) - 0.5f;
    return {m.color * (1.0f + kPercent * 0.01f * cloud), 0.045f * m.gloss, 0.0f};
}
constexpr Pattern Plaster = Cloudy<24, 6>, Painted = Cloudy<15, 12>, Mottled = Cloudy<50, 48>;

Look Bricks(const Material& m, const SurfacePoint& p, float footprint);
Look Planks(const Material& m, const SurfacePoint& p, float footprint);
Look Wood(const Material& m, const SurfacePoint& p, float footprint); // the seed turns its grain
Look Rug(const Material& m, const SurfacePoint& p, float footprint);
Look BookSpine(const Material& m, const SurfacePoint& p, float footprint);
Look Canvas(const Material& m, const SurfacePoint& p, float footprint); // a painting
Look Petal(const Material& m, const SurfacePoint& p, float footprint);  // veins run along v
Look Striped(const Material& m, const SurfacePoint& p, float footprint);
Look Lampshade(const Material& m, const SurfacePoint& p, float footprint);

} // namespace sample
