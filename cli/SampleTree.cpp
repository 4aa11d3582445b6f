#include "cli/SampleGeometry.h"

#include <algorithm>

// Nested boxes over the shapes, split where the surface area heuristic (Goldsmith and Salmon,
// 1987) expects the least work, and the two ray questions. Triangles are met as in Moller and
// Trumbore (1997).
namespace sample
{

struct Bounds
{
    Vec3 low{1e30f, 1e30f, 1e30f}, high{-1e30f, -1e30f, -1e30f};
};

static Vec3 Min(Vec3 a, Vec3 b)
{
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z)};
}

static Vec3 Max(Vec3 a, Vec3 b)
{
    return {std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z)};
}

static void Include(Bounds* b, const Bounds& other)
{
    b->low = Min(b->low, other.low);
    b->high = Max(b->high, other.high);
}

static float HalfArea(const Bounds& b)
{
    const Vec3 d = b.high - b.low;
    return d.x < 0.0f ? 0.0f : d.x * d.y + d.y * d.z + d.z * d.x;
}

static Bounds BoundsOf(const Geometry& g, int shape)
{
    Bounds b;
    if (shape < int(g.triangles.size()))
    {
        const Triangle& t = g.triangles[size_t(shape)];
        for (const Vec3& p : {t.corner, t.corner + t.edge1, t.corner + t.edge2})
            Include(&b, {p, p});
    }
    else
    {
        const Ellipsoid& e = g.ellipsoids[size_t(shape) - g.triangles.size()];
        const Vec3 ax = e.axis[0] * e.radius.x, ay = e.axis[1] * e.radius.y,
                   az = e.axis[2] * e.radius.z;
        const Vec3 reach = {Length({ax.x, ay.x, az.x}), Length({ax.y, ay.y, az.y}),
                            Length({ax.z, ay.z, az.z})};
        b = {e.centre - reach, e.centre + reach};
    }
    const Vec3 margin = {1e-5f, 1e-5f, 1e-5f}; // rays along a face still enter its box
    return {b.low - margin, b.high + margin};
}

static float Along(Vec3 v, int axis)
{
    return axis == 0 ? v.x : axis == 1 ? v.y : v.z;
}

static int MaterialOf(const Geometry& g, int shape)
{
    const size_t triangles = g.triangles.size();
    return size_t(shape) < triangles ? g.triangles[size_t(shape)].material
                                     : g.ellipsoids[size_t(shape) - triangles].material;
}

struct Builder
{
    Tree* tree;
    std::vector<Bounds> bounds; // per shape
};

static constexpr int kBins = 16;

// Best split of order[first, first + count): where it puts the border, or first when a leaf is
// cheaper. The entries are rearranged accordingly.
static int Split(const Builder& b, int first, int count, const Bounds& whole)
{
    Bounds centres;
    for (int i = first; i < first + count; i++)
    {
        const Bounds& s = b.bounds[size_t(b.tree->order[size_t(i)])];
        const Vec3 c = (s.low + s.high) * 0.5f;
        Include(&centres, {c, c});
    }

    float best = HalfArea(whole) * float(count);
    int bestAxis = -1, bestBin = 0;
    const auto binOf = [&](int shape, int axis)
    {
        const Bounds& s = b.bounds[size_t(shape)];
        const float c = Along((s.low + s.high) * 0.5f, axis), lo = Along(centres.low, axis);
        return std::min(int((c - lo) / (Along(centres.high, axis) - lo) * kBins), kBins - 1);
    };
    for (int axis = 0; axis < 3; axis++)
    {
        if (Along(centres.high, axis) - Along(centres.low, axis) < 1e-6f)
            continue;
        Bounds bin[kBins];
        int inBin[kBins] = {};
        for (int i = first; i < first + count; i++)
        {
            const int shape = b.tree->order[size_t(i)];
            const int k = binOf(shape, axis);
            Include(&bin[k], b.bounds[size_t(shape)]);
            inBin[k]++;
        }
        float rightCost[kBins];
        Bounds right;
        for (int k = kBins - 1, n = 0; k > 0; k--)
        {
            Include(&right, bin[k]);
            n += inBin[k];
            rightCost[k] = HalfArea(right) * float(n);
        }
        Bounds left;
        for (int k = 0, n = 0; k + 1 < kBins; k++)
        {
            Include(&left, bin[k]);
            n += inBin[k];
            const float cost =
                HalfArea(whole) * 0.7f + HalfArea(left) * float(n) + rightCost[k + 1];
            if (n > 0 && n < count && cost < best)
                best = cost, bestAxis = axis, bestBin = k;
        }
    }
    if (bestAxis < 0)
        return first;
    const auto begin = b.tree->order.begin() + first;
    const auto border = std::stable_partition(
        begin, begin + count, [&](int shape) { return binOf(shape, bestAxis) <= bestBin; });
    return first + int(border - begin);
}

