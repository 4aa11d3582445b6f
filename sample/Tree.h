#pragma once

#include "sample/Shapes.h"

// Boxes nested over the triangles, and the two questions that rays ask.
namespace sample
{

struct Ray
{
    Vec3 origin, dir; // dir has unit length
};

// Nested four by four, so that a ray looks at four boxes at once.
struct TreeNode
{
    float corner[2][3][4]; // low and high corners; x, y, z; one column per child
    int child[4];          // a node, or the first triangle of a leaf
    int count[4];          // triangles of a leaf; 0 = a node
};

struct Tree
{
    std::vector<TreeNode> nodes;     // the first is the root
    std::vector<Triangle> triangles; // in the order of the leaves, each a run of memory
};

Tree BuildTree(const std::vector<Triangle>& triangles);

struct SurfacePoint
{
    float distance; // metres from the ray's origin
    Vec3 position;
    Vec3 normal;  // smoothed, on the side of the ray's origin
    float u, v;   // texture coordinates
    int material; // -1 = the ray meets nothing
};

SurfacePoint Trace(const Tree& tree, const Ray& ray);

// Whether anything lies nearer than limit.
bool Blocked(const Tree& tree, const Ray& ray, float limit);

} // namespace sample
