#pragma once

#include "sample/Materials.h"

#include <array>

// Light in the sample scene. Irradiance at a point is the sum of
//   the sun          one direction, through the window only; looked at where it is needed
//   daylight         the landscape as seen through the window, and a blind behind the camera
//   sunlit places    what the sun hits first, each sending its light on as a small area light
//   the lamp         its bulb, with the shade as a filter
//   everything else  light reflected twice and more, read from a coarse grid of points
// Radiance has no absolute unit; sunlit clouds are near 15.
namespace sample
{

struct AreaLight
{
    Vec3 position, normal;
    Vec3 radiance; // negative: it is part of the window, and the landscape shines through
    float area;
};

using SixWays = std::array<Vec3, 6>; // irradiance of faces looking to +x, -x, +y, -y, +z, -z

struct World
{
    std::vector<Material> materials;
    Tree tree;
    std::vector<AreaLight> lights;
    std::vector<SixWays> grid;
};

// Furnishes the room and finds its light.
World BuildWorld();

// Irradiance, but for the sun's.
Vec3 GatherLight(const World& world, Vec3 position, Vec3 normal, uint32_t seed);

// A point of the sun's disc: angle in turns, distance from the middle 0..1.
struct Spot
{
    float turn, radius;
};

// Irradiance from the sun, as if all of it were where the spot is. `inBeam` tells whether the sun,
// or nearly, shines through the window towards the point, whatever may stand between.
Vec3 SunLight(const World& world, Vec3 position, Vec3 normal, Spot spot, bool* inBeam);

// Light that a look sends out under that irradiance, but for what it mirrors.
Vec3 Radiance(const Look& look, Vec3 irradiance);

// Light that travels against the ray, with surfaces lit from the coarse grid: for reflections.
Vec3 ReflectedRadiance(const World& world, const Ray& ray, float footprint);

} // namespace sample
