#include "sample/Light.h"

#include "base/ParallelRows.h"
#include "sample/Landscape.h"
#include "sample/Room.h"

#include <algorithm>

namespace sample
{

constexpr float kPi = 3.14159265f;
static const Vec3 kToSun = Normalize(Vec3{0.46f, 0.72f, 1.0f});
static const Vec3 kSunIrradiance = {66.0f, 58.0f, 46.0f};
static const Vec3 kBlindRadiance = {0.42f, 0.40f, 0.36f};
static const Vec3 kBulbIntensity = {0.62f, 0.36f, 0.15f};
static const Vec3 kShadeTint = {0.16f, 0.10f, 0.045f}; // what the shade lets through
static const Vec3 kShadeGlow = {1.0f, 0.62f, 0.28f};

static const Vec3 kRoomSize = {kRoomRight - kRoomLeft, kRoomTop, kRoomFar - kRoomNear};
static const Vec3 kRoomCorner = {kRoomLeft, 0.0f, kRoomNear};
constexpr int kGrid[3] = {16, 9, 20};

Vec3 SunLight(const World& world, Vec3 position, Vec3 normal, Spot spot, bool* inBeam)
{
    const CosSin around = Turn(spot.turn);
    const Vec3 off = {around.cos, around.sin, 0.0f};
    const Vec3 dir = Normalize(kToSun + off * (0.0047f * spot.radius));
    const float distance = (kWindowOutside - position.z) / dir.z, margin = 0.05f;
    const Vec3 through = position + dir * distance;
    const float facing = Dot(normal, kToSun);
    *inBeam = facing > 0.0f && through.x > kWindowLeft - margin &&
              through.x < kWindowRight + margin && through.y > kWindowBottom - margin &&
              through.y < kWindowTop + margin;
    if (!*inBeam || Blocked(world.tree, {position + normal * 1e-4f, dir}, distance))
        return {0, 0, 0};
    return kSunIrradiance * facing;
}

// From `count` of the lights, each with the say of those that are left out.
static Vec3 FromLights(const World& w, Vec3 from, Vec3 normal, int count, float start)
{
    const float stride = float(w.lights.size()) / float(count);
    Vec3 sum = {0, 0, 0};
    for (int i = 0; i < count; i++)
    {
        const AreaLight& light = w.lights[size_t((float(i) + start) * stride)];
        const Vec3 line = light.position - from;
        const float square = Dot(line, line), distance = std::sqrt(square);
        const Vec3 dir = line * (1.0f / distance);
        const float facing = Dot(dir, normal), emits = -Dot(dir, light.normal);
        if (facing <= 0.0f || emits <= 0.0f || Blocked(w.tree, {from, dir}, distance - 2e-3f))
            continue;
        // The area in the divisor bounds the solid angle of a light that is very near.
        const float area = light.area * stride;
        const Vec3 radiance = light.radiance.x < 0.0f ? LandscapeLight(dir) : light.radiance;
        sum += radiance * (facing * emits * area / (square + area / kPi));
    }
    return sum;
}

static Vec3 FromLamp(const World& w, Vec3 from, Vec3 normal)
{
    const Vec3 line = kLampBulb - from;
    const float square = Dot(line, line), distance = std::sqrt(square);
    const Vec3 dir = line * (1.0f / distance);
    const float facing = Dot(dir, normal);
    // The way ends before the shade, which is accounted for here: where the light passes its
    // height decides whether it goes through the cloth.
    if (facing <= 0.0f || Blocked(w.tree, {from, dir}, distance - 0.26f))
        return {0, 0, 0};
    const float run = std::sqrt(dir.x * dir.x + dir.z * dir.z) + 1e-6f;
    const float pass = kLampBulb.y - dir.y / run * kShadeRadius;
    const float cloth = SmoothStep(kShadeBottom - 0.03f, kShadeBottom + 0.03f, pass) *
                        SmoothStep(kShadeTop + 0.03f, kShadeTop - 0.03f, pass);
    return kBulbIntensity * Mix({1, 1, 1}, kShadeTint, cloth) * (facing / (square + 0.02f));
}

// Coarse irradiance anywhere in the room.
static Vec3 GridLight(const World& w, Vec3 position, Vec3 normal)
{
    float at[3], share[3];
    size_t way[3];
    for (int axis = 0; axis < 3; axis++)
    {
        const float place = (position[axis] - kRoomCorner[axis]) / kRoomSize[axis];
        at[axis] = std::clamp(place * float(kGrid[axis]) - 0.5f, 0.0f, float(kGrid[axis]) - 1.001f);
        share[axis] = normal[axis] * normal[axis];
        way[axis] = size_t(axis * 2 + (normal[axis] > 0.0f ? 0 : 1));
    }
    Vec3 sum = {0, 0, 0};
    for (int corner = 0; corner < 8; corner++)
    {
        const int x = int(at[0]) + (corner & 1), y = int(at[1]) + (corner >> 1 & 1),
                  z = int(at[2]) + (corner >> 2);
        const float weight = (1.0f - std::fabs(at[0] - float(x))) *
                             (1.0f - std::fabs(at[1] - float(y))) *
                             (1.0f - std::fabs(at[2] - float(z)));
        const SixWays& point = w.grid[size_t((z * kGrid[1] + y) * kGrid[0] + x)];
        for (int axis = 0; axis < 3; axis++)
            sum += point[way[axis]] * (share[axis] * weight);
    }
    return sum;
}

// From the surfaces around the point. What the sun lights directly and the lamp's shade count with
// the lights.
static Vec3 FromRoom(const World& w, Vec3 from, Vec3 normal, uint32_t seed)
{
    constexpr int kRays = 10;
    Vec3 sum = {0, 0, 0};
    for (int i = 0; i < kRays; i++)
    {
        // Points that fill a sphere evenly (Roberts' R2 sequence); seen from the foot of the
        // normal, they lie where a surface takes its light from.
        const CosSin around = Turn(Fract(Unit(Hash(seed, 1)) + 0.7548777f * float(i)));
        const float up = 2.0f * Fract(Unit(Hash(seed, 2)) + 0.5698403f * float(i)) - 1.0f;
        const float out = std::sqrt(1.0f - up * up);
        const Vec3 ball = {out * around.cos, up, out * around.sin};
        const SurfacePoint s = Trace(w.tree, {from, Normalize(normal * 1.001f + ball)});
        if (s.material >= 0)
            sum += w.materials[size_t(s.material)].color * GridLight(w, s.position, s.normal);
    }
    return sum * (1.0f / kRays);
}

Vec3 GatherLight(const World& w, Vec3 position, Vec3 normal, uint32_t seed)
{
    // Close to the window a few points of it would not do it justice.
    const bool close = position.z > kRoomFar - 0.45f && position.x > kWindowLeft - 0.7f;
    const Vec3 from = position + normal * 1e-4f;
    return FromLights(w, from, normal, close ? 60 : 15, Unit(Hash(seed, 3))) +
           FromLamp(w, from, normal) + FromRoom(w, from, normal, seed);
}

Vec3 Radiance(const Look& look, Vec3 irradiance)
{
    return look.color * irradiance * (1.0f / kPi) + kShadeGlow * look.glow;
}

Vec3 ReflectedRadiance(const World& w, const Ray& ray, float footprint)
{
    const SurfacePoint s = Trace(w.tree, ray);
    if (s.material < 0)
        return Landscape(ray.dir, footprint);
    const Material& m = w.materials[size_t(s.material)];
    bool unused;
    const Vec3 sun = SunLight(w, s.position, s.normal, {}, &unused);
    return Radiance(m.pattern(m, s, footprint * s.distance + 0.002f),
                    GridLight(w, s.position, s.normal) + sun);
}

// Cuts a rectangle into lights.
static void AddLights(World* w, Vec3 corner, Vec3 a, Vec3 b, Vec3 normal, Vec3 radiance,
                      uint32_t across, uint32_t along)
{
    const float area = Length(a) * Length(b) / float(across * along);
    for (uint32_t i = 0; i < across * along; i++)
    {
        const float u = (float(i % across) + Unit(Hash(i, 31))) / float(across);
        const float v = (float(i / across) + Unit(Hash(i, 32))) / float(along);
        w->lights.push_back({corner + a * u + b * v, normal, radiance, area});
    }
}

// Follows the sun through each part of the window.
static void AddSunlit(World* w)
{
    const std::vector<AreaLight> window = w->lights;
    for (const AreaLight& part : window)
    {
        const SurfacePoint s = Trace(w->tree, {part.position, -kToSun});
        if (s.material < 0)
            continue;
        const float facing = Dot(s.normal, kToSun);
        const Vec3 color = w->materials[size_t(s.material)].color;
        if (facing > 0.02f)
            w->lights.push_back({s.position + s.normal * 0.02f, s.normal,
                                 color * kSunIrradiance * (facing / kPi),
                                 part.area * kToSun.z / facing});
    }
}

static SixWays GridPoint(const World& w, int at, uint32_t round)
{
    const float x = (float(at % kGrid[0]) + 0.5f) / float(kGrid[0]);
    const float y = (float(at / kGrid[0] % kGrid[1]) + 0.5f) / float(kGrid[1]);
    const float z = (float(at / kGrid[0] / kGrid[1]) + 0.5f) / float(kGrid[2]);
    static const Vec3 kWays[6] = {{1, 0, 0},  {-1, 0, 0}, {0, 1, 0},
                                  {0, -1, 0}, {0, 0, 1},  {0, 0, -1}};
    const Vec3 place = kRoomCorner + kRoomSize * Vec3{x, y, z};
    SixWays found;
    for (uint32_t way = 0; way < 6; way++)
        found[way] = GatherLight(w, place, kWays[way], Hash(uint32_t(at) * 6 + way, round));
    return found;
}

World BuildWorld()
{
    Geometry geometry;
    BuildRoom(&geometry);
    World w = {geometry.materials, BuildTree(geometry.triangles), {}, {}};
    AddLights(&w, {kWindowLeft, kWindowBottom, kWindowOutside - 0.01f},
              {kWindowRight - kWindowLeft, 0, 0}, {0, kWindowTop - kWindowBottom, 0}, {0, 0, -1},
              {-1, 0, 0}, 14, 10);
    AddSunlit(&w);
    AddLights(&w, {kRoomLeft + 0.01f, kBlindBottom, kBlindNear}, {0, 0, kBlindFar - kBlindNear},
              {0, kBlindTop - kBlindBottom, 0}, {1, 0, 0}, kBlindRadiance, 7, 5);
    w.grid.resize(size_t(kGrid[0] * kGrid[1] * kGrid[2]));
    // Each round adds one more reflection; what a fourth would add is below a tenth.
    for (uint32_t round = 0; round < 3; round++)
    {
        std::vector<SixWays> found(w.grid.size());
        VcParallelRows(int(found.size()), 1 << 20,
                       [&](int first, int end)
                       {
                           for (int i = first; i < end; i++)
                               found[size_t(i)] = GridPoint(w, i, round);
                       });
        w.grid.swap(found);
    }
    return w;
}

} // namespace sample
