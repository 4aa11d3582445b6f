#include "sample/Geometry.h"

#include <algorithm>

// Nested boxes over the shapes, split where the surface area heuristic (Goldsmith and Salmon,
// 1987) expects the least work.
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

// The tree is built two by two first.
struct PairNode
{
    Bounds bounds;
    int first, count; // shapes in `order`; count 0 = inner node
    int second;       // the second child; the first one follows its parent
};

struct Builder
{
    std::vector<PairNode> nodes;
    std::vector<int> order;
    std::vector<Bounds> bounds; // per shape
};

static constexpr int kBins = 16;

// Best split of order[first, first + count): where it puts the border, or first when a leaf is
// cheaper. The entries are rearranged accordingly.
static int Split(Builder& b, int first, int count, const Bounds& whole)
{
    Bounds centres;
    for (int i = first; i < first + count; i++)
    {
        const Bounds& s = b.bounds[size_t(b.order[size_t(i)])];
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
            const int shape = b.order[size_t(i)];
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
    const auto begin = b.order.begin() + first;
    const auto border = std::stable_partition(
        begin, begin + count, [&](int shape) { return binOf(shape, bestAxis) <= bestBin; });
    return first + int(border - begin);
}

constexpr int kMaxDepth = 48; // of the pairs; bounds the stack that a ray needs

static void BuildPairs(Builder& b, int first, int count, int depth)
{
    Bounds whole;
    for (int i = first; i < first + count; i++)
        Include(&whole, b.bounds[size_t(b.order[size_t(i)])]);

    const size_t self = b.nodes.size();
    b.nodes.push_back({whole, first, count, 0});
    const int border = count > 1 && depth < kMaxDepth ? Split(b, first, count, whole) : first;
    if (border == first)
        return;
    BuildPairs(b, first, border - first, depth + 1);
    b.nodes[self].second = int(b.nodes.size());
    b.nodes[self].count = 0;
    BuildPairs(b, border, first + count - border, depth + 1);
}

// Makes a node of four from a pair by opening the largest of its children until there are four.
static int CollapsePairs(const Builder& b, int pair, Tree* tree)
{
    int children[4] = {pair, 0, 0, 0};
    int count = 1;
    while (count < 4)
    {
        int widest = -1;
        for (int i = 0; i < count; i++)
        {
            const PairNode& n = b.nodes[size_t(children[i])];
            if (n.count == 0 &&
                (widest < 0 ||
                 HalfArea(n.bounds) > HalfArea(b.nodes[size_t(children[widest])].bounds)))
                widest = i;
        }
        if (widest < 0)
            break;
        const int opened = children[widest];
        children[widest] = opened + 1;
        children[count++] = b.nodes[size_t(opened)].second;
    }

    const size_t self = tree->nodes.size();
    tree->nodes.push_back({});
    for (int i = 0; i < 4; i++)
    {
        const PairNode* n = i < count ? &b.nodes[size_t(children[i])] : nullptr;
        const bool inner = n && n->count == 0;
        const int child = inner ? CollapsePairs(b, children[i], tree) : n ? n->first : 0;
        const Bounds bounds = n ? n->bounds : Bounds{};
        TreeNode& node = tree->nodes[self];
        for (int axis = 0; axis < 3; axis++)
        {
            node.bound[0][axis][i] = Along(bounds.low, axis);
            node.bound[1][axis][i] = Along(bounds.high, axis);
        }
        node.child[i] = child;
        node.count[i] = inner ? 0 : n ? n->count : -1;
    }
    return int(self);
}

void BuildTree(Tree* tree, const Geometry& geometry)
{
    const int triangles = int(geometry.triangles.size());
    const int count = triangles + int(geometry.ellipsoids.size());
    Builder b;
    for (int i = 0; i < count; i++)
    {
        b.order.push_back(i);
        b.bounds.push_back(BoundsOf(geometry, i));
    }
    BuildPairs(b, 0, count, 0);

    tree->geometry = &geometry;
    tree->nodes.clear();
    tree->leaves.clear();
    CollapsePairs(b, 0, tree);
    for (const int shape : b.order)
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

} // namespace sample
