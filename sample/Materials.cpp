#include "sample/Materials.h"

#include <algorithm>

namespace sample
{

// How much of a line of that width shows when a picture element is that wide.
static float Line(float distance, float halfWidth, float footprint)
{
    const float soft = footprint * 0.5f + halfWidth * 0.15f;
    const float edge = SmoothStep(halfWidth + soft, halfWidth - soft, distance);
    return edge * Saturate(2.2f * halfWidth / (footprint + 1e-6f));
}

// Boards and bricks, each row of them a third ahead of the one below: which one a place belongs to,
// how far above its middle, and how near to the joint around it.
struct Block
{
    uint32_t hash;
    float above, edge;
};

static Block BlockAt(float x, float y, float width, float height, uint32_t seed)
{
    const int row = FloorInt(y / height);
    const float along = x / width + float(row & 7) * 0.34f;
    const int column = FloorInt(along);
    const float dx = along - float(column) - 0.5f, dy = y / height - float(row) - 0.5f;
    const float edge = std::min((0.5f - std::fabs(dx)) * width, (0.5f - std::fabs(dy)) * height);
    return {Hash(uint32_t(row * 131 + column), seed), dy * height, edge};
}

Look Bricks(const Material& m, const SurfacePoint& p, float footprint)
{
    const Block b = BlockAt(p.position.z, p.position.y, 0.225f, 0.075f, m.seed);
    const float wobble = (Fractal(p.position * 55.0f, 3, 2, footprint * 55.0f) - 0.5f) * 0.006f;
    const float grain = 0.65f + 0.7f * Fractal(p.position * 28.0f, 5, 3, footprint * 28.0f);
    const Vec3 burnt = b.hash % 9 ? Mix({0.7f, 0.7f, 0.7f}, Vec3{1.25f, 1.15f, 1.1f}, Unit(b.hash))
                                  : Vec3{0.5f, 0.55f, 0.65f};
    // Joints lie back: those below a brick are in its shadow.
    const Vec3 joint = Vec3{0.34f, 0.30f, 0.25f} * (b.above < -0.03f ? 0.35f : 1.0f);
    const float share = Line(b.edge + wobble, 0.0055f, footprint);
    return {Mix(m.color * burnt * grain, joint, share), 0.0f, 0.0f};
}

Look Wood(const Material& m, const SurfacePoint& p, float footprint)
{
    const Vec3 at = p.position, turned[3] = {{at.y, at.z, at.x}, {at.z, at.x, at.y}, at};
    const Vec3 q = turned[m.seed % 3]; // the grain is along q.z
    const float shift = float(m.seed % 17);
    const float grain = Fractal({q.x * 70, q.y * 70, q.z * 3 + shift}, m.seed, 3, footprint * 60);
    const float bend = Fractal({q.x * 4, q.y * 4, q.z * 0.8f + shift}, m.seed + 5, 2, 0.0f);
    const float ring = Fract(bend * 8.0f + q.x * 9.0f + q.y * 5.0f);
    const float tone = 0.55f + 0.55f * grain + 0.5f * ring * SmoothStep(1.0f, 0.8f, ring);
    return {m.color * tone, 0.045f * m.gloss, 0.0f};
}

Look Planks(const Material& m, const SurfacePoint& p, float footprint)
{
    const Block b = BlockAt(p.position.z, p.position.x, 1.7f, 0.145f, m.seed);
    const Vec3 color = m.color * (0.75f + 0.5f * Unit(b.hash));
    Look look = Wood({m.pattern, color, m.gloss, b.hash / 3 * 3 + 2}, p, footprint);
    const float wood = 1.0f - Line(b.edge, 0.0016f, footprint);
    look.color = Mix(m.color * 0.12f, look.color, wood);
    look.shine *= wood;
    return look;
}

constexpr float kRugLength = 2.3f, kRugWidth = 1.64f;

// Which wool a carpet has so far from its corner: bands of stepped diamonds between borders.
static int WoolAt(float u, float v)
{
    const float eu = std::min(u, kRugLength - u), ev = std::min(v, kRugWidth - v);
    const float edge = std::min(eu, ev);
    if (edge < 0.05f)
        return 1;
    if (edge < 0.075f || (edge >= 0.20f && edge < 0.225f))
        return 2;
    if (edge < 0.20f) // running triangles
    {
        const float run = Fract((eu < ev ? v : u) / 0.125f), rise = (edge - 0.075f) / 0.125f;
        const float above = 1.0f - std::fabs(run - 0.5f) * 2.0f - rise;
        return above > 0.45f ? 3 : above > 0.0f ? 0 : 4;
    }
    const float cu = (u - 0.225f) / (kRugLength - 0.45f) * 3.0f;
    const float cv = (v - 0.225f) / (kRugWidth - 0.45f) * 2.0f;
    const int ring = int((std::fabs(Fract(cu) - 0.5f) + std::fabs(Fract(cv) - 0.5f)) * 12.0f);
    static const int kRings[2][6] = {{2, 3, 1, 1, 2, 4}, {3, 0, 2, 4, 4, 2}};
    if (ring < 6)
        return kRings[(int(cu) + int(cv)) & 1][ring];
    return (int(cu * 12) + int(cv * 12)) % 5 ? 0 : 5;
}

Look Rug(const Material&, const SurfacePoint& p, float footprint)
{
    static const Vec3 kWool[] = {{0.30f, 0.032f, 0.025f}, {0.022f, 0.04f, 0.10f},
                                 {0.50f, 0.43f, 0.30f},   {0.40f, 0.20f, 0.04f},
                                 {0.03f, 0.10f, 0.09f},   {0.10f, 0.02f, 0.02f}};
    const auto knot = [](float at) { return (float(FloorInt(at * 80.0f)) + 0.5f) / 80.0f; };
    const int wool = WoolAt(knot(p.u * kRugLength), knot(p.v * kRugWidth));
    const float wear = Fractal({p.u * 11.0f, p.v * 50.0f, 1}, 23, 4, footprint * 30.0f);
    return {kWool[wool] * (0.775f + 0.45f * wear), 0.0f, 0.0f};
}

Look BookSpine(const Material& m, const SurfacePoint& p, float footprint)
{
    Look look = Cloudy<50, 90>(m, p, footprint);
    if (p.normal.y > 0.7f && m.seed >= 1000) // standing books show their pages on top
        look.color = {0.45f, 0.39f, 0.29f};
    if (std::fabs(p.normal.y) > 0.7f)
        return look;
    // Bands, and lettering on every second one.
    const bool pale = Luminance(m.color) > 0.15f;
    const Vec3 ink = pale ? Vec3{0.06f, 0.04f, 0.03f} : Vec3{0.50f, 0.33f, 0.10f};
    const float band = Line(std::fabs(std::fabs(p.u - 0.32f) - 0.22f), 0.007f, footprint * 4.0f);
    const float letters = Noise({p.u * 65.0f, p.v * 5.0f, 0}, m.seed) > 0.58f ? 0.7f : 0.0f;
    const bool field = m.seed & 1 && p.u > 0.2f && p.u < 0.45f;
    look.color = Mix(look.color, ink, std::max(band, field ? letters : 0.0f));
    return look;
}

// A painting of hills in the evening.
Look Canvas(const Material& m, const SurfacePoint& p, float footprint)
{
    const float du = (p.u - 0.62f) * 1.3f, dv = p.v - 0.44f;
    const float hill = 0.56f + 0.09f * Turn(p.u * 0.9f).sin + 0.03f * Turn(p.u * 2.7f).cos;
    Vec3 c = Mix(m.color, {0.75f, 0.36f, 0.14f}, SmoothStep(0.0f, 0.6f, p.v));
    if (du * du + dv * dv < 0.010f)
        c = {0.85f, 0.62f, 0.30f};
    if (p.v > hill)
        c = Mix(Vec3{0.06f, 0.09f, 0.14f}, {0.18f, 0.12f, 0.11f}, (p.v - hill) * 3.0f);
    const float brush = Fractal({p.u * 26.0f, p.v * 90.0f, 0}, m.seed, 3, footprint * 120.0f);
    return {c * (0.65f + 0.7f * brush), 0.0f, 0.0f};
}

Look Petal(const Material& m, const SurfacePoint& p, float)
{
    const float veins = Fractal({p.u * 18.0f, p.v * 2.0f, 0}, m.seed, 3, 0.1f);
    return {m.color * (0.7f + 0.6f * veins), 0.045f * m.gloss, 0.0f};
}

Look Striped(const Material& m, const SurfacePoint& p, float)
{
    const float off = std::fabs(p.v - 0.5f); // from the equator
    const bool stripe = off < 0.05f || (off > 0.08f && off < 0.095f) || off > 0.34f;
    return {stripe ? Vec3{0.62f, 0.57f, 0.46f} : m.color, 0.045f * m.gloss, 0.0f};
}

Look Lampshade(const Material& m, const SurfacePoint& p, float)
{
    const float d = (p.v - 0.45f) * 1.5f; // from the height of the bulb
    const float ribs = 0.9f + 0.1f * Noise({p.u * 160.0f, p.v * 3.0f, 0}, 5);
    return {m.color, 0.0f, 1.7f * ribs / (1.0f + 3.2f * d * d)};
}

} // namespace sample