static void BuildNode(const Builder& b, int first, int count)
{
    Bounds whole;
    for (int i = first; i < first + count; i++)
        Include(&whole, b.bounds[size_t(b.tree->order[size_t(i)])]);

    const size_t self = b.tree->nodes.size();
    b.tree->nodes.push_back({whole.low, whole.high, first, count});
    const int border = count > 1 ? Split(b, first, count, whole) : first;
    if (border == first)
        return;
    BuildNode(b, first, border - first);
    b.tree->nodes[self].first = int32_t(b.tree->nodes.size());
    b.tree->nodes[self].count = 0;
    BuildNode(b, border, first + count - border);
}

void BuildTree(Tree* tree, const Geometry& geometry)
{
    const int count = int(geometry.triangles.size() + geometry.ellipsoids.size());
    Builder b = {tree, {}};
    tree->geometry = &geometry;
    tree->nodes.clear();
    tree->order.clear();
    for (int i = 0; i < count; i++)
    {
        tree->order.push_back(i);
        b.bounds.push_back(BoundsOf(geometry, i));
    }
    BuildNode(b, 0, count);

    const int triangles = int(geometry.triangles.size());
    tree->leaves.clear();
    for (const int shape : tree->order)
    {
        LeafShape leaf = {};
        leaf.shape = shape;
        leaf.round = shape >= triangles;
        leaf.shade =
            geometry.materials[size_t(MaterialOf(geometry, shape))].surface == Surface::LampShade;
        if (!leaf.round)
        {
            const Triangle& t = geometry.triangles[size_t(shape)];
            leaf.corner = t.corner, leaf.edge1 = t.edge1, leaf.edge2 = t.edge2;
        }
        tree->leaves.push_back(leaf);
    }
}

static inline bool HitTriangle(const LeafShape& t, const Ray& ray, Hit* hit)
{
    const Vec3 p = Cross(ray.dir, t.edge2);
    const float det = Dot(t.edge1, p);
    if (std::fabs(det) < 1e-12f)
        return false;
    const float inv = 1.0f / det;
    const Vec3 s = ray.origin - t.corner;
    const float u = Dot(s, p) * inv;
    if (u < 0.0f || u > 1.0f)
        return false;
    const Vec3 q = Cross(s, t.edge1);
    const float v = Dot(ray.dir, q) * inv;
    if (v < 0.0f || u + v > 1.0f)
        return false;
    const float distance = Dot(t.edge2, q) * inv;
    if (distance <= 0.0f || distance >= hit->distance)
        return false;
    hit->distance = distance;
    hit->u = u;
    hit->v = v;
    return true;
}

static Vec3 ToUnitSphere(const Ellipsoid& e, Vec3 v)
{
    return {Dot(v, e.axis[0]) / e.radius.x, Dot(v, e.axis[1]) / e.radius.y,
            Dot(v, e.axis[2]) / e.radius.z};
}

static bool HitEllipsoid(const Ellipsoid& e, const Ray& ray, Hit* hit)
{
    const Vec3 o = ToUnitSphere(e, ray.origin - e.centre);
    const Vec3 d = ToUnitSphere(e, ray.dir);
    const float a = Dot(d, d), half = Dot(o, d);
    const float disc = half * half - a * (Dot(o, o) - 1.0f);
    if (disc < 0.0f)
        return false;
    const float root = std::sqrt(disc);
    float distance = (-half - root) / a;
    if (distance <= 0.0f)
        distance = (-half + root) / a;
    if (distance <= 0.0f || distance >= hit->distance)
        return false;
    hit->distance = distance;
    return true;
}

static inline bool HitShape(const Geometry& g, const LeafShape& leaf, const Ray& ray, Hit* hit)
{
    return leaf.round
               ? HitEllipsoid(g.ellipsoids[size_t(leaf.shape) - g.triangles.size()], ray, hit)
               : HitTriangle(leaf, ray, hit);
}

