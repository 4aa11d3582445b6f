#include "sample/Materials.h"

#include "sample/Room.h"

namespace sample
{

// How much of a line of that width shows when a picture element is that wide.
static float Line(float distance, float halfWidth, float footprint)
{
    const float soft = footprint * 0.5f + halfWidth * 0.15f;
    const float edge = SmoothStep(halfWidth + soft, halfWidth - soft, distance);
    return edge * Saturate(2.2f * halfWidth / (footprint + 1e-6f));
}

static Vec3 Tilt(Vec3 normal, Vec3 by)
{
    return Normalize(normal + by);
}

// Three independent noises, for tilting normals.
static Vec3 Rough(Vec3 p, uint32_t seed, float footprint)
{
    const float visible = SmoothStep(0.9f, 0.3f, footprint);
    if (visible <= 0.0f)
        return {0, 0, 0};
    return Vec3{Noise(p, seed) - 0.5f, Noise(p, seed + 40) - 0.5f, Noise(p, seed + 80) - 0.5f} *
           visible;
}

static void Bricks(const Material& m, const SurfacePoint& p, float footprint, Look* look)
{
    const float high = 0.075f, wide = 0.225f;
    const float row = Floor(p.position.y / high);
    const float along = p.position.z / wide + (int(row) & 1 ? 0.5f : 0.0f);
    const float column = Floor(along);
    const uint32_t h = Hash(uint32_t(int(row) * 131 + int(column)), m.seed);
    const Vec3 at = p.position * 55.0f;
    const float wobble = (Fractal(at, 3, 2, footprint * 55.0f) - 0.5f) * 0.006f;
    const float dy = (0.5f - std::fabs(p.position.y / high - row - 0.5f)) * high + wobble;
    const float dz = (0.5f - std::fabs(along - column - 0.5f)) * wide + wobble;
    const float edge = dy < dz ? dy : dz;
    const float mortar = Line(edge, 0.0055f, footprint);

    const float burn = Unit(h);
    Vec3 brick = Mix(m.color * 0.7f, m.color * Vec3{1.25f, 1.15f, 1.1f}, burn);
    if (h % 9 == 0)
        brick = brick * Vec3{0.55f, 0.6f, 0.7f};
    brick = brick * (0.65f + 0.7f * Fractal(p.position * 28.0f, 5, 3, footprint * 28.0f));
    const Vec3 joint = {0.34f, 0.30f, 0.25f};
    look->color = Mix(brick, joint * (0.95f + wobble * 60.0f), mortar);

    // The brick's rim falls back into the joint.
    const float rim = edge < 0.012f && edge > 0.004f && footprint < 0.012f ? 0.8f : 0.0f;
    Vec3 tilt = Rough(p.position * 90.0f, 7, footprint * 90.0f) * 0.7f;
    if (dy < dz)
        tilt.y += rim * (p.position.y / high - row > 0.5f ? 1.0f : -1.0f);
    else
        tilt.z += rim * (along - column > 0.5f ? 1.0f : -1.0f);
    look->normal = Tilt(p.normal, tilt);
}

static void Planks(const Material& m, const SurfacePoint& p, float footprint, Look* look)
{
    const float wide = 0.145f, length = 1.7f;
    const float across = p.position.x / wide, lane = Floor(across);
    const uint32_t laneHash = Hash(uint32_t(int(lane) + 1000), m.seed);
    const float along = p.position.z / length + Unit(laneHash), board = Floor(along);
    const uint32_t h = Hash(laneHash, uint32_t(int(board) + 50));
    const float side = (0.5f - std::fabs(across - lane - 0.5f)) * wide;
    const float end = (0.5f - std::fabs(along - board - 0.5f)) * length;
    const float gap = Line(side < end ? side : end, 0.0016f, footprint);

    const float shift = Unit(Hash(h, 1)) * 40.0f;
    const Vec3 at = {p.position.x * 42.0f + shift, shift, p.position.z * 2.4f + shift};
    const float grain = Fractal(at, 11, 4, footprint * 20.0f);
    const float rings = Fract(Fractal({at.x * 0.22f, shift, at.z * 0.35f}, 15, 2, 0.0f) * 9.0f);
    const float ring = SmoothStep(0.0f, 0.75f, rings) * SmoothStep(1.0f, 0.9f, rings);
    Vec3 wood = m.color * (0.72f + 0.56f * Unit(Hash(h, 2)));
    wood = wood * Mix(Vec3{1, 1, 1}, Vec3{1.08f, 0.96f, 0.85f}, Unit(Hash(h, 3)));
    wood = wood * (0.62f + 0.55f * grain + 0.24f * ring);
    look->color = Mix(wood, m.color * 0.12f, gap);
    // Boards never lie quite level, which breaks up reflections, and the varnish follows the grain.
    look->normal = Tilt(p.normal, Vec3{(Unit(Hash(h, 4)) - 0.5f) * 0.008f + (grain - 0.5f) * 0.03f,
                                       0, (Unit(Hash(h, 5)) - 0.5f) * 0.008f});
    look->mirror = look->mirror * (1.0f - gap) * (0.75f + 0.5f * grain);
}

// Flat-woven carpet: bands of stepped diamonds between borders.
static void Weave(const SurfacePoint& p, float footprint, Look* look)
{
    static const Vec3 kWool[] = {{0.30f, 0.032f, 0.025f}, {0.022f, 0.04f, 0.10f},
                                 {0.50f, 0.43f, 0.30f},   {0.40f, 0.20f, 0.04f},
                                 {0.03f, 0.10f, 0.09f},   {0.10f, 0.02f, 0.02f}};
    const float length = 2.3f, width = 1.64f, step = 0.0125f;
    const float u = (Floor(p.texU / step) + 0.5f) * step;
    const float v = (Floor(p.texV / step) + 0.5f) * step;
    const float eu = u < length - u ? u : length - u, ev = v < width - v ? v : width - v;
    const float edge = eu < ev ? eu : ev;

    int wool;
    if (edge < 0.05f)
        wool = 1;
    else if (edge < 0.075f)
        wool = 2;
    else if (edge < 0.20f) // running triangles
    {
        const float run = Fract((eu < ev ? v : u) / 0.125f), rise = (edge - 0.075f) / 0.125f;
        const float tooth = 1.0f - std::fabs(run - 0.5f) * 2.0f;
        wool = tooth > rise ? (tooth > rise + 0.45f ? 3 : 0) : 4;
    }
    else if (edge < 0.225f)
        wool = 2;
    else
    {
        const float cu = (u - 0.225f) / (length - 0.45f) * 3.0f,
                    cv = (v - 0.225f) / (width - 0.45f) * 2.0f;
        const float d = std::fabs(Fract(cu) - 0.5f) + std::fabs(Fract(cv) - 0.5f);
        const bool odd = (int(cu) + int(cv)) & 1;
        static const int kRings[2][7] = {{2, 3, 1, 1, 2, 4, 0}, {3, 0, 2, 4, 4, 2, 0}};
        const int ring = int(d * 2.0f * 6.0f);
        wool = ring < 6 ? kRings[odd ? 1 : 0][ring] : (int(cu * 12) + int(cv * 12)) % 5 ? 0 : 5;
    }
    const Vec3 threads = {p.texU * 420.0f, p.texV * 160.0f, 0};
    const float fibre = Fractal(threads, 21, 2, footprint * 300.0f);
    const float wear = Fractal({p.texU * 5.0f, p.texV * 30.0f, 1}, 23, 3, footprint * 30.0f);
    look->color = kWool[wool] * (0.55f + 0.45f * fibre + 0.45f * wear);
    look->normal =
        Tilt(p.normal, Rough({p.texU * 250, p.texV * 120, 2}, 24, footprint * 250) * 0.9f);
}

static void SolidWood(const Material& m, const SurfacePoint& p, float footprint, Look* look)
{
    Vec3 q = p.position; // grain runs along q.z
    if (m.seed % 3 == 0)
        q = {q.y, q.z, q.x};
    else if (m.seed % 3 == 1)
        q = {q.z, q.x, q.y};
    const float shift = float(m.seed % 17);
    const float grain = Fractal({q.x * 70, q.y * 70, q.z * 3 + shift}, m.seed, 3, footprint * 60);
    const float bend = Fractal({q.x * 4, q.y * 4, q.z * 0.8f + shift}, m.seed + 5, 2, 0.0f);
    const float ring = Fract(bend * 8.0f + q.x * 9.0f + q.y * 5.0f);
    look->color = m.color * (0.55f + 0.55f * grain + 0.5f * ring * SmoothStep(1.0f, 0.8f, ring));
    look->normal =
        Tilt(p.normal, Rough({q.x * 40, q.y * 40, q.z * 4}, 31, footprint * 40) * 0.009f);
}

static void Spine(const Material& m, const SurfacePoint& p, float footprint, Look* look)
{
    look->color = m.color * (0.75f + 0.5f * Fractal(p.position * 90.0f, m.seed, 3, footprint * 90));
    if (std::fabs(p.facing.z) < 0.7f && std::fabs(p.facing.x) < 0.7f)
    {
        if (p.facing.y > 0.7f) // cut edge or cover; standing books show their pages on top
            look->color = m.seed < 1000 ? look->color : Vec3{0.45f, 0.39f, 0.29f};
        return;
    }
    // Bands and a title field, measured from both ends of the spine.
    const Vec3 gold = {0.50f, 0.33f, 0.10f};
    const Vec3 ink = Luminance(m.color) > 0.15f ? Vec3{0.06f, 0.04f, 0.03f} : gold;
    const float at = p.texU;
    const float band = 0.012f + 0.02f * Unit(Hash(m.seed, 11));
    float mark = Line(std::fabs(at - band), 0.0016f, footprint);
    mark += Line(std::fabs(at - band - 0.007f), 0.0008f, footprint);
    mark += Line(std::fabs(at - 0.13f), 0.0016f, footprint);
    if (Hash(m.seed, 12) % 2)
    {
        const float letters = Noise({at * 260.0f, p.texV * 150.0f, 0}, m.seed);
        const bool field = at > 0.05f && at < 0.115f && p.texV > 0.006f;
        mark += field && letters > 0.58f ? 0.7f * Saturate(0.004f / (footprint + 1e-6f)) : 0.0f;
    }
    look->color = Mix(look->color, ink, Saturate(mark));
}

static void Canvas(const Material& m, const SurfacePoint& p, float footprint, Look* look)
{
    const float u = p.texU, v = p.texV;
    const float brush = Fractal({u * 26.0f, v * 90.0f, 0}, m.seed, 3, footprint * 120.0f) - 0.5f;
    Vec3 c;
    if (m.seed & 1) // a shore in the evening
    {
        c = Mix(Vec3{0.10f, 0.16f, 0.28f}, Vec3{0.75f, 0.36f, 0.14f}, SmoothStep(0.0f, 0.6f, v));
        const float du = (u - 0.62f) * 1.3f, dv = v - 0.44f;
        if (du * du + dv * dv < 0.010f)
            c = {0.85f, 0.62f, 0.30f};
        const float hill = 0.56f + 0.09f * Turn(u * 0.9f).sin + 0.03f * Turn(u * 2.7f).cos;
        if (v > hill)
            c = Mix(Vec3{0.06f, 0.09f, 0.14f}, Vec3{0.16f, 0.11f, 0.10f}, (v - hill) * 3.0f);
        if (v > 0.78f)
            c = Mix(Vec3{0.30f, 0.20f, 0.16f}, Vec3{0.08f, 0.10f, 0.16f}, (v - 0.78f) * 4.5f);
    }
    else // discs
    {
        c = {0.55f, 0.50f, 0.40f};
        const float d0 = (u - 0.42f) * (u - 0.42f) + (v - 0.40f) * (v - 0.40f) * 1.6f;
        const float d1 = (u - 0.62f) * (u - 0.62f) + (v - 0.62f) * (v - 0.62f) * 1.6f;
        if (d0 < 0.07f)
            c = {0.45f, 0.08f, 0.04f};
        if (d1 < 0.05f)
            c = d0 < 0.07f ? Vec3{0.10f, 0.03f, 0.05f} : Vec3{0.04f, 0.10f, 0.20f};
    }
    look->color = c * (1.0f + brush * 0.7f);
    look->normal = Tilt(p.normal, {0, brush * 0.2f, 0});
}

static void PaintedBall(const Material& m, const SurfacePoint& p, Look* look)
{
    // texU, texV: x and y on the unit sphere.
    const float ring = std::fabs(p.texV);
    const Vec3 cream = {0.62f, 0.57f, 0.46f};
    look->color = m.color;
    if (m.seed == 51) // a globe: land, sea, and a few circles of latitude
    {
        const float land = Fractal({p.texU * 2.3f + 5, p.texV * 2.3f, 3}, 51, 4, 0.02f);
        look->color = land > 0.53f ? Vec3{0.42f, 0.32f, 0.14f} : m.color;
        return;
    }
    if (ring < 0.16f || (ring > 0.24f && ring < 0.29f) || ring > 0.88f)
        look->color = cream;
}

static void Skin(const Material& m, const SurfacePoint& p, float footprint, Look* look)
{
    const bool red = m.color.x > 0.35f;
    const float streak = Fractal({p.texU * 40.0f, p.texV * 3.0f, 0}, m.seed, 3, footprint * 120.0f);
    const float blush = Fractal(p.position * 22.0f, m.seed + 9, 2, 0.0f);
    const Vec3 ground = red ? Vec3{0.55f, 0.30f, 0.06f} : m.color;
    const float cover = red ? Saturate(0.25f + 0.9f * blush + 0.5f * streak) : 1.0f;
    look->color = Mix(ground, m.color, cover) * (0.75f + 0.5f * streak);
}

static void Shade(const Material& m, const SurfacePoint& p, Look* look)
{
    const float up = (p.position.y - kShadeBottom) / (kShadeTop - kShadeBottom);
    const float d = (up - 0.45f) * 1.5f;
    const float ribs = 0.9f + 0.1f * Noise({p.texU * 160.0f, up * 3, 0}, 5);
    const float core = 1.0f / (1.0f + 3.2f * d * d);
    look->glow = Vec3{1.0f, 0.62f, 0.28f} * (1.7f * core * ribs);
    look->color = m.color;
}

Look LookAt(const Material& m, const SurfacePoint& p, float footprint)
{
    const float f0 = 0.045f * m.gloss;
    Look look = {m.color, p.normal, {0, 0, 0}, {f0, f0, f0}};
    const Vec3& at = p.position;
    switch (m.surface)
    {
    case Surface::Plaster:
    case Surface::Ceiling:
        look.color = m.color * (0.88f + 0.24f * Fractal(at * 6.0f, m.seed, 4, footprint * 6.0f));
        look.normal = Tilt(p.normal, Rough(at * 35.0f, m.seed, footprint * 35.0f) * 0.16f);
        break;
    case Surface::Brick: Bricks(m, p, footprint, &look); break;
    case Surface::Planks: Planks(m, p, footprint, &look); break;
    case Surface::Rug: Weave(p, footprint, &look); break;
    case Surface::Wood: SolidWood(m, p, footprint, &look); break;
    case Surface::Velvet:
        look.color = m.color * (0.85f + 0.3f * Fractal(at * 45.0f, m.seed, 3, footprint * 45.0f));
        look.normal = Tilt(p.normal, Rough(at * 160.0f, m.seed, footprint * 160.0f) * 0.3f);
        break;
    case Surface::Linen:
    {
        const float weft = Fractal({at.x * 60, at.y * 700, at.z * 60}, 3, 2, footprint * 500);
        const float warp = Fractal({at.x * 700, at.y * 60, at.z * 700}, 4, 2, footprint * 500);
        look.color = m.color * (0.7f + 0.3f * weft + 0.3f * warp);
        break;
    }
    case Surface::BookSpine: Spine(m, p, footprint, &look); break;
    case Surface::Paper:
        look.color = m.color * (0.6f + 0.6f * Noise({0, at.y * 1500.0f, 0}, m.seed));
        if (footprint > 0.0006f)
            look.color = m.color * 0.9f;
        break;
    case Surface::Metal:
        look.color = m.color * 0.08f;
        look.mirror = m.color * m.gloss;
        break;
    case Surface::LampShade: Shade(m, p, &look); break;
    case Surface::Fruit: Skin(m, p, footprint, &look); break;
    case Surface::Citrus:
        look.normal = Tilt(p.normal, Rough(at * 420.0f, m.seed, footprint * 420.0f) * 0.35f);
        break;
    case Surface::Leaf:
        look.color =
            m.color * (0.6f + 0.8f * Fractal({p.texU * 14, p.texV * 3, 0}, m.seed, 3, 0.1f));
        break;
    case Surface::Petal:
        look.color = Mix(m.color, Vec3{0.60f, 0.42f, 0.08f}, SmoothStep(0.22f, 0.0f, p.texV)) *
                     (0.75f + 0.5f * Fractal({p.texU * 22, p.texV * 2, 0}, m.seed, 2, 0.1f));
        break;
    case Surface::Painting: Canvas(m, p, footprint, &look); break;
    case Surface::Paint:
        look.color = m.color * (0.93f + 0.14f * Fractal(at * 9.0f, m.seed, 3, footprint * 9.0f));
        break;
    case Surface::Ball: PaintedBall(m, p, &look); break;
    case Surface::Clay:
        look.color = m.color * (0.7f + 0.6f * Fractal(at * 60.0f, m.seed, 3, footprint * 60.0f));
        break;
    case Surface::Ceramic:
        look.color = m.color * (0.92f + 0.16f * Fractal(at * 30.0f, m.seed, 2, footprint * 30.0f));
        break;
    }
    return look;
}

} // namespace sample
