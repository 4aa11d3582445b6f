#include "sample/Tree.h"

#include <emmintrin.h>

#include <algorithm>

// Boxes are divided where the surface area heuristic (Goldsmith and Salmon, 1987) expects the least
// work; triangles are met as in Moller and Trumbore (1997).
namespace sample
{

struct Box
{
    Vec3 low = {1e30f, 1e30f, 1e30f}, high = {-1e30f, -1e30f, -1e30f};
    const Triangle* triangle = nullptr; // if it is the box of one
};

static void Include(Box* b, Vec3 low, Vec3 high)
{
    b->low = {std::min(b->low.x, low.x), std::min(b->low.y, low.y), std::min(b->low.z, low.z)};
    b->high = {std::max(b->high.x, high.x), std::max(b->high.y, high.y),
               std::max(b->high.z, high.z)};
}

static Box BoxAround(const Box* first, const Box* last)
{
    Box whole;
    for (const Box* box = first; box < last; box++)
        Include(&whole, box->low, box->high);
    return whole;
}

// Divides the boxes in two across their longest side, and says where; at `first` when they had
// better stay together.
static Box* Divide(Box* first, Box* last)
{
    const auto centre = [](const Box& box) { return (box.low + box.high) * 0.5f; };
    Box centres;
    for (const Box* box = first; box < last; box++)
        Include(&centres, centre(*box), centre(*box));
    const Vec3 size = centres.high - centres.low;
    const int axis = size.x > size.y && size.x > size.z ? 0 : size.y > size.z ? 1 : 2;
    const float border = (centres.low[axis] + centres.high[axis]) * 0.5f;
    return last - first < 4
               ? first
               : std::stable_partition(first, last,
                                       [&](const Box& box) { return centre(box)[axis] < border; });
}

constexpr int kMaxDepth = 40; // bounds the stack that a ray needs

// Puts what stands for the boxes, a node or a leaf, into a column of its parent. A column without
// any gets a box that no ray meets.
static void AddChild(Tree* tree, Box* all, Box* first, Box* last, int depth, TreeNode* parent,
                     int column)
{
    const Box whole = BoxAround(first, last);
    for (int axis = 0; axis < 3; axis++)
    {
        parent->corner[0][axis][column] = whole.low[axis];
        parent->corner[1][axis][column] = whole.high[axis];
    }
    Box* middle = depth < kMaxDepth ? Divide(first, last) : first;
    const bool leaf = middle == first;
    parent->child[column] = leaf ? int(first - all) : int(tree->nodes.size());
    parent->count[column] = leaf ? int(last - first) : 0;
    if (leaf)
        return;
    Box* const cuts[5] = {first, Divide(first, middle), middle, Divide(middle, last), last};
    TreeNode node = {};
    const size_t self = tree->nodes.size();
    tree->nodes.push_back(node);
    for (int i = 0; i < 4; i++)
        AddChild(tree, all, cuts[i], cuts[i + 1], depth + 1, &node, i);
    tree->nodes[self] = node;
}

Tree BuildTree(const std::vector<Triangle>& triangles)
{
    std::vector<Box> boxes;
    for (const Triangle& t : triangles)
    {
        Box box;
        box.triangle = &t;
        for (const Vertex& v : t.corner) // rays along a face still enter its box
            Include(&box, v.position - Vec3{1e-5f, 1e-5f, 1e-5f},
                    v.position + Vec3{1e-5f, 1e-5f, 1e-5f});
        boxes.push_back(box);
    }
    Tree tree;
    TreeNode above = {};
    AddChild(&tree, boxes.data(), boxes.data(), boxes.data() + boxes.size(), 0, &above, 0);
    for (const Box& box : boxes)
        tree.triangles.push_back(*box.triangle);
    return tree;
}

struct Hit
{
    float distance;           // the limit when nothing was hit
    const Triangle* triangle; // null = nothing
    float u, v;               // position inside of the triangle
};

static inline bool Meets(const Triangle& t, const Ray& ray, Hit* hit)
{
    const Vec3 p = Cross(ray.dir, t.edge2);
    const float det = Dot(t.edge1, p);
    if (std::fabs(det) < 1e-12f)
        return false;
    const float inv = 1.0f / det;
    const Vec3 s = ray.origin - t.corner[0].position;
    const float u = Dot(s, p) * inv;
    if (u < 0.0f || u > 1.0f)
        return false;
    const Vec3 q = Cross(s, t.edge1);
    const float v = Dot(ray.dir, q) * inv, distance = Dot(t.edge2, q) * inv;
    if (v < 0.0f || u + v > 1.0f || distance <= 0.0f || distance >= hit->distance)
        return false;
    *hit = {distance, &t, u, v};
    return true;
}

struct Waiting
{
    int child, count;
    float entry; // distance at which the ray enters
};

// Puts the children that the ray meets before `limit` onto the stack, the nearest on top. `steep`
// is one over the ray's direction.
static inline int PushChildren(const TreeNode& n, Vec3 origin, Vec3 steep, float limit,
                               Waiting* stack, int depth)
{
    __m128 in = _mm_setzero_ps(), out = _mm_set1_ps(limit);
    for (int axis = 0; axis < 3; axis++)
    {
        const bool back = steep[axis] < 0.0f;
        const __m128 near = _mm_loadu_ps(n.corner[back][axis]);
        const __m128 far = _mm_loadu_ps(n.corner[!back][axis]);
        const __m128 from = _mm_set1_ps(origin[axis]), scale = _mm_set1_ps(steep[axis]);
        in = _mm_max_ps(in, _mm_mul_ps(_mm_sub_ps(near, from), scale));
        out = _mm_min_ps(out, _mm_mul_ps(_mm_sub_ps(far, from), scale));
    }
    const int met = _mm_movemask_ps(_mm_cmple_ps(in, out)), bottom = depth;
    float entry[4];
    _mm_storeu_ps(entry, in);
    for (int i = 0; i < 4; i++)
    {
        if (!(met >> i & 1))
            continue;
        int at = depth++;
        for (; at > bottom && stack[at - 1].entry < entry[i]; at--)
            stack[at] = stack[at - 1];
        stack[at] = {n.child[i], n.count[i], entry[i]};
    }
    return depth;
}

static float Steepness(float v)
{
    return 1.0f / (std::fabs(v) > 1e-9f ? v : 1e-9f);
}

// The nearest triangle, or any when that is enough.
static inline Hit Walk(const Tree& tree, const Ray& ray, float limit, bool any)
{
    const Vec3 steep = {Steepness(ray.dir.x), Steepness(ray.dir.y), Steepness(ray.dir.z)};
    Hit hit = {limit, nullptr, 0.0f, 0.0f};
    Waiting stack[3 * kMaxDepth + 4];
    stack[0] = {0, 0, 0.0f};
    for (int depth = 1; depth > 0;)
    {
        const Waiting next = stack[--depth];
        if (next.entry >= hit.distance)
            continue;
        if (next.count == 0)
            depth = PushChildren(tree.nodes[size_t(next.child)], ray.origin, steep, hit.distance,
                                 stack, depth);
        for (int i = 0; i < next.count; i++)
            if (Meets(tree.triangles[size_t(next.child + i)], ray, &hit) && any)
                return hit;
    }
    return hit;
}

SurfacePoint Trace(const Tree& tree, const Ray& ray)
{
    const Hit hit = Walk(tree, ray, 100.0f, false);
    if (!hit.triangle)
        return {hit.distance, {}, {}, 0, 0, -1};
    const auto& [a, b, c] = hit.triangle->corner;
    const float u = hit.u, v = hit.v, w = 1.0f - u - v;
    const Vec3 smooth = Normalize(a.normal * w + b.normal * u + c.normal * v);
    const Vec3 facing = Cross(hit.triangle->edge1, hit.triangle->edge2);
    const bool behind = (Dot(facing, ray.dir) > 0.0f) != (Dot(facing, smooth) < 0.0f);
    return {hit.distance,
            ray.origin + ray.dir * hit.distance,
            behind ? -smooth : smooth,
            a.u * w + b.u * u + c.u * v,
            a.v * w + b.v * u + c.v * v,
            hit.triangle->material};
}

bool Blocked(const Tree& tree, const Ray& ray, float limit)
{
    return Walk(tree, ray, limit, true).triangle;
}

} // namespace sample
