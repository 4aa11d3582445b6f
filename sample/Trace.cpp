#include "sample/Geometry.h"

#include <emmintrin.h>

// The two ray questions, and what was hit. Triangles are met as in Moller and Trumbore (1997).
namespace sample
{

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

static float Inverse(float v)
{
    return 1.0f / (std::fabs(v) > 1e-9f ? v : (v < 0.0f ? -1e-9f : 1e-9f));
}

struct Waiting
{
    int child, count;
    float entry; // distance at which the ray enters
};

// Visits the leaves along the ray, nearest first; `visit` returns true to stop.
template <typename Visit>
static void Walk(const Tree& tree, const Ray& ray, const float& limit, Visit visit)
{
    const float origin[3] = {ray.origin.x, ray.origin.y, ray.origin.z};
    const float inverse[3] = {Inverse(ray.dir.x), Inverse(ray.dir.y), Inverse(ray.dir.z)};
    __m128 from[3], scale[3];
    int away[3]; // which bound of an axis lies behind
    for (int axis = 0; axis < 3; axis++)
    {
        from[axis] = _mm_set1_ps(origin[axis]);
        scale[axis] = _mm_set1_ps(inverse[axis]);
        away[axis] = inverse[axis] < 0.0f ? 0 : 1;
    }

    Waiting stack[160]; // three more per level, and the tree is at most 48 levels deep
    int depth = 0;
    stack[depth++] = {0, 0, 0.0f};
    while (depth > 0)
    {
        const Waiting next = stack[--depth];
        if (next.entry >= limit)
            continue;
        if (next.count > 0)
        {
            for (int i = next.child; i < next.child + next.count; i++)
                if (visit(tree.leaves[size_t(i)]))
                    return;
            continue;
        }

        const TreeNode& n = tree.nodes[size_t(next.child)];
        __m128 in = _mm_setzero_ps(), out = _mm_set1_ps(limit);
        for (int axis = 0; axis < 3; axis++)
        {
            const __m128 near = _mm_loadu_ps(n.bound[1 - away[axis]][axis]);
            const __m128 far = _mm_loadu_ps(n.bound[away[axis]][axis]);
            in = _mm_max_ps(in, _mm_mul_ps(_mm_sub_ps(near, from[axis]), scale[axis]));
            out = _mm_min_ps(out, _mm_mul_ps(_mm_sub_ps(far, from[axis]), scale[axis]));
        }
        const int met = _mm_movemask_ps(_mm_cmple_ps(in, out));
        float entry[4];
        _mm_storeu_ps(entry, in);
        const int bottom = depth;
        for (int i = 0; i < 4; i++)
        {
            if (!(met >> i & 1) || n.count[i] < 0)
                continue;
            int at = depth++; // the nearest goes on top
            for (; at > bottom && stack[at - 1].entry < entry[i]; at--)
                stack[at] = stack[at - 1];
            stack[at] = {n.child[i], n.count[i], entry[i]};
        }
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

int MaterialOf(const Geometry& g, int shape)
{
    const size_t triangles = g.triangles.size();
    return size_t(shape) < triangles ? g.triangles[size_t(shape)].material
                                     : g.ellipsoids[size_t(shape) - triangles].material;
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