// Where the ray enters the box, or a huge value when it misses it or enters beyond limit.
static inline float Entry(const TreeNode& n, Vec3 origin, Vec3 inverse, float limit)
{
    const float x0 = (n.low.x - origin.x) * inverse.x, x1 = (n.high.x - origin.x) * inverse.x;
    const float y0 = (n.low.y - origin.y) * inverse.y, y1 = (n.high.y - origin.y) * inverse.y;
    const float z0 = (n.low.z - origin.z) * inverse.z, z1 = (n.high.z - origin.z) * inverse.z;
    const float in =
        std::max(std::max(std::min(x0, x1), std::min(y0, y1)), std::max(std::min(z0, z1), 0.0f));
    const float out =
        std::min(std::min(std::max(x0, x1), std::max(y0, y1)), std::min(std::max(z0, z1), limit));
    return in <= out ? in : 1e30f;
}

static float Inverse(float v)
{
    return 1.0f / (std::fabs(v) > 1e-9f ? v : (v < 0.0f ? -1e-9f : 1e-9f));
}

// Visits the leaves along the ray, nearest first; `visit` returns true to stop.
template <typename Visit>
static void Walk(const Tree& tree, const Ray& ray, const float& limit, Visit visit)
{
    const Vec3 inverse = {Inverse(ray.dir.x), Inverse(ray.dir.y), Inverse(ray.dir.z)};
    int stack[64];
    float entry[64];
    int depth = 0;
    int node = 0;
    for (;;)
    {
        const TreeNode& n = tree.nodes[size_t(node)];
        if (n.count > 0)
        {
            for (int i = n.first; i < n.first + n.count; i++)
                if (visit(tree.leaves[size_t(i)]))
                    return;
        }
        else
        {
            int nearer = node + 1, farther = n.first;
            float nearIn = Entry(tree.nodes[size_t(nearer)], ray.origin, inverse, limit);
            float farIn = Entry(tree.nodes[size_t(farther)], ray.origin, inverse, limit);
            if (farIn < nearIn)
                std::swap(nearer, farther), std::swap(nearIn, farIn);
            if (nearIn < 1e30f)
            {
                if (farIn < 1e30f && depth < 64)
                    stack[depth] = farther, entry[depth++] = farIn;
                node = nearer;
                continue;
            }
        }
        do
            if (depth-- == 0)
                return;
        while (entry[depth] >= limit);
        node = stack[depth];
    }
}

Hit Trace(const Tree& tree, const Ray& ray, float limit)
{
    Hit hit = {limit, -1, 0.0f, 0.0f};
    Walk(tree, ray, hit.distance,
         [&](const LeafShape& leaf)
         {
             if (HitShape(*tree.geometry, leaf, ray, &hit))
                 hit.shape = leaf.shape;
             return false;
         });
    return hit;
}

bool Blocked(const Tree& tree, const Ray& ray, float limit)
{
    bool blocked = false;
    Walk(tree, ray, limit,
         [&](const LeafShape& leaf)
         {
             Hit hit = {limit, -1, 0.0f, 0.0f};
             blocked = !leaf.shade && HitShape(*tree.geometry, leaf, ray, &hit);
             return blocked;
         });
    return blocked;
}

SurfacePoint PointAt(const Geometry& g, const Ray& ray, const Hit& hit)
{
    SurfacePoint p = {};
    p.position = ray.origin + ray.dir * hit.distance;
    p.material = MaterialOf(g, hit.shape);
    if (hit.shape < int(g.triangles.size()))
    {
        const Triangle& t = g.triangles[size_t(hit.shape)];
        const float w = 1.0f - hit.u - hit.v;
        p.facing = Normalize(Cross(t.edge1, t.edge2));
        p.normal = Normalize(t.normal[0] * w + t.normal[1] * hit.u + t.normal[2] * hit.v);
        p.texU = t.texU[0] * w + t.texU[1] * hit.u + t.texU[2] * hit.v;
        p.texV = t.texV[0] * w + t.texV[1] * hit.u + t.texV[2] * hit.v;
    }
    else
    {
        const Ellipsoid& e = g.ellipsoids[size_t(hit.shape) - g.triangles.size()];
        const Vec3 s = ToUnitSphere(e, p.position - e.centre);
        p.facing = Normalize(e.axis[0] * (s.x / e.radius.x) + e.axis[1] * (s.y / e.radius.y) +
                             e.axis[2] * (s.z / e.radius.z));
        p.normal = p.facing;
        p.texU = s.x; // of the unit sphere: materials of round things draw with these two
        p.texV = s.y;
    }
    if (Dot(p.facing, ray.dir) > 0.0f)
        p.facing = -p.facing;
    if (Dot(p.normal, p.facing) < 0.0f)
        p.normal = -p.normal;
    return p;
}

} // namespace sample
