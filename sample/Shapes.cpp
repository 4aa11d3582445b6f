#include "sample/Shapes.h"

#include <algorithm>

namespace sample
{

Placement PlaceAt(Vec3 origin, float turnAboutY)
{
    const CosSin t = Turn(turnAboutY);
    return {origin, {t.cos, 0.0f, -t.sin}, {0.0f, 1.0f, 0.0f}, {t.sin, 0.0f, t.cos}};
}

Placement Tipped(const Placement& p, float aboutX, float aboutZ)
{
    const CosSin a = Turn(aboutX), b = Turn(aboutZ);
    const Vec3 y = p.y * a.cos + p.z * a.sin, z = p.z * a.cos - p.y * a.sin;
    return {p.origin, p.x * b.cos + y * b.sin, y * b.cos - p.x * b.sin, z};
}

Vec3 ToRoom(const Placement& p, Vec3 v)
{
    return p.origin + p.x * v.x + p.y * v.y + p.z * v.z;
}

Placement Moved(const Placement& p, Vec3 by)
{
    return {ToRoom(p, by), p.x, p.y, p.z};
}

void AddQuad(Geometry* g, Vec3 corner, Vec3 a, Vec3 b, const Material& material)
{
    if (Dot(a, a) < Dot(b, b))
        std::swap(a, b);
    AddSheet(g, PlaceAt(corner), 1, 1, material, [&](float u, float v) { return a * u + b * v; });
}

void AddBox(Geometry* g, const Placement& place, Vec3 low, Vec3 high, const Material& material)
{
    const Vec3 size = high - low, corner = ToRoom(place, low), opposite = ToRoom(place, high);
    const Vec3 side[3] = {place.x * size.x, place.y * size.y, place.z * size.z};
    for (int i = 0; i < 3; i++)
    {
        const Vec3 a = side[i], b = side[(i + 1) % 3];
        AddQuad(g, corner, a, b, material);
        AddQuad(g, opposite, -a, -b, material);
    }
}

static void AddTriangle(Geometry* g, const Vertex& a, const Vertex& b, const Vertex& c,
                        int material)
{
    const Vec3 edge1 = b.position - a.position, edge2 = c.position - a.position;
    if (Length(Cross(edge1, edge2)) > 1e-9f)
        g->triangles.push_back({edge1, edge2, {a, b, c}, material});
}

void AddSheet(Geometry* g, const Placement& place, int across, int along, const Material& material,
              const std::function<Vec3(float u, float v)>& point)
{
    const int index = int(g->materials.size());
    g->materials.push_back(material);
    const auto vertex = [&](int column, int row)
    {
        const float du = 0.5f / float(across), dv = 0.5f / float(along);
        const float u = float(column) / float(across), v = float(row) / float(along);
        // At a pole, where a whole row is one point, the slope is taken beside it.
        const float beside = std::clamp(v, dv, 1.0f - dv);
        const auto at = [&](float s, float t) { return ToRoom(place, point(s, t)); };
        const Vec3 n =
            Cross(at(u + du, beside) - at(u - du, beside), at(u, beside + dv) - at(u, beside - dv));
        return Vertex{at(u, v), n * (1.0f / (Length(n) + 1e-20f)), u, v};
    };
    for (int row = 0; row < along; row++)
        for (int column = 0; column < across; column++)
        {
            const Vertex a = vertex(column, row), c = vertex(column + 1, row + 1);
            AddTriangle(g, a, vertex(column + 1, row), c, index);
            AddTriangle(g, a, c, vertex(column, row + 1), index);
        }
}

// Sides of a polygon that looks round.
static int SegmentsFor(float radius)
{
    return 16 + int(110.0f * radius);
}

void AddRound(Geometry* g, const Placement& place, Vec3 radius, const Material& material,
              int around, int over)
{
    // Repeated square roots push a coordinate of a circle out towards a square's.
    const auto squared = [](float c, int times)
    {
        float size = std::fabs(c);
        for (int i = 0; i < times; i++)
            size = std::sqrt(size);
        return c < 0.0f ? -size : size;
    };
    const int segments = SegmentsFor(std::max({radius.x, radius.y, radius.z}));
    AddSheet(g, place, segments, segments / 2, material,
             [&](float u, float v)
             {
                 const CosSin lon = Turn(u), lat = Turn(0.5f * v - 0.25f);
                 const float out = squared(lat.cos, over);
                 return radius * Vec3{out * squared(lon.cos, around), squared(lat.sin, over),
                                      out * squared(lon.sin, around)};
             });
}

// Point at t, 0..1, of the smooth curve through all points of the path.
static Vec3 AlongPath(const std::vector<Vec3>& path, float t)
{
    const int last = int(path.size()) - 1, i = std::min(int(t * float(last)), last - 1);
    const Vec3 a = path[size_t(std::max(i - 1, 0))], b = path[size_t(i)], c = path[size_t(i + 1)],
               d = path[size_t(std::min(i + 2, last))];
    const float s = t * float(last) - float(i);
    return b + (c - a) * (0.5f * s) + (a * 2.0f - b * 5.0f + c * 4.0f - d) * (0.5f * s * s) +
           (b * 3.0f - a - c * 3.0f + d) * (0.5f * s * s * s);
}

void AddTurned(Geometry* g, const Placement& place, const std::vector<float>& profile,
               const Material& material)
{
    std::vector<Vec3> outline;
    float widest = 0.0f;
    for (size_t i = 0; i < profile.size(); i += 2)
    {
        outline.push_back({profile[i] / 1000.0f, profile[i + 1] / 1000.0f, 0.0f});
        widest = std::max(widest, outline.back().x);
    }
    AddSheet(g, place, SegmentsFor(widest), int(outline.size() - 1) * 3, material,
             [&](float u, float v)
             {
                 const CosSin around = Turn(u);
                 const Vec3 at = AlongPath(outline, v);
                 const float radius = std::max(at.x, 0.0f);
                 return Vec3{radius * around.cos, at.y, radius * around.sin};
             });
}

void AddBar(Geometry* g, const Placement& place, const std::vector<Vec3>& path, float from,
            float to, const Material& material)
{
    AddSheet(g, place, 10, int(path.size() - 1) * 4, material,
             [&](float u, float v)
             {
                 const Vec3 ahead = AlongPath(path, std::min(v + 0.02f, 1.0f));
                 const Vec3 along = Normalize(ahead - AlongPath(path, std::max(v - 0.02f, 0.0f)));
                 const Vec3 side = Normalize(Cross(along, Vec3{0.31f, 0.17f, 0.93f}));
                 const CosSin around = Turn(u);
                 const Vec3 out = side * around.cos + Cross(along, side) * around.sin;
                 return AlongPath(path, v) + out * Mix(from, to, v);
             });
}

} // namespace sample
