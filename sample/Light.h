#pragma once

#include "sample/Geometry.h"
#include "sample/Materials.h"

#include <array>
#include <functional>
#include <vector>

// Light in the sample scene. Irradiance at a point is the sum of
//   the sun          one direction, through the window only; looked at where it is needed
//   daylight         the landscape as seen through the window, and the blind
//   sunlit patches   what the sun hits first, each sending its light on as a small area light
//   the lamp         its bulb, with the shade as a filter
//   everything else  light reflected twice and more, read from coarse maps of the room's planes
//                    and, among the furniture, from a coarse grid of points
// Radiance has no absolute unit; sunlit clouds are near 15.
namespace sample
{

struct PatchLight
{
    Vec3 position, normal;
    Vec3 exitance; // reflected flux per area
    float area;
};

struct RoomMap
{
    int across, along;
    std::vector<Vec3> irradiance;
};

using SixWays = std::array<Vec3, 6>; // irradiance of faces looking to +x, -x, +y, -y, +z, -z

struct World
{
    Geometry geometry;
    Tree tree;
    std::vector<PatchLight> patches;
    RoomMap maps[kRoomPlanes];
    int gridX, gridY, gridZ;
    std::vector<SixWays> grid;
};

// Furnishes the room and finds its light, on up to that many threads.
void BuildWorld(World* world, int threads);

// Irradiance, but for the sun's, and where it comes from: direction times luminance, so that the
// change of irradiance with a tilt of the normal is (tilted - normal) . direction.
struct Light
{
    Vec3 irradiance;
    Vec3 direction;
};

struct LightSamples
{
    int window, patches, blind, bounce;
};

Light GatherLight(const World& world, Vec3 position, Vec3 normal, uint32_t seed,
                  const LightSamples& samples);

// A point of a disc: angle in turns, distance from the middle 0..1.
struct Disc
{
    float turn, radius;
};

enum class SunView
{
    Away,   // the surface looks away from it, or the line to it misses the window
    Hidden, // something in the room stands before it
    Seen,
};

// Irradiance from the sun, as if all of its disc were where `spot` is. `view`, if given, says how
// the result came about.
Vec3 SunLight(const World& world, Vec3 position, Vec3 normal, Disc spot, SunView* view = nullptr);

// Light that travels against the ray, with surfaces lit from the coarse maps: for reflections.
Vec3 ReflectedRadiance(const World& world, const Ray& ray, float footprint);

// Calls work(row) for each row, on several threads. Rows must not depend on each other.
void ForEachRow(int rows, int threads, const std::function<void(int)>& work);

} // namespace sample
