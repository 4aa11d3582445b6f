#include "sample/Scene.h"

#include "base/ParallelRows.h"
#include "sample/Landscape.h"
#include "sample/Light.h"

#include <algorithm>

// Soft light is gathered sparsely, on a grid of about 500 points across the view, smoothed along
// surfaces, and then read by every picture element for the surfaces that it sees. Sharp things
// (edges, textures, the sun's shadows, mirrors) are looked at in every picture element, twice,
// or four times where the two disagree, or sixteen times at an edge.
namespace sample
{

struct LightPoint
{
    Vec3 irradiance, position, normal;
    float spacing; // metres to the next point; 0 = nothing there
};

struct View
{
    const World* world;
    int width, height;
    Vec3 eye, right, up, middle; // the view is eye + middle + right * x + up * y
    float pixel;                 // tangent of one picture element
    int step;                    // picture elements from one gathered point to the next
    int across, along;           // points
    std::vector<LightPoint> points;
};

static View MakeView(const World& world, int width, int height, const SampleCamera& camera)
{
    const CosSin yaw = Turn(camera.yaw), roll = Turn(camera.roll);
    const Vec3 level = {yaw.cos, 0, -yaw.sin}, up = {0, 1, 0};
    View v = {&world, width, height, camera.eye, {}, {}, {yaw.sin, -0.085f, yaw.cos},
              0,      0,     0,      0,          {}};
    v.right = level * roll.cos + up * roll.sin;
    v.up = up * roll.cos - level * roll.sin;
    // The frame holds 3:2; another shape sees more at its longer sides.
    v.pixel = std::max(1.2f / float(width), 0.8f / float(height));
    v.step = std::max(1, (width + 250) / 500);
    v.across = (width + v.step - 1) / v.step;
    v.along = (height + v.step - 1) / v.step;
    return v;
}

static Ray RayThrough(const View& v, float x, float y)
{
    const float across = (x - 0.5f * float(v.width)) * v.pixel;
    const float up = (0.5f * float(v.height) - y) * v.pixel;
    return {v.eye, Normalize(v.middle + v.right * across + v.up * up)};
}

static LightPoint GatherPoint(const View& v, int x, int y)
{
    const float half = 0.5f * float(v.step);
    const Ray ray = RayThrough(v, float(x * v.step) + half, float(y * v.step) + half);
    const SurfacePoint s = Trace(v.world->tree, ray);
    if (s.material < 0)
        return {};
    const uint32_t seed = Hash(uint32_t(x), uint32_t(y) + 77);
    return {GatherLight(*v.world, s.position, s.normal, seed), s.position, s.normal,
            s.distance * v.pixel * float(v.step)};
}

// How well light found at one point serves another: same plane, same direction, close by.
static float Kinship(const LightPoint& p, const LightPoint& other, float reach)
{
    const float align = Dot(p.normal, other.normal);
    if (p.spacing == 0.0f || align < 0.5f)
        return 0.0f;
    const Vec3 d = p.position - other.position;
    const float off = Dot(d, other.normal) / (0.25f * reach), away2 = Dot(d, d) / (reach * reach);
    const float a2 = align * align, a4 = a2 * a2;
    return a4 * a4 / ((1.0f + off * off) * (1.0f + away2 * away2));
}

// Mean light of the points around a place of the grid, each `apart` from the next, as far as they
// are kin to `mid`. Where hardly any is, mid's own light is gathered and counts as one of them.
static Vec3 Blend(const View& v, float x, float y, int apart, int taps, const LightPoint& mid)
{
    Vec3 sum = {0, 0, 0};
    float total = 0.0f;
    const int midX = FloorInt(x + 0.5f), midY = FloorInt(y + 0.5f);
    for (int j = -taps; j <= taps; j++)
        for (int i = -taps; i <= taps; i++)
        {
            const int px = midX + i * apart, py = midY + j * apart;
            const float dx = float(taps) + 0.5f - std::fabs(x - float(px)) / float(apart);
            const float dy = float(taps) + 0.5f - std::fabs(y - float(py)) / float(apart);
            if (px < 0 || py < 0 || px >= v.across || py >= v.along || dx <= 0.0f || dy <= 0.0f)
                continue;
            const LightPoint& p = v.points[size_t(py * v.across + px)];
            const float weight = dx * dy * Kinship(p, mid, mid.spacing * 2.5f * float(apart));
            sum += p.irradiance * weight;
            total += weight;
        }
    if (total < 0.3f)
    {
        const uint32_t seed = Hash(uint32_t(midX), uint32_t(midY) + 991);
        sum += GatherLight(*v.world, mid.position, mid.normal, seed) * 0.3f;
        total += 0.3f;
    }
    return sum * (1.0f / total);
}

// Calls work(x, y) for each cell of a grid, on all threads; none depends on another.
template <typename Work>
static void ForEachCell(int across, int along, const Work& work)
{
    VcParallelRows(along, 1 << 20,
                   [&](int first, int end)
                   {
                       for (int i = first * across; i < end * across; i++)
                           work(i % across, i / across);
                   });
}

static void FindLight(View* v)
{
    v->points.resize(size_t(v->across) * size_t(v->along));
    const auto at = [&](int x, int y) { return size_t(y) * size_t(v->across) + size_t(x); };
    ForEachCell(v->across, v->along,
                [&](int x, int y) { v->points[at(x, y)] = GatherPoint(*v, x, y); });
    for (const int apart : {1, 2})
    {
        std::vector<LightPoint> found = v->points;
        ForEachCell(v->across, v->along,
                    [&](int x, int y)
                    {
                        LightPoint& p = found[at(x, y)];
                        if (p.spacing > 0.0f)
                            p.irradiance = Blend(*v, float(x), float(y), apart, 2, p);
                    });
        v->points.swap(found);
    }
}

static Vec3 Reflection(const View& v, const Ray& ray, const SurfacePoint& s, float shine)
{
    const float cosine = Saturate(-Dot(ray.dir, s.normal));
    const float c = 1.0f - cosine, c5 = c * c * c * c * c;
    const float share = shine + c5 * 0.6f * Saturate(shine / 0.045f);
    const Vec3 dir = Normalize(ray.dir + s.normal * (2.0f * cosine));
    return ReflectedRadiance(*v.world, {s.position + s.normal * 1e-4f, dir}, v.pixel) * share;
}

struct Sample
{
    Vec3 radiance;
    int material; // -1 = landscape
    bool inBeam;  // of the sun
};

static Sample ShadeAt(const View& v, float x, float y, Spot spot)
{
    const Ray ray = RayThrough(v, x, y);
    const SurfacePoint s = Trace(v.world->tree, ray);
    if (s.material < 0)
        return {Landscape(ray.dir, v.pixel), -1, false};
    const float slant = std::max(-Dot(ray.dir, s.normal), 0.15f);
    const Material& m = v.world->materials[size_t(s.material)];
    const Look look = m.pattern(m, s, v.pixel * s.distance / std::sqrt(slant));
    const float step = float(v.step);
    const LightPoint here = {{}, s.position, s.normal, s.distance * v.pixel * step};
    Sample sample = {{}, s.material, false};
    const Vec3 sun = SunLight(*v.world, s.position, s.normal, spot, &sample.inBeam);
    const Vec3 soft = Blend(v, x / step - 0.5f, y / step - 0.5f, 1, 1, here);
    sample.radiance = Radiance(look, soft + sun);
    if (look.shine > 0.0f)
        sample.radiance += Reflection(v, ray, s, look.shine);
    return sample;
}

// Where on the sun's disc sample number i looks: from the rim inwards, so that the first ones
// disagree wherever only a part of the sun is seen, and by another angle in every picture element.
static Spot SunSpot(int i, float turn)
{
    return {Fract(turn + 0.381966f * float(i)), std::sqrt(1.0f - (float(i) + 0.5f) / 16.0f)};
}

static float FourthRoot(float v)
{
    return std::sqrt(std::sqrt(v));
}

// The elements' values are averaged on a scale near that of the eye. A linear mean is what a
// lens does, but it lets one bright quarter outshine the rest, and every window bar would have a
// jagged edge in all but the darkest frame.
static Vec3 Resolve(const View& v, int x, int y)
{
    // Samples of a 4 x 4 grid, ordered so that the first four have a row and a column each.
    static const int kOrder[16] = {1, 14, 7, 8, 0, 2, 3, 4, 5, 6, 9, 10, 11, 12, 13, 15};
    const float turn = Unit(Hash(uint32_t(x), uint32_t(y)));
    Vec3 sum = {0, 0, 0};
    float low = 1e30f, high = 0.0f;
    int count = 2, material = 0;
    bool mixed = false;
    for (int i = 0; i < count; i++)
    {
        const float sx = float(x) + 0.125f + 0.25f * float(kOrder[i] % 4);
        const float sy = float(y) + 0.125f + 0.25f * float(kOrder[i] / 4);
        const Sample s = ShadeAt(v, sx, sy, SunSpot(i, turn));
        sum += {FourthRoot(s.radiance.x), FourthRoot(s.radiance.y), FourthRoot(s.radiance.z)};
        low = std::min(low, Luminance(s.radiance));
        high = std::max(high, Luminance(s.radiance));
        mixed = mixed || (i > 0 && s.material != material);
        material = s.material;
        if (i == 1 && (mixed || s.inBeam || high > low * 1.1f))
            count = 4;
        if (i == 3 && high > low * (mixed ? 1.2f : 1.6f))
            count = 16;
    }
    const Vec3 mean = sum * (1.0f / float(count)), square = mean * mean;
    return square * square;
}

} // namespace sample

SampleRadiance RenderSampleScene(int width, int height, const SampleCamera& camera)
{
    const sample::World world = sample::BuildWorld();
    sample::View view = MakeView(world, width, height, camera);
    FindLight(&view);
    SampleRadiance out = {width, height, std::vector<float>(size_t(width) * size_t(height) * 3)};
    sample::ForEachCell(width, height,
                        [&](int x, int y)
                        {
                            const sample::Vec3 c = Resolve(view, x, y);
                            float* pixel = &out.light[(size_t(y) * size_t(width) + size_t(x)) * 3];
                            pixel[0] = c.z, pixel[1] = c.y, pixel[2] = c.x;
                        });
    return out;
}
