#pragma once

#include "sample/Math.h"

#include <functional>
#include <vector>

// What the sample scene is put together from: materials, and shapes that all become triangles.
namespace sample
{

struct Material;
struct SurfacePoint;
struct Look;

// Says how a point of a surface looks (Materials.h). `footprint` is the width in metres that one
// picture element covers there.
using Pattern = Look (*)(const Material& material, const SurfacePoint& point, float footprint);

struct Material
{
    Pattern pattern;
    Vec3 color;         // reflectance 0..1, red green blue
    float gloss = 0.0f; // strength of the mirror reflection: 0 none, 1 like clear lacquer
    uint32_t seed = 0;  // what tells two books apart
};

struct Vertex
{
    Vec3 position, normal;
    float u, v; // texture coordinates
};

struct Triangle
{
    Vec3 edge1, edge2; // from the first corner to the others
    Vertex corner[3];
    int material;
};

struct Geometry
{
    std::vector<Material> materials;
    std::vector<Triangle> triangles;
};

// A position and a right-angled set of directions in which furniture is described.
struct Placement
{
    Vec3 origin, x, y, z;
};

// Angles are turns: about the vertical; about the place's own x, then its own z.
Placement PlaceAt(Vec3 origin, float turn = 0.0f);
Placement Tipped(const Placement& place, float aboutX, float aboutZ);
Placement Moved(const Placement& place, Vec3 by);
Vec3 ToRoom(const Placement& place, Vec3 v);

// Each of these adds its material as well.

// Flat patch corner, corner + a, corner + b, with u along the longer side.
void AddQuad(Geometry* g, Vec3 corner, Vec3 a, Vec3 b, const Material& material);
void AddBox(Geometry* g, const Placement& place, Vec3 low, Vec3 high, const Material& material);

// Smooth surface of across x along patches through what `point` gives for u and v, 0..1, which are
// its texture coordinates as well. `point` is asked a little beyond 0 and 1 in u.
void AddSheet(Geometry* g, const Placement& place, int across, int along, const Material& material,
              const std::function<Vec3(float u, float v)>& point);

// Round body about the placement's origin. `around` and `over` say how square its outline is, seen
// from above and from the side: 0 an ellipse, 1 and 2 nearer and nearer to a box.
void AddRound(Geometry* g, const Placement& place, Vec3 radius, const Material& material,
              int around = 0, int over = 0);

// Turned shape: pairs of radius and height in millimetres, joined by a spline.
void AddTurned(Geometry* g, const Placement& place, const std::vector<float>& profile,
               const Material& material);

// Round bar along a smoothed path; its radius changes evenly from one end to the other.
void AddBar(Geometry* g, const Placement& place, const std::vector<Vec3>& path, float from,
            float to, const Material& material);

} // namespace sample
