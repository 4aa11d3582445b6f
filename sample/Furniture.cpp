#include "sample/Furniture.h"

#include "sample/Materials.h"
#include "sample/Room.h"

namespace sample
{

static const Vec3 kBindings[] = {
    {0.20f, 0.035f, 0.03f}, {0.03f, 0.07f, 0.14f}, {0.05f, 0.10f, 0.05f}, {0.36f, 0.27f, 0.14f},
    {0.10f, 0.05f, 0.03f},  {0.42f, 0.38f, 0.30f}, {0.30f, 0.13f, 0.03f}, {0.05f, 0.05f, 0.06f},
    {0.02f, 0.11f, 0.12f},  {0.25f, 0.20f, 0.20f},
};

// One shelf from x0 to x1 full of books, some leaning, with a gap left now and then.
static void FillShelf(Geometry* g, float x0, float x1, float y, float clear, uint32_t seed)
{
    float x = x0 + 0.012f;
    for (uint32_t i = 0;; i++)
    {
        const uint32_t h = Hash(seed, i);
        const float thick = 0.016f + 0.032f * Unit(Hash(h, 1));
        const float tall = clear * (0.58f + 0.34f * Unit(Hash(h, 2)));
        if (x + thick > x1 - 0.02f)
            return;
        Placement p = PlaceAt({x, y, 4.33f + 0.025f * Unit(Hash(h, 4))});
        if (Hash(h, 5) % 11 == 0 && x + thick + 0.09f < x1)
        {
            p = Moved(Tipped(p, 0, 0.028f), {0.055f, 0, 0}); // leans on its left neighbour
            x += 0.062f;
        }
        const Material binding = {BookSpine, kBindings[Hash(h) % 10], 0, h};
        AddBox(g, p, {0, 0, 0}, {thick, tall, 0.18f}, binding);
        x += thick + 0.0015f + (Hash(h, 6) % 17 == 0 ? 0.05f : 0.0f);
    }
}

static void AddBookcase(Geometry* g)
{
    const Material walnut = {Wood, {0.075f, 0.04f, 0.022f}, 0.12f, 40};
    const Material inside = {Wood, {0.036f, 0.019f, 0.012f}, 0, 42};
    const Placement p = PlaceAt({-2.40f, 0, 4.26f});
    const float wide = 1.54f, high = 2.28f, deep = 0.32f, thick = 0.035f;
    AddBox(g, p, {0, 0, 0}, {thick, high, deep}, walnut);
    AddBox(g, p, {wide - thick, 0, 0}, {wide, high, deep}, walnut);
    AddBox(g, p, {-0.03f, high, -0.03f}, {wide + 0.03f, high + 0.04f, deep}, walnut);
    AddBox(g, p, {0, 0, deep - 0.01f}, {wide, high, deep}, inside);
    AddBox(g, p, {0.755f, 0.09f, 0.01f}, {0.785f, high, deep}, walnut);
    AddBox(g, p, {0, 0, 0.02f}, {wide, 0.09f, deep}, walnut);
    const float shelves[] = {0.09f, 0.50f, 0.87f, 1.24f, 1.59f, 1.93f, high};
    for (uint32_t i = 0; i < 12; i++)
    {
        const float y = shelves[i / 2], clear = shelves[i / 2 + 1] - y - 0.025f;
        const float x0 = i & 1 ? -1.615f : -2.365f, x1 = i & 1 ? -0.895f : -1.645f;
        AddBox(g, p, {0, y - 0.025f, 0.012f}, {wide, y, deep}, walnut);
        FillShelf(g, x0, i == 7 ? x0 + 0.36f : x1, y, clear, 100 + i); // room for a ball
    }
    const Material paint = {Striped, {0.10f, 0.16f, 0.22f}, 0.5f};
    AddRound(g, Tipped(Moved(p, {1.28f, 1.34f, 0.14f}), 0, 0.06f), {0.1f, 0.1f, 0.1f}, paint);
}

static void AddArmchair(Geometry* g)
{
    const Placement p = PlaceAt({-1.42f, 0, 3.08f}, -0.105f);
    const Material velvet = {Mottled, {0.40f, 0.20f, 0.025f}, 0, 61};
    const Material leg = {Wood, {0.10f, 0.055f, 0.03f}, 0.4f, 61};
    AddRound(g, Moved(p, {0, 0.25f, 0}), {0.40f, 0.10f, 0.38f}, velvet, 2, 2);
    AddRound(g, Moved(p, {0, 0.42f, -0.03f}), {0.32f, 0.10f, 0.37f}, velvet, 2, 1);
    for (const float side : {-1.0f, 1.0f})
    {
        AddRound(g, Moved(p, {side * 0.40f, 0.42f, -0.01f}), {0.095f, 0.20f, 0.39f}, velvet, 2, 2);
        for (const float z : {-0.32f, 0.32f})
            AddBar(g, Moved(p, {side * 0.34f, 0, z}), {{0, 0.18f, 0}, {side * 0.02f, 0, z * 0.06f}},
                   0.024f, 0.014f, leg);
    }
    const Placement back = Tipped(Moved(p, {0, 0.35f, 0.33f}), 0.03f, 0);
    AddRound(g, Moved(back, {0, 0.27f, 0.02f}), {0.42f, 0.40f, 0.10f}, velvet, 2, 2);
    AddRound(g, Moved(back, {0, 0.31f, -0.12f}), {0.31f, 0.27f, 0.085f}, velvet, 1, 2);
    const Material pillow = {Plaster, {0.05f, 0.16f, 0.19f}, 0, 62};
    const Placement lean = Tipped(Moved(p, {0.10f, 0.66f, 0.10f}), 0.055f, 0.04f);
    AddRound(g, Tipped(lean, 0.25f, 0), {0.23f, 0.085f, 0.23f}, pillow, 2, 0);
}

static void AddLamp(Geometry* g)
{
    const Placement p = PlaceAt({kLampBulb.x, 0, kLampBulb.z});
    const Material brass = {Painted, {0.21f, 0.14f, 0.06f}, 1.0f};
    const Material shade = {Lampshade, {0.6f, 0.48f, 0.3f}};
    AddBar(g, p, {{0, 0, 0}, {0, 1.5f, 0}}, 0.011f, 0.011f, brass);
    AddTurned(g, p, {230, kShadeBottom * 1000, 150, kShadeTop * 1000}, shade);
}

static void AddBench(Geometry* g)
{
    const Material oak = {Wood, {0.19f, 0.10f, 0.045f}, 0, 66};
    const Material wool = {Plaster, {0.34f, 0.06f, 0.05f}, 0, 67};
    const Placement p = PlaceAt({0.62f, 0, 4.28f});
    AddBox(g, p, {-0.62f, 0.40f, -0.17f}, {0.62f, 0.44f, 0.17f}, oak);
    AddBox(g, p, {-0.56f, 0.33f, -0.13f}, {0.56f, 0.40f, -0.11f}, oak);
    AddBox(g, p, {-0.55f, 0, -0.14f}, {-0.50f, 0.40f, 0.14f}, oak);
    AddBox(g, p, {0.50f, 0, -0.14f}, {0.55f, 0.40f, 0.14f}, oak);
    for (const float layer : {0.0f, 1.0f, 2.0f}) // blankets
        AddRound(g, PlaceAt({0.35f, 0.462f + 0.042f * layer, 4.28f}, 0.01f * layer),
                 {0.19f - 0.004f * layer, 0.023f, 0.14f}, wool, 2, 1);
}

static void AddRug(Geometry* g)
{
    const Placement p = PlaceAt({-0.42f, 0.009f, 2.45f}, 0.012f);
    AddQuad(g, ToRoom(p, {-1.15f, 0, -0.82f}), p.x * 2.3f, p.z * 1.64f,
            {Rug, {0.24f, 0.09f, 0.07f}});
    const auto ball = [&](Vec3 at, float radius, float turn, float tip, Vec3 color)
    {
        AddRound(g, Tipped(PlaceAt(at, turn), tip, 0), {radius, radius, radius},
                 {Striped, color, 0.6f});
    };
    ball({-0.62f, 0.139f, 2.02f}, 0.13f, 0.1f, 0.12f, {0.50f, 0.05f, 0.03f});
    ball({-0.20f, 0.094f, 2.42f}, 0.085f, 0.3f, -0.06f, {0.04f, 0.13f, 0.42f});
    ball({-0.28f, 0.069f, 1.86f}, 0.06f, 0.7f, 0.2f, {0.65f, 0.42f, 0.03f});
}

static void AddFruitBowl(Geometry* g, const Placement& p)
{
    const Material china = {Painted, {0.60f, 0.58f, 0.52f}, 1.0f, 81};
    AddTurned(g, p, {0,   12, 55,  10, 60,  0,  68,  2,  72, 14, 130, 45,
                     172, 85, 178, 96, 172, 97, 130, 55, 70, 26, 0,   20},
              china);
    const auto fruit = [&](Vec3 at, Vec3 radius, Vec3 color) {
        AddRound(g, PlaceAt(ToRoom(p, at), 0.42f), radius, {Mottled, color, 0.5f});
    };
    fruit({0.071f, 0.098f, 0.05f}, {0.045f, 0.044f, 0.045f}, {0.62f, 0.22f, 0.01f});
    fruit({-0.086f, 0.096f, -0.067f}, {0.042f, 0.041f, 0.042f}, {0.62f, 0.22f, 0.01f});
    fruit({-0.085f, 0.105f, 0.06f}, {0.045f, 0.032f, 0.032f}, {0.66f, 0.48f, 0.03f});
    fruit({-0.21f, 0.032f, -0.16f}, {0.045f, 0.032f, 0.032f}, {0.66f, 0.48f, 0.03f}); // rolled out

    const Material stalk = {Wood, {0.08f, 0.05f, 0.03f}};
    const auto apple = [&](Vec3 at, Vec3 color)
    {
        const Placement place = Tipped(Moved(p, at), 0.04f, 0.03f);
        AddTurned(g, place, {0, -34, 14, -39, 32, -26, 43, 4, 36, 28, 18, 37, 6, 31, 0, 26},
                  {Mottled, color, 0.6f});
        AddBar(g, place, {{0, 0.026f, 0}, {0.005f, 0.052f, 0}}, 0.0018f, 0.0022f, stalk);
    };
    apple({-0.075f, 0.095f, -0.035f}, {0.42f, 0.03f, 0.02f});
    apple({0.045f, 0.093f, -0.085f}, {0.30f, 0.36f, 0.05f});
    apple({0.005f, 0.135f, 0.02f}, {0.48f, 0.07f, 0.03f});

    // A bunch of grapes over the rim.
    const Material grape = {Mottled, {0.07f, 0.02f, 0.08f}, 0.8f};
    for (uint32_t i = 0; i < 34; i++)
    {
        const float s = float(i) / 34.0f, spread = 0.068f * (1.0f - 0.6f * s);
        const Vec3 jitter = {Unit(Hash(i, 201)) - 0.5f, Unit(Hash(i, 202)) - 0.5f,
                             Unit(Hash(i, 203)) - 0.5f};
        const Vec3 path = {0.085f + 0.12f * s, 0.122f - 0.095f * s * s, -0.075f - 0.075f * s};
        AddRound(g, Moved(p, path + jitter * spread), {0.0125f, 0.014f, 0.0125f}, grape);
    }
}

// Six petals in two rings, each a curved leaf of a cup, on a bent stem.
static void AddTulip(Geometry* g, const Placement& vase, float reach, float height,
                     const Material& green, const Material& petal)
{
    const Vec3 middle = {reach * 0.45f, 0.24f + height * 0.25f, 0}, head = {reach, height, 0};
    AddBar(g, vase, {{0.012f, 0.16f, 0}, middle, head}, 0.0048f, 0.0042f, green);
    const Vec3 up = Normalize(head - middle);
    const Placement p = Moved(vase, head);
    for (int i = 0; i < 6; i++)
        AddSheet(
            g, p, 5, 7, petal,
            [&](float u, float v)
            {
                const float width = 0.124f * (1.0f - v * v * v * 0.93f);
                const CosSin a = Turn(float(i) / 6.0f + (u * 2.0f - 1.0f) * width);
                const float out = 0.004f + 0.111f * v - 0.094f * v * v + (i & 1 ? 0.0025f : 0.0f);
                const Vec3 side = {up.y, -up.x, 0};
                return side * (a.cos * out) + up * (0.075f * v - 0.004f) + Vec3{0, 0, a.sin * out};
            });
}

static void AddTulips(Geometry* g, Vec3 at)
{
    const Material glaze = {Painted, {0.05f, 0.22f, 0.24f}, 1.0f, 91};
    AddTurned(g, PlaceAt(at), {0,   0,  45,  0,  50,  6,  78,  80, 75,  140, 45,
                               200, 36, 235, 48, 262, 44, 262, 31, 235, 40,  190},
              glaze);
    const Material green = {Petal, {0.09f, 0.20f, 0.05f}, 0.2f, 92};
    const Vec3 colors[] = {
        {0.55f, 0.03f, 0.04f}, {0.62f, 0.25f, 0.02f}, {0.55f, 0.10f, 0.18f}, {0.66f, 0.50f, 0.06f}};
    for (uint32_t i = 0; i < 9; i++)
    {
        const float reach = i == 0 ? 0.02f : 0.07f + 0.10f * Unit(Hash(i, 301));
        const float height = 0.50f - 0.9f * reach + 0.10f * Unit(Hash(i, 302));
        AddTulip(g, PlaceAt(at, -0.08f - float(i) * 0.381966f), reach, height, green,
                 {Petal, colors[Hash(i, 303) % 4], 0.1f, 310 + i});
    }
    for (uint32_t i = 0; i < 7; i++)
        AddSheet(g, PlaceAt(at, float(i) * 0.27f), 4, 9, green,
                 [&](float u, float v)
                 {
                     const float across = u * 2.0f - 1.0f,
                                 length = 0.17f + 0.08f * Unit(Hash(i, 401));
                     return Vec3{0.015f + 0.14f * v * v + 0.010f * across * across,
                                 0.22f + length * v * (1.25f - 0.55f * v * v),
                                 across * 0.024f * (1.0f - v * v) * (0.4f + 1.9f * v)};
                 });
}

static void AddCup(Geometry* g, const Placement& p)
{
    const Material china = {Painted, {0.62f, 0.60f, 0.55f}, 1.0f, 95};
    const Material tea = {Painted, {0.10f, 0.025f, 0.006f}, 1.0f};
    AddTurned(g, p, {0, 4, 35, 4, 38, 0, 42, 3, 70, 12, 78, 17, 70, 15, 40, 8, 0, 8}, china);
    AddTurned(g, p, {0, 8, 24, 8, 27, 14, 40, 43, 43, 70, 40.5f, 70, 37, 43, 22, 18}, china);
    AddBar(g, p,
           {{-0.04f, 0.058f, 0}, {-0.062f, 0.058f, 0}, {-0.062f, 0.032f, 0}, {-0.036f, 0.028f, 0}},
           0.004f, 0.004f, china);
    AddTurned(g, p, {0, 58, 40, 58}, tea);
}

// Lying book: its pages show on three sides.
static void AddBook(Geometry* g, const Placement& p, float x, float high, float z, Vec3 color)
{
    AddBox(g, p, {-x, 0, -z}, {x, high, z}, {BookSpine, color, 0, 98});
    AddBox(g, p, {0.004f - x, 0.004f, -z - 0.001f}, {x + 0.001f, high - 0.004f, z + 0.001f},
           {Painted, {0.56f, 0.50f, 0.40f}});
}

static void AddTable(Geometry* g)
{
    const float top = 0.74f;
    const Material oak = {Wood, {0.21f, 0.105f, 0.045f}, 0.36f, 78};
    AddTurned(g, PlaceAt({1.22f, 0, 0.98f}),
              {0, 740, 400, 740, 660, 740, 685, 736, 690, 722, 680, 706, 300, 704}, oak);
    AddFruitBowl(g, PlaceAt({1.06f, top, 1.12f}));
    AddTulips(g, {1.50f, top, 1.26f});
    AddCup(g, PlaceAt({0.80f, top, 0.80f}));
    AddBook(g, PlaceAt({1.42f, top, 0.80f}, 0.05f), 0.085f, 0.034f, 0.12f, {0.03f, 0.08f, 0.13f});
    AddBook(g, PlaceAt({1.426f, top + 0.034f, 0.804f}, 0.015f), 0.075f, 0.026f, 0.11f,
            {0.36f, 0.10f, 0.04f});
    AddBook(g, PlaceAt({1.416f, top + 0.06f, 0.796f}, 0.085f), 0.065f, 0.02f, 0.095f,
            {0.42f, 0.34f, 0.16f});
}

void AddFurniture(Geometry* g)
{
    AddBookcase(g);
    AddArmchair(g);
    AddLamp(g);
    AddBench(g);
    AddRug(g);
    AddTable(g);
}

} // namespace sample
