#include "sample/Geometry.h"

#include <algorithm>

// Builders of shapes: everything curved becomes triangles with smooth normals, but for ellipsoids.
namespace sample
{

Placement PlaceAt(Vec3 origin, float turnAboutY)
{
    const CosSin t = Turn(turnAboutY);
    return {origin, {t.cos, 0.0f, -t.sin}, {0.0f, 1.0f, 0.0f}, {t.sin, 0.0f, t.cos}};
}

Placement TipAboutX(const Placement& place, float turns)
{
    const CosSin t = Turn(turns);
    return {place.origin, place.x, place.y * t.cos + place.z * t.sin,
            place.z * t.cos - place.y * t.sin};
}

Placement TipAboutZ(const Placement& place, float turns)
{
    const CosSin t = Turn(turns);
    return {place.origin, place.x * t.cos + place.y * t.sin, place.y * t.cos - place.x * t.sin,
            place.z};
}

int AddMaterial(Geometry* g, Surface surface, Vec3 color, float gloss, uint32_t seed)
{
    g->materials.push_back({surface, color, gloss, seed});
    return int(g->materials.size()) - 1;
}

void AddQuad(Geometry* g, Vec3 corner, Vec3 a, Vec3 b, int material)
{
    if (Dot(a, a) < Dot(b, b))
        std::swap(a, b);
    const float la = Length(a), lb = Length(b);
    const Vec3 n = Normalize(Cross(a, b));
    g->triangles.push_back(
        {corner, a, a + b, {n, n, n}, {0.0f, la, la}, {0.0f, 0.0f, lb}, material});
    g->triangles.push_back(
        {corner, a + b, b, {n, n, n}, {0.0f, la, 0.0f}, {0.0f, lb, lb}, material});
}

void AddBox(Geometry* g, const Placement& place, Vec3 low, Vec3 high, int material)
{
    const Vec3 x = place.x * (high.x - low.x);
    const Vec3 y = place.y * (high.y - low.y);
    const Vec3 z = place.z * (high.z - low.z);
    const Vec3 corner = ToRoom(place, low), opposite = ToRoom(place, high);
    AddQuad(g, corner, x, y, material);
    AddQuad(g, corner, y, z, material);
    AddQuad(g, corner, z, x, material);
    AddQuad(g, opposite, -x, -y, material);
    AddQuad(g, opposite, -y, -z, material);
    AddQuad(g, opposite, -z, -x, material);
}

// Triangles over a grid of points; normals come from the neighbouring points. Where normals are
// given, those at the border are taken as they are and the others tell which side is outside.
// Rows that end where they began (closed) continue there.
static void AddGrid(Geometry* g, const std::vector<Vec3>& points, int rows, int columns,
                    bool closed, int material, const std::vector<Vec3>* given = nullptr)
{
    std::vector<Vec3> normals(points.size());
    for (int r = 0; r < rows; r++)
        for (int c = 0; c < columns; c++)
        {
            const int before = closed && c == 0 ? columns - 2 : std::max(c - 1, 0);
            const int after = closed && c == columns - 1 ? 1 : std::min(c + 1, columns - 1);
            const int above = std::max(r - 1, 0), below = std::min(r + 1, rows - 1);
            const Vec3 across =
                points[size_t(r * columns + after)] - points[size_t(r * columns + before)];
            const Vec3 along =
                points[size_t(below * columns + c)] - points[size_t(above * columns + c)];
            Vec3 n = Cross(across, along);
            if (given)
            {
                const Vec3 out = (*given)[size_t(r * columns + c)];
                const bool border = r == 0 || c == 0 || r == rows - 1 || c == columns - 1;
                n = border ? out : Dot(n, out) < 0.0f ? -n : n;
            }
            const float square = Dot(n, n);
            normals[size_t(r * columns + c)] =
                square > 1e-16f ? n * (1.0f / std::sqrt(square)) : Vec3{0, 0, 0};
        }
    // A pole, where a whole row is one point, faces the way of the row beside it on average.
    for (int r = 0; r < rows; r += rows - 1)
    {
        if (Dot(normals[size_t(r * columns)], normals[size_t(r * columns)]) > 0.0f)
            continue;
        Vec3 sum = {0, 0, 0};
        for (int c = 0; c < columns; c++)
            sum += normals[size_t((r == 0 ? 1 : rows - 2) * columns + c)];
        for (int c = 0; c < columns; c++)
            normals[size_t(r * columns + c)] = Normalize(sum);
    }

    const auto add = [&](int a, int b, int c)
    {
        const Vec3 corner = points[size_t(a)];
        const Vec3 edge1 = points[size_t(b)] - corner, edge2 = points[size_t(c)] - corner;
        if (Dot(Cross(edge1, edge2), Cross(edge1, edge2)) < 1e-18f)
            return;
        Triangle t = {corner, edge1, edge2, {}, {}, {}, material};
        const int index[3] = {a, b, c};
        for (int i = 0; i < 3; i++)
        {
            t.normal[i] = normals[size_t(index[i])];
            t.texU[i] = float(index[i] % columns) / float(columns - 1);
            t.texV[i] = float(index[i] / columns) / float(rows - 1);
        }
        g->triangles.push_back(t);
    };
    for (int r = 0; r + 1 < rows; r++)
        for (int c = 0; c + 1 < columns; c++)
        {
            const int i = r * columns + c;
            add(i, i + 1, i + columns + 1);
            add(i, i + columns + 1, i + columns);
        }
}

void AddSheet(Geometry* g, const std::vector<Vec3>& points, int rows, int columns, int material)
{
    AddGrid(g, points, rows, columns, false, material);
}

// One face of a rounded box before its sides are put in place: u and v run -1..1, the outer halves
// of the grid go around the edges. `around` is the true normal there.
static void CushionPoint(float u, float v, float bulge, Vec3* box, Vec3* around)
{
    const float cu = Clamp(u * 2.0f, -1.0f, 1.0f), cv = Clamp(v * 2.0f, -1.0f, 1.0f);
    const float ru = Clamp(u * 2.0f - cu, -1.0f, 1.0f), rv = Clamp(v * 2.0f - cv, -1.0f, 1.0f);
    const float fu = 1.0f - cu * cu, fv = 1.0f - cv * cv;
    *box = {cu, cv, bulge * fu * fu * fv * fv};
    *around = Normalize({ru, rv, 1.0f});
}

void AddCushion(Geometry* g, const Placement& place, Vec3 centre, Vec3 half, float radius,
                float bulge, int material)
{
    constexpr int kSteps = 17;
    const Vec3 inner = half - Vec3{radius, radius, radius};
    const float sizes[3] = {inner.x, inner.y, inner.z};
    for (int face = 0; face < 6; face++)
    {
        const size_t axis = size_t(face / 2); // the one that the face looks along
        const float side = face & 1 ? -1.0f : 1.0f;
        const float narrow = std::min(sizes[(axis + 1) % 3], sizes[(axis + 2) % 3]);
        const float swell = bulge * std::min(1.0f, narrow / 0.15f); // narrow faces stay flat
        const auto turned = [&](Vec3 v) { // face coordinates to the placement's
            v.z *= side;
            return axis == 0 ? Vec3{v.z, v.x, v.y} : axis == 1 ? Vec3{v.y, v.z, v.x} : v;
        };
        std::vector<Vec3> points, normals;
        for (int i = 0; i < kSteps * kSteps; i++)
        {
            const int r = i / kSteps, c = i % kSteps;
            Vec3 box, around;
            CushionPoint(float(c) * 2.0f / (kSteps - 1) - 1.0f,
                         float(r) * 2.0f / (kSteps - 1) - 1.0f, swell, &box, &around);
            box.x *= sizes[(axis + 1) % 3];
            box.y *= sizes[(axis + 2) % 3];
            box.z += sizes[axis];
            points.push_back(ToRoom(place, centre + turned(box + around * radius)));
            normals.push_back(TurnToRoom(place, turned(around)));
        }
        AddGrid(g, points, kSteps, kSteps, false, material, &normals);
    }
}

void AddPillow(Geometry* g, const Placement& place, float halfSide, float halfDepth, int material)
{
    constexpr int kSteps = 21;
    for (const float side : {-1.0f, 1.0f})
    {
        std::vector<Vec3> points;
        for (int i = 0; i < kSteps * kSteps; i++)
        {
            const float u = float(i % kSteps) * 2.0f / (kSteps - 1) - 1.0f;
            const float v = float(i / kSteps) * 2.0f / (kSteps - 1) - 1.0f;
            const float fu = 1.0f - u * u, fv = 1.0f - v * v;
            // Filling draws the middle of the sides in; the corners stay out.
            const float x = u * (1.0f - 0.10f * fv), y = v * (1.0f - 0.10f * fu);
            const float depth = std::sqrt(std::sqrt(fu * fv)) * std::sqrt(fu * fv);
            points.push_back(ToRoom(place, {x * halfSide, y * halfSide, side * halfDepth * depth}));
        }
        AddGrid(g, points, kSteps, kSteps, false, material);
    }
}

// Point at t (0..1 between b and c) of the smooth curve through four points.
template <typename T>
static T Spline(T a, T b, T c, T d, float t)
{
    return b + (c - a) * (0.5f * t) + (a * 2.0f - b * 5.0f + c * 4.0f - d) * (0.5f * t * t) +
           (b * 3.0f - a - c * 3.0f + d) * (0.5f * t * t * t);
}

template <typename T>
static std::vector<T> Smoothed(const std::vector<T>& in, int steps)
{
    const int last = int(in.size()) - 1;
    std::vector<T> out;
    for (int i = 0; i < last; i++)
        for (int k = 0; k < steps; k++)
            out.push_back(Spline(in[size_t(std::max(i - 1, 0))], in[size_t(i)], in[size_t(i + 1)],
                                 in[size_t(std::min(i + 2, last))], float(k) / float(steps)));
    out.push_back(in.back());
    return out;
}

void AddTurned(Geometry* g, const Placement& place, const std::vector<ProfilePoint>& profile,
               int segments, int material)
{
    std::vector<Vec3> outline;
    for (const ProfilePoint& p : profile)
        outline.push_back({p.radius, p.height, 0.0f});
    outline = Smoothed(outline, 3);

    std::vector<Vec3> points;
    for (const Vec3& p : outline)
        for (int s = 0; s <= segments; s++)
        {
            const CosSin t = Turn(float(s % segments) / float(segments));
            const float radius = std::max(p.x, 0.0f);
            points.push_back(ToRoom(place, {radius * t.cos, p.y, radius * t.sin}));
        }
    AddGrid(g, points, int(outline.size()), segments + 1, true, material);
}

void AddBar(Geometry* g, const std::vector<Vec3>& path, const std::vector<float>& radii,
            int segments, int material)
{
    const std::vector<Vec3> centres = Smoothed(path, 4);
    const std::vector<float> widths = Smoothed(radii, 4);
    std::vector<Vec3> points;
    for (size_t i = 0; i < centres.size(); i++)
    {
        const Vec3 along =
            Normalize(centres[std::min(i + 1, centres.size() - 1)] - centres[i == 0 ? 0 : i - 1]);
        const Vec3 side = Normalize(Cross(along, Vec3{0.31f, 0.17f, 0.93f}));
        const Vec3 up = Cross(along, side);
        for (int s = 0; s <= segments; s++)
        {
            const CosSin t = Turn(float(s % segments) / float(segments));
            points.push_back(centres[i] + (side * t.cos + up * t.sin) * widths[i]);
        }
    }
    AddGrid(g, points, int(centres.size()), segments + 1, true, material);
}

void AddEllipsoid(Geometry* g, const Placement& place, Vec3 centre, Vec3 radius, int material)
{
    g->ellipsoids.push_back({ToRoom(place, centre), {place.x, place.y, place.z}, radius, material});
}

} // namespace sample
