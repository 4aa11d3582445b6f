#include "sample/Light.h"
#include "sample/Room.h"
#include "sample/Scene.h"

#include <algorithm>

// Soft light is gathered sparsely, on a grid of about 500 points across the view, smoothed along
// surfaces, and then read by every picture element for the surfaces that it sees. Sharp things
// (edges, textures, the sun's shadows, mirrors) are looked at in every picture element, twice,
// or four times where the two disagree, or sixteen times at an edge.
namespace sample
{

constexpr float kPi = 3.14159265f;

// Like an architectural photograph: the camera is level, so that verticals stay vertical, and the
// view is shifted down instead. Tangents of the angles at the borders.
static const Vec3 kEye = {1.0f, 1.32f, -0.95f};
constexpr float kYaw = -0.030f; // turns
constexpr float kHalfWidth = 0.60f;
constexpr float kShift = -0.085f;

struct View
{
    int width, height;
    Vec3 right, forward;
    float pixel; // tangent of one picture element
};

static View MakeView(int width, int height)
{
    const CosSin yaw = Turn(kYaw);
    // The frame holds 3:2; another shape sees more at its longer sides.
    const float fit =
        std::max(2.0f * kHalfWidth / float(width), 2.0f * kHalfWidth / 1.5f / float(height));
    return {width, height, {yaw.cos, 0, -yaw.sin}, {yaw.sin, 0, yaw.cos}, fit};
}

static Ray RayThrough(const View& v, float x, float y)
{
    const float across = (x - 0.5f * float(v.width)) * v.pixel;
    const float up = (0.5f * float(v.height) - y) * v.pixel + kShift;
    return {kEye, Normalize(v.forward + v.right * across + Vec3{0, up, 0})};
}

struct LightPoint
{
    Light light;
    Vec3 position, normal;
    float distance; // 0 = nothing there
};

struct LightScreen
{
    int step, width, height;
    std::vector<LightPoint> points;
};

static LightPoint GatherPoint(const World& w, const View& view, const LightScreen& screen, int x,
                              int y)
{
    const Ray ray = RayThrough(view, (float(x) + 0.5f) * float(screen.step),
                               (float(y) + 0.5f) * float(screen.step));
    const Hit hit = Trace(w.tree, ray, 100.0f);
    if (hit.shape < 0)
        return {};
    const SurfacePoint s = PointAt(w.geometry, ray, hit);
    const uint32_t seed = Hash(uint32_t(x), uint32_t(y) + 77);
    return {GatherLight(w, s.position, s.normal, seed, {6, 7, 2, 10}), s.position, s.normal,
            hit.distance};
}

// How well light found at one point serves another: same plane, same direction, close by.
static float Kinship(const LightPoint& p, Vec3 position, Vec3 normal, float reach)
{
    const float align = Dot(p.normal, normal);
    if (p.distance == 0.0f || align < 0.5f)
        return 0.0f;
    const Vec3 d = p.position - position;
    const float off = Dot(d, normal) / (0.25f * reach), away2 = Dot(d, d) / (reach * reach);
    const float a2 = align * align, a4 = a2 * a2;
    return a4 * a4 / ((1.0f + off * off) * (1.0f + away2 * away2));
}

// One pass of smoothing with a 5 x 5 kernel whose taps are `spacing` points apart.
static void Smooth(LightScreen* screen, const View& view, int spacing, int threads)
{
    static const float kTap[3] = {0.375f, 0.25f, 0.0625f};
    std::vector<LightPoint> out = screen->points;
    ForEachRow(
        screen->height, threads,
        [&](int y)
        {
            for (int x = 0; x < screen->width; x++)
            {
                const size_t at = size_t(y * screen->width + x);
                const LightPoint& mid = screen->points[at];
                if (mid.distance == 0.0f)
                    continue;
                const float reach =
                    mid.distance * view.pixel * float(screen->step * spacing) * 3.0f;
                Light sum = {{0, 0, 0}, {0, 0, 0}};
                float total = 0.0f;
                for (int j = -2; j <= 2; j++)
                    for (int i = -2; i <= 2; i++)
                    {
                        const int sx = x + i * spacing, sy = y + j * spacing;
                        if (sx < 0 || sy < 0 || sx >= screen->width || sy >= screen->height)
                            continue;
                        const LightPoint& p = screen->points[size_t(sy * screen->width + sx)];
                        const float weight = kTap[std::abs(i)] * kTap[std::abs(j)] *
                                             Kinship(p, mid.position, mid.normal, reach);
                        sum.irradiance += p.light.irradiance * weight;
                        sum.direction += p.light.direction * weight;
                        total += weight;
                    }
                out[at].light = {sum.irradiance * (1.0f / total), sum.direction * (1.0f / total)};
            }
        });
    screen->points.swap(out);
}

static LightScreen GatherScreen(const World& w, const View& view, int threads)
{
    LightScreen screen;
    screen.step = std::max(1, (view.width + 250) / 500);
    screen.width = (view.width + screen.step - 1) / screen.step;
    screen.height = (view.height + screen.step - 1) / screen.step;
    screen.points.resize(size_t(screen.width) * size_t(screen.height));
    ForEachRow(screen.height, threads,
               [&](int y)
               {
                   for (int x = 0; x < screen.width; x++)
                       screen.points[size_t(y * screen.width + x)] =
                           GatherPoint(w, view, screen, x, y);
               });
    Smooth(&screen, view, 1, threads);
    Smooth(&screen, view, 2, threads);
    return screen;
}

// Light at a surface point seen at picture position x, y, from the gathered points around it;
// where none of them lies on the same surface it is gathered on the spot.
static Light LightAt(const World& w, const View& view, const LightScreen& screen, float x, float y,
                     const SurfacePoint& s, float distance)
{
    const float gx = x / float(screen.step) - 0.5f, gy = y / float(screen.step) - 0.5f;
    const int ix = int(Floor(gx)), iy = int(Floor(gy));
    const float reach = distance * view.pixel * float(screen.step) * 2.0f;
    Light sum = {{0, 0, 0}, {0, 0, 0}};
    float total = 0.0f;
    for (int j = -1; j <= 2; j++)
        for (int i = -1; i <= 2; i++)
        {
            const int sx = ix + i, sy = iy + j;
            if (sx < 0 || sy < 0 || sx >= screen.width || sy >= screen.height)
                continue;
            const float dx = std::fabs(gx - float(sx)), dy = std::fabs(gy - float(sy));
            if (dx >= 1.8f || dy >= 1.8f)
                continue;
            const LightPoint& p = screen.points[size_t(sy * screen.width + sx)];
            const float tent = (1.8f - dx) * (1.8f - dy);
            const float weight = tent * tent * Kinship(p, s.position, s.normal, reach);
            sum.irradiance += p.light.irradiance * weight;
            sum.direction += p.light.direction * weight;
            total += weight;
        }
    if (total > 0.5f)
        return {sum.irradiance * (1.0f / total), sum.direction * (1.0f / total)};
    const uint32_t seed = Hash(uint32_t(ix * 4099), uint32_t(iy) + 991);
    const Light fresh = GatherLight(w, s.position, s.normal, seed, {8, 10, 2, 16});
    const float share = 1.0f / (0.5f + total);
    return {(fresh.irradiance * 0.5f + sum.irradiance) * share,
            (fresh.direction * 0.5f + sum.direction) * share};
}

static Vec3 Reflection(const World& w, const Ray& ray, const SurfacePoint& s, const Look& look,
                       float footprint)
{
    const float cosine = Saturate(-Dot(ray.dir, look.normal));
    const float c = 1.0f - cosine, c5 = c * c * c * c * c;
    const float strength = Saturate(Luminance(look.mirror) / 0.045f);
    const Vec3 fresnel = look.mirror + (Vec3{1, 1, 1} - look.mirror) * (c5 * strength * 0.6f);
    Vec3 dir = ray.dir - look.normal * (2.0f * Dot(ray.dir, look.normal));
    const float below = Dot(dir, s.facing);
    if (below < 0.02f) // a tilted normal may send the ray into the surface
        dir += s.facing * (0.02f - below);
    return fresnel *
           ReflectedRadiance(w, {s.position + s.facing * 1e-4f, Normalize(dir)}, footprint);
}

struct Sample
{
    Vec3 radiance;
    int material; // -1 = landscape
    SunView sun;
};

static Sample ShadeAt(const World& w, const View& view, const LightScreen& screen, float x, float y,
                      Disc spot)
{
    const Ray ray = RayThrough(view, x, y);
    const Hit hit = Trace(w.tree, ray, 100.0f);
    if (hit.shape < 0)
        return {Landscape(ray.dir, view.pixel), -1, SunView::Away};
    const SurfacePoint s = PointAt(w.geometry, ray, hit);
    const float slant = std::max(-Dot(ray.dir, s.facing), 0.15f);
    const float footprint = view.pixel * hit.distance / std::sqrt(slant);
    const Look look = LookAt(w.geometry.materials[size_t(s.material)], s, footprint);

    const Light light = LightAt(w, view, screen, x, y, s, hit.distance);
    const float level = Luminance(light.irradiance) + 1e-6f;
    const float relief =
        Clamp(1.0f + Dot(look.normal - s.normal, light.direction) / level, 0.15f, 2.5f);
    SunView sunView;
    const Vec3 sun = SunLight(w, s.position, look.normal, spot, &sunView);
    Vec3 radiance = look.color * (light.irradiance * relief + sun) * (1.0f / kPi) + look.glow;
    if (look.mirror.x > 0.0f)
        radiance += Reflection(w, ray, s, look, view.pixel);
    return {radiance, s.material, sunView};
}

static float FourthRoot(float v)
{
    return std::sqrt(std::sqrt(v));
}

// Where on the sun's disc sample number i looks. The first four sit around its rim, so that they
// disagree wherever only a part of the sun is seen; the others fill the disc, turned by another
// angle in every picture element.
static Disc SunSpot(int i, float turn)
{
    if (i < 4)
        return {0.08f + (i == 0 ? 0.0f : i == 1 ? 0.5f : i == 2 ? 0.25f : 0.75f), 0.95f};
    return {Fract(turn + 0.381966f * float(i)), 0.9f * std::sqrt((float(i) - 3.5f) / 12.0f)};
}

// The elements' values are averaged on a scale near that of the eye. A linear mean is what a
// lens does, but it lets one bright quarter outshine the rest, and every window bar would have a
// jagged edge in all but the darkest frame.
static Vec3 Resolve(const World& w, const View& view, const LightScreen& screen, int x, int y)
{
    // Samples of a 4 x 4 grid, ordered so that the first four have a row and a column each.
    static const int kOrder[16] = {1, 14, 7, 8, 0, 2, 3, 4, 5, 6, 9, 10, 11, 12, 13, 15};
    Vec3 sum = {0, 0, 0};
    float low = 1e30f, high = 0.0f;
    Sample first = {};
    int count = 2;
    bool mixed = false, edgeOfShadow = false, sunny = false;
    const float turn = Unit(Hash(uint32_t(x), uint32_t(y)));
    for (int i = 0; i < count; i++)
    {
        const int cell = kOrder[i];
        const float sx = (float(cell % 4) + 0.5f) * 0.25f, sy = (float(cell / 4) + 0.5f) * 0.25f;
        const Disc spot = SunSpot(i, turn);
        const Sample s = ShadeAt(w, view, screen, float(x) + sx, float(y) + sy, spot);
        sum += {FourthRoot(s.radiance.x), FourthRoot(s.radiance.y), FourthRoot(s.radiance.z)};
        if (i >= 4)
            continue;
        if (i == 0)
            first = s;
        const float level = Luminance(s.radiance);
        low = std::min(low, level);
        high = std::max(high, level);
        mixed = mixed || s.material != first.material;
        sunny = sunny || s.sun != SunView::Away;
        edgeOfShadow = edgeOfShadow || s.sun != first.sun;
        if (i == 1 && (mixed || sunny || high > low * 1.08f))
            count = 4;
        if (i == 3 && (edgeOfShadow || high > low * 2.0f || (mixed && high > low * 1.2f)))
            count = 16;
    }
    const Vec3 mean = sum * (1.0f / float(count));
    const Vec3 square = mean * mean;
    return square * square;
}

} // namespace sample

SampleRadiance RenderSampleScene(int width, int height, int threads)
{
    using namespace sample;
    World world = {};
    BuildWorld(&world, threads);
    const View view = MakeView(width, height);
    const LightScreen screen = GatherScreen(world, view, threads);

    SampleRadiance out = {width, height, std::vector<float>(size_t(width) * size_t(height) * 3)};
    ForEachRow(height, threads,
               [&](int y)
               {
                   float* row = &out.light[size_t(y) * size_t(width) * 3];
                   for (int x = 0; x < width; x++)
                   {
                       const Vec3 c = Resolve(world, view, screen, x, y);
                       row[x * 3] = c.z;
                       row[x * 3 + 1] = c.y;
                       row[x * 3 + 2] = c.x;
                   }
               });
    return out;
}
