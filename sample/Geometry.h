#pragma once

#include "sample/Math.h"

#include <cstdint>
#include <vector>

// Shapes of the sample scene and their search tree.
namespace sample
{

// What a surface is made of; Materials.cpp knows the look of each.
enum class Surface : uint8_t
{
    Plaster,
    Ceiling,
    Brick,
    Planks,
    Rug,
    Wood,
    Velvet,
    Linen,
    Ceramic,
    BookSpine,
    Paper,
    Metal,
    LampShade,
    Fruit,
    Citrus,
    Leaf,
    Petal,
    Painting,
    Paint,
    Ball,
    Clay,
};

struct Material
{
    Surface surface;
    Vec3 color;    // reflectance 0..1, red green blue
    float gloss;   // strength of the mirror reflection: 0 none, 1 like clear lacquer
    uint32_t seed; // what tells two books apart
};

// The six planes of the room come first among the materials; light on them is kept in maps.
constexpr int kRoomPlanes = 6;

struct Triangle
{
    Vec3 corner, edge1, edge2;
    Vec3 normal[3]; // at corner, corner + edge1, corner + edge2
    float texU[3], texV[3];
    int material;
};

struct Ellipsoid
{
    Vec3 centre;
    Vec3 axis[3]; // unit directions
    Vec3 radius;
    int material;
};

// A position and a right-angled set of directions in which furniture is described.
struct Placement
{
    Vec3 origin, x, y, z;
};

Placement PlaceAt(Vec3 origin, float turnAboutY = 0.0f);

// The same placement tipped by an angle about its own x or z direction.
Placement TipAboutX(const Placement& place, float turns);
Placement TipAboutZ(const Placement& place, float turns);

inline Vec3 ToRoom(const Placement& p, Vec3 v)
{
    return p.origin + p.x * v.x + p.y * v.y + p.z * v.z;
}
inline Vec3 TurnToRoom(const Placement& p, Vec3 v)
{
    return p.x * v.x + p.y * v.y + p.z * v.z;
}

struct Geometry
{
    std::vector<Material> materials;
    std::vector<Triangle> triangles;
    std::vector<Ellipsoid> ellipsoids;
};

int AddMaterial(Geometry* g, Surface surface, Vec3 color, float gloss = 0.0f, uint32_t seed = 0);

// Flat four-sided patch corner, corner + a, corner + b; texture coordinates are metres, u along
// the longer side.
void AddQuad(Geometry* g, Vec3 corner, Vec3 a, Vec3 b, int material);
void AddBox(Geometry* g, const Placement& place, Vec3 low, Vec3 high, int material);

// Box with rounded edges and slightly bulging faces: upholstery.
void AddCushion(Geometry* g, const Placement& place, Vec3 centre, Vec3 half, float radius,
                float bulge, int material);

struct ProfilePoint
{
    float radius, height;
};

// Square pillow, thin at its rim, facing along z.
void AddPillow(Geometry* g, const Placement& place, float halfSide, float halfDepth, int material);

// Turned shape: the profile, smoothed by a spline, turned about the placement's y direction.
void AddTurned(Geometry* g, const Placement& place, const std::vector<ProfilePoint>& profile,
               int segments, int material);

// Round bar along a smoothed path with a radius at each point.
void AddBar(Geometry* g, const std::vector<Vec3>& path, const std::vector<float>& radii,
            int segments, int material);

// Patch of rows x columns points, smooth; texture coordinates run 0..1.
void AddSheet(Geometry* g, const std::vector<Vec3>& points, int rows, int columns, int material);

void AddEllipsoid(Geometry* g, const Placement& place, Vec3 centre, Vec3 radius, int material);

struct Ray
{
    Vec3 origin, dir; // dir has unit length
};

struct Hit
{
    float distance; // metres; what was passed in as the limit when nothing was hit
    int shape;      // -1 = nothing; below the triangle count a triangle, else an ellipsoid
    float u, v;     // position inside of the triangle
};

// Axis-aligned boxes nested four by four, so that a ray looks at four at once.
struct TreeNode
{
    float bound[2][3][4]; // low and high corners; x, y, z; one column per child
    int32_t child[4];     // a node, or the first leaf shape
    int32_t count[4];     // leaf shapes; 0 = a node, negative = no child
};

// What a ray needs of a triangle, in the order of the leaves, so that a leaf is one run of memory.
struct LeafShape
{
    Vec3 corner, edge1, edge2; // unused for an ellipsoid
    int shape;
    bool round, shade; // an ellipsoid; part of a lamp shade
};

struct Tree
{
    std::vector<TreeNode> nodes; // the first is the root
    std::vector<LeafShape> leaves;
    const Geometry* geometry;
};

int MaterialOf(const Geometry& geometry, int shape);

void BuildTree(Tree* tree, const Geometry& geometry);

Hit Trace(const Tree& tree, const Ray& ray, float limit);

// Whether anything but lamp shades (the lamp accounts for its own) lies nearer than limit.
bool Blocked(const Tree& tree, const Ray& ray, float limit);

struct SurfacePoint
{
    Vec3 position;
    Vec3 facing; // true normal of the shape, on the side of the ray's origin
    Vec3 normal; // the smoothed one, for shading
    float texU, texV;
    int material;
};

SurfacePoint PointAt(const Geometry& geometry, const Ray& ray, const Hit& hit);

} // namespace sample
