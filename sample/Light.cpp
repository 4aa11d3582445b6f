#include "sample/Light.h"

#include "sample/Room.h"

#include <atomic>
#include <thread>

namespace sample
{

constexpr float kPi = 3.14159265f;
constexpr float kFar = 100.0f;
static const Vec3 kToSun = Normalize({0.46f, 0.72f, 1.0f});
static const Vec3 kSunIrradiance = {66.0f, 58.0f, 46.0f};
static const Vec3 kBlindRadiance = {0.42f, 0.40f, 0.36f};
static const Vec3 kBulbIntensity = {0.62f, 0.36f, 0.15f};
static const Vec3 kShadeTint = {0.16f, 0.10f, 0.045f}; // what the shade lets through

void ForEachRow(int rows, int threads, const std::function<void(int)>& work)
{
    std::atomic<int> next{0};
    const auto run = [&]
    {
        for (int row = next++; row < rows; row = next++)
            work(row);
    };
    std::vector<std::thread> others;
    for (int i = 1; i < threads; i++)
        others.emplace_back(run);
    run();
    for (std::thread& t : others)
        t.join();
}

// Numbers that fill the unit square evenly, shifted by a random offset (Roberts' R2 sequence).
struct Square
{
    float x, y;
};

static Square Spread(uint32_t seed, int i)
{
    return {Fract(Unit(Hash(seed, 1)) + 0.7548777f * float(i)),
            Fract(Unit(Hash(seed, 2)) + 0.5698403f * float(i))};
}

static Vec3 Above(Vec3 position, Vec3 normal)
{
    return position + normal * 1e-4f;
}

Vec3 SunLight(const World& world, Vec3 position, Vec3 normal, Disc spot, SunView* view)
{
    SunView unused;
    SunView& found = view ? *view : unused;
    found = SunView::Away;
    const float facing = Dot(normal, kToSun);
    if (facing <= 0.0f)
        return {0, 0, 0};
    Vec3 side, up;
    MakeBasis(kToSun, &side, &up);
    const CosSin around = Turn(spot.turn);
    const float off = 0.0047f * spot.radius;
    const Vec3 dir = Normalize(kToSun + (side * around.cos + up * around.sin) * off);
    const float distance = (kWindowOutside - position.z) / dir.z;
    const Vec3 through = position + dir * distance;
    // A little beyond the window counts as hidden, since the rest of the disc may be seen.
    const float margin = 0.05f;
    if (through.x < kWindowLeft - margin || through.x > kWindowRight + margin ||
        through.y < kWindowBottom - margin || through.y > kWindowTop + margin)
        return {0, 0, 0};
    const bool blocked = Blocked(world.tree, {Above(position, normal), dir}, distance);
    found = blocked ? SunView::Hidden : SunView::Seen;
    return blocked ? Vec3{0, 0, 0} : kSunIrradiance * facing;
}

// The room seen as a set of lights from one point. A null normal takes light from all around.
// `take(dir, light)` gets the direction and the radiance times the solid angle.
template <typename Take>
static void SampleLights(const World& w, Vec3 position, Vec3 normal, uint32_t seed,
                         const LightSamples& count, Take take)
{
    const bool oneSided = Dot(normal, normal) > 0.0f;
    const Vec3 from = Above(position, normal);
    const auto arrive = [&](Vec3 to, Vec3 facing, float area, auto radiance)
    {
        const Vec3 line = to - from;
        const float square = Dot(line, line), distance = std::sqrt(square);
        const Vec3 dir = line * (1.0f / distance);
        const float emits = -Dot(dir, facing);
        if (emits <= 0.0f || (oneSided && Dot(dir, normal) <= 0.0f) ||
            Blocked(w.tree, {from, dir}, distance - 2e-3f))
            return;
        // The area in the divisor bounds the solid angle of a light that is very near.
        take(dir, radiance(dir) * (emits * area / (square + area / kPi)));
    };

    // Close to the window a few points of it would not do it justice.
    const bool close = position.z > kRoomFar - 0.45f && position.x > kWindowLeft - 0.7f;
    const int windowPoints = count.window * (close ? 4 : 1);
    const int patchPoints = count.patches * (close ? 3 : 1);
    const float wide = kWindowRight - kWindowLeft, high = kWindowTop - kWindowBottom;
    for (int i = 0; i < windowPoints; i++)
    {
        const Square s = Spread(Hash(seed, 11), i);
        arrive({kWindowLeft + s.x * wide, kWindowBottom + s.y * high, kWindowOutside - 0.01f},
               {0, 0, -1}, wide * high / float(windowPoints), LandscapeLight);
    }
    for (int i = 0; i < count.blind; i++)
    {
        const Square s = Spread(Hash(seed, 12), i);
        arrive(
            {kRoomLeft + 0.01f, Mix(kBlindBottom, kBlindTop, s.y), Mix(kBlindNear, kBlindFar, s.x)},
            {1, 0, 0}, (kBlindTop - kBlindBottom) * (kBlindFar - kBlindNear) / float(count.blind),
            [](Vec3) { return kBlindRadiance; });
    }
    const int patches = int(w.patches.size());
    const float start = Unit(Hash(seed, 13));
    for (int i = 0; i < patchPoints && patches > 0; i++)
    {
        const float stride = float(patches) / float(patchPoints);
        const PatchLight& p = w.patches[size_t((float(i) + start) * stride) % size_t(patches)];
        arrive(p.position + p.normal * 0.02f, p.normal, p.area,
               [&](Vec3) { return p.exitance * (stride / kPi); });
    }

    const Vec3 line = kLampBulb - from;
    const float square = Dot(line, line), distance = std::sqrt(square);
    const Vec3 dir = line * (1.0f / distance);
    if (oneSided && Dot(dir, normal) <= 0.0f)
        return;
    // Where the light passes the height of the shade decides whether it goes through the cloth.
    const float run = std::sqrt(dir.x * dir.x + dir.z * dir.z);
    const float pass = run > 1e-3f ? kLampBulb.y - dir.y / run * kShadeRadius : 9.0f;
    const float cloth = SmoothStep(kShadeBottom - 0.03f, kShadeBottom + 0.03f, pass) *
                        SmoothStep(kShadeTop + 0.03f, kShadeTop - 0.03f, pass);
    if (!Blocked(w.tree, {from, dir}, distance - 0.03f))
        take(dir,
             kBulbIntensity * Mix(Vec3{1, 1, 1}, kShadeTint, cloth) * (1.0f / (square + 0.02f)));
}

static Vec3 MapLookup(const RoomMap& map, float u, float v)
{
    const float x = Clamp(u * float(map.across) - 0.5f, 0.0f, float(map.across) - 1.001f);
    const float y = Clamp(v * float(map.along) - 0.5f, 0.0f, float(map.along) - 1.001f);
    const int ix = int(x), iy = int(y);
    const Vec3* row = &map.irradiance[size_t(iy * map.across + ix)];
    return Mix(Mix(row[0], row[1], x - float(ix)),
               Mix(row[map.across], row[map.across + 1], x - float(ix)), y - float(iy));
}

static Vec3 InRoom(Vec3 p)
{
    return {(p.x - kRoomLeft) / (kRoomRight - kRoomLeft), p.y / kRoomTop,
            (p.z - kRoomNear) / (kRoomFar - kRoomNear)};
}

static Vec3 GridLookup(const World& w, Vec3 position, Vec3 normal)
{
    const Vec3 p = InRoom(position);
    const float x = Clamp(p.x * float(w.gridX) - 0.5f, 0.0f, float(w.gridX) - 1.001f);
    const float y = Clamp(p.y * float(w.gridY) - 0.5f, 0.0f, float(w.gridY) - 1.001f);
    const float z = Clamp(p.z * float(w.gridZ) - 0.5f, 0.0f, float(w.gridZ) - 1.001f);
    const int ix = int(x), iy = int(y), iz = int(z);
    const size_t wayX = normal.x > 0 ? 0 : 1, wayY = normal.y > 0 ? 2 : 3,
                 wayZ = normal.z > 0 ? 4 : 5;
    const float sx = normal.x * normal.x, sy = normal.y * normal.y, sz = normal.z * normal.z;
    Vec3 sum = {0, 0, 0};
    for (int corner = 0; corner < 8; corner++)
    {
        const int cx = corner & 1, cy = corner >> 1 & 1, cz = corner >> 2;
        const float weight = (cx ? x - float(ix) : 1.0f - x + float(ix)) *
                             (cy ? y - float(iy) : 1.0f - y + float(iy)) *
                             (cz ? z - float(iz) : 1.0f - z + float(iz));
        const SixWays& g = w.grid[size_t(((iz + cz) * w.gridY + iy + cy) * w.gridX + ix + cx)];
        sum += (g[wayX] * sx + g[wayY] * sy + g[wayZ] * sz) * weight;
    }
    return sum;
}

// Coarse irradiance of any surface, from the maps or the grid.
static Vec3 CoarseLight(const World& w, const SurfacePoint& s)
{
    const Vec3 p = InRoom(s.position);
    switch (s.material)
    {
    case kFloor:
    case kCeiling: return MapLookup(w.maps[s.material], p.x, p.z);
    case kLeftWall:
    case kRightWall: return MapLookup(w.maps[s.material], p.z, p.y);
    case kFarWall:
    case kNearWall: return MapLookup(w.maps[s.material], p.x, p.y);
    default: return GridLookup(w, s.position, s.normal);
    }
}

// Light reflected by what the ray hits. What the sun lights directly is left to the patches.
static Vec3 BouncedRadiance(const World& w, const Ray& ray)
{
    const Hit hit = Trace(w.tree, ray, kFar);
    if (hit.shape < 0)
        return {0, 0, 0};
    const SurfacePoint s = PointAt(w.geometry, ray, hit);
    const Material& m = w.geometry.materials[size_t(s.material)];
    if (m.surface == Surface::LampShade)
        return {0, 0, 0}; // sampled with the bulb
    return m.color * CoarseLight(w, s) * (1.0f / kPi);
}

Light GatherLight(const World& w, Vec3 position, Vec3 normal, uint32_t seed,
                  const LightSamples& count)
{
    Light light = {{0, 0, 0}, {0, 0, 0}};
    const auto take = [&](Vec3 dir, Vec3 amount)
    {
        light.irradiance += amount * Dot(dir, normal);
        light.direction += dir * Luminance(amount);
    };
    SampleLights(w, position, normal, seed, count, take);

    Vec3 side, up;
    MakeBasis(normal, &side, &up);
    for (int i = 0; i < count.bounce; i++)
    {
        const Square s = Spread(Hash(seed, 21), i);
        const CosSin around = Turn(s.x);
        const float off = std::sqrt(s.y), lift = std::sqrt(1.0f - s.y);
        const Vec3 dir = Normalize((side * around.cos + up * around.sin) * off + normal * lift);
        const Vec3 radiance = BouncedRadiance(w, {Above(position, normal), dir});
        const float cosine = lift > 0.15f ? lift : 0.15f;
        take(dir, radiance * (kPi / cosine / float(count.bounce)));
    }
    return light;
}

Vec3 ReflectedRadiance(const World& w, const Ray& ray, float footprint)
{
    const Hit hit = Trace(w.tree, ray, kFar);
    if (hit.shape < 0)
        return Landscape(ray.dir, footprint);
    const SurfacePoint s = PointAt(w.geometry, ray, hit);
    if (s.material == kLeftWall && s.position.z > kBlindNear && s.position.z < kBlindFar &&
        s.position.y > kBlindBottom && s.position.y < kBlindTop)
        return kBlindRadiance;
    const Look look =
        LookAt(w.geometry.materials[size_t(s.material)], s, footprint * hit.distance + 0.002f);
    const Vec3 sun = SunLight(w, s.position, s.normal, {0.0f, 0.0f});
    return look.color * (CoarseLight(w, s) + sun) * (1.0f / kPi) + look.glow;
}

static void FindPatches(World* w)
{
    constexpr int kAcross = 14, kUp = 10;
    const float wide = (kWindowRight - kWindowLeft) / kAcross;
    const float high = (kWindowTop - kWindowBottom) / kUp;
    for (int i = 0; i < kAcross * kUp; i++)
    {
        const float x = kWindowLeft + wide * (float(i % kAcross) + Unit(Hash(uint32_t(i), 31)));
        const float y = kWindowBottom + high * (float(i / kAcross) + Unit(Hash(uint32_t(i), 32)));
        const Ray ray = {{x, y, kWindowOutside}, -kToSun};
        const Hit hit = Trace(w->tree, ray, kFar);
        if (hit.shape < 0)
            continue;
        const SurfacePoint s = PointAt(w->geometry, ray, hit);
        const float facing = Dot(s.facing, kToSun);
        if (facing < 0.02f)
            continue;
        const Vec3 color = w->geometry.materials[size_t(s.material)].color;
        w->patches.push_back({s.position, s.facing, color * kSunIrradiance * facing,
                              wide * high * kToSun.z / facing});
    }
}

// Position of a map's texel on its plane, just inside the room.
static Vec3 TexelPosition(int plane, float u, float v)
{
    const float x = Mix(kRoomLeft, kRoomRight, u), in = 0.012f;
    const float z = Mix(kRoomNear, kRoomFar, plane == kFloor || plane == kCeiling ? v : u);
    switch (plane)
    {
    case kFloor: return {x, in, z};
    case kCeiling: return {x, kRoomTop - in, z};
    case kLeftWall: return {kRoomLeft + in, v * kRoomTop, z};
    case kRightWall: return {kRoomRight - in, v * kRoomTop, z};
    case kFarWall: return {x, v * kRoomTop, kRoomFar - in};
    default: return {x, v * kRoomTop, kRoomNear + in};
    }
}

static const Vec3 kInward[kRoomPlanes] = {{0, 1, 0},  {0, -1, 0}, {1, 0, 0},
                                          {-1, 0, 0}, {0, 0, -1}, {0, 0, 1}};

static void LightMaps(World* w, int round, int threads)
{
    for (int plane = 0; plane < kRoomPlanes; plane++)
    {
        RoomMap& map = w->maps[plane];
        std::vector<Vec3> found(map.irradiance.size());
        ForEachRow(
            map.along, threads,
            [&](int row)
            {
                for (int i = 0; i < map.across; i++)
                {
                    const size_t at = size_t(row * map.across + i);
                    const Vec3 p = TexelPosition(plane, (float(i) + 0.5f) / float(map.across),
                                                 (float(row) + 0.5f) / float(map.along));
                    const uint32_t seed =
                        Hash(uint32_t(plane * 100000) + uint32_t(at), uint32_t(round));
                    found[at] = GatherLight(*w, p, kInward[plane], seed, {6, 8, 2, 16}).irradiance;
                }
            });
        map.irradiance.swap(found);
    }
}

static SixWays GridPoint(const World& w, Vec3 p, uint32_t seed)
{
    SixWays ways = {};
    const auto take = [&](Vec3 dir, Vec3 amount)
    {
        const float along[3] = {dir.x, dir.y, dir.z};
        for (size_t axis = 0; axis < 3; axis++)
            ways[axis * 2 + (along[axis] < 0.0f ? 1 : 0)] += amount * std::fabs(along[axis]);
    };
    SampleLights(w, p, {0, 0, 0}, seed, {6, 8, 2, 0}, take);
    constexpr int kRays = 32;
    for (int i = 0; i < kRays; i++)
    {
        const Square s = Spread(Hash(seed, 41), i);
        const CosSin around = Turn(s.x);
        const float y = 1.0f - 2.0f * s.y, run = std::sqrt(1.0f - y * y);
        const Vec3 dir = {run * around.cos, y, run * around.sin};
        take(dir, BouncedRadiance(w, {p, dir}) * (4.0f * kPi / kRays));
    }
    return ways;
}

static void LightGrid(World* w, int round, int threads)
{
    std::vector<SixWays> found(w->grid.size());
    ForEachRow(
        w->gridZ, threads,
        [&](int z)
        {
            for (int i = 0; i < w->gridX * w->gridY; i++)
            {
                const Vec3 p = {
                    Mix(kRoomLeft, kRoomRight, (float(i % w->gridX) + 0.5f) / float(w->gridX)),
                    kRoomTop * (float(i / w->gridX) + 0.5f) / float(w->gridY),
                    Mix(kRoomNear, kRoomFar, (float(z) + 0.5f) / float(w->gridZ))};
                const size_t at = size_t(z * w->gridX * w->gridY + i);
                found[at] = GridPoint(*w, p, Hash(uint32_t(at), uint32_t(round) + 500));
            }
        });
    w->grid.swap(found);
}

void BuildWorld(World* w, int threads)
{
    BuildRoom(&w->geometry);
    BuildTree(&w->tree, w->geometry);
    FindPatches(w);

    const float texel = 0.125f;
    const int x = int((kRoomRight - kRoomLeft) / texel), y = int(kRoomTop / texel),
              z = int((kRoomFar - kRoomNear) / texel);
    const int sizes[kRoomPlanes][2] = {{x, z}, {x, z}, {z, y}, {z, y}, {x, y}, {x, y}};
    for (int plane = 0; plane < kRoomPlanes; plane++)
    {
        const int across = sizes[plane][0], along = sizes[plane][1];
        w->maps[plane] = {across, along, std::vector<Vec3>(size_t(across * along), Vec3{0, 0, 0})};
    }
    w->gridX = 16, w->gridY = 9, w->gridZ = 20;
    w->grid.assign(size_t(w->gridX * w->gridY * w->gridZ), SixWays{});

    // Each round adds one more reflection; what a fourth would add is below a tenth.
    for (int round = 0; round < 3; round++)
    {
        LightMaps(w, round, threads);
        LightGrid(w, round, threads);
    }
}

} // namespace sample
