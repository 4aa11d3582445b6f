#include "sample/Room.h"

namespace sample
{

static const Vec3 kBindings[] = {
    {0.20f, 0.035f, 0.03f}, {0.03f, 0.07f, 0.14f}, {0.05f, 0.10f, 0.05f}, {0.36f, 0.27f, 0.14f},
    {0.10f, 0.05f, 0.03f},  {0.42f, 0.38f, 0.30f}, {0.30f, 0.13f, 0.03f}, {0.05f, 0.05f, 0.06f},
    {0.02f, 0.11f, 0.12f},  {0.25f, 0.20f, 0.20f},
};

static int AddBinding(Geometry* g, uint32_t seed)
{
    return AddMaterial(g, Surface::BookSpine, kBindings[Hash(seed) % 10], 0.0f, seed);
}

// One shelf from x0 to x1 full of books, some leaning, with a gap left now and then.
static void FillShelf(Geometry* g, float x0, float x1, float y, float clear, float back,
                      uint32_t seed)
{
    float x = x0 + 0.012f;
    for (uint32_t i = 0;; i++)
    {
        const uint32_t h = Hash(seed, i);
        const float thick = 0.016f + 0.032f * Unit(Hash(h, 1));
        const float tall = clear * (0.58f + 0.34f * Unit(Hash(h, 2)));
        const float deep = 0.15f + 0.07f * Unit(Hash(h, 3));
        if (x + thick > x1 - 0.02f)
            return;
        const int binding = AddBinding(g, h);
        Placement p = PlaceAt({x, y, back - 0.25f + 0.025f * Unit(Hash(h, 4))});
        if (Hash(h, 5) % 11 == 0 && x + thick + 0.09f < x1)
        {
            p = TipAboutZ(p, 0.028f); // leans on its left neighbour
            p.origin.x += 0.055f;
            x += 0.062f;
        }
        AddBox(g, p, {0, 0, 0}, {thick, tall, deep}, binding);
        x += thick + 0.0015f + (Hash(h, 6) % 17 == 0 ? 0.05f : 0.0f);
    }
}

void AddBookcase(Geometry* g)
{
    const int walnut = AddMaterial(g, Surface::Wood, {0.075f, 0.04f, 0.022f}, 0.12f, 40);
    const int inside = AddMaterial(g, Surface::Wood, {0.036f, 0.019f, 0.012f}, 0.0f, 42);
    const float l = -2.40f, r = -0.86f, t = 2.28f, front = 4.26f, back = 4.58f;
    const Placement here = PlaceAt({0, 0, 0});
    AddBox(g, here, {l, 0, front}, {l + 0.035f, t, back}, walnut);
    AddBox(g, here, {r - 0.035f, 0, front}, {r, t, back}, walnut);
    AddBox(g, here, {l - 0.03f, t, front - 0.03f}, {r + 0.03f, t + 0.04f, back}, walnut);
    AddBox(g, here, {l, 0.0f, back - 0.01f}, {r, t, back}, inside);
    AddBox(g, here, {-1.645f, 0.09f, front + 0.01f}, {-1.615f, t, back}, walnut);
    AddBox(g, here, {l, 0.0f, front + 0.02f}, {r, 0.09f, back}, walnut);

    const float shelves[] = {0.09f, 0.50f, 0.87f, 1.24f, 1.59f, 1.93f, 2.28f};
    for (int s = 0; s < 6; s++)
    {
        const float y = shelves[s], clear = shelves[s + 1] - y - 0.025f;
        AddBox(g, here, {l, y - 0.025f, front + 0.012f}, {r, y, back}, walnut);
        for (int half = 0; half < 2; half++)
        {
            const float x0 = half ? -1.615f : l + 0.035f, x1 = half ? r - 0.035f : -1.645f;
            const uint32_t seed = uint32_t(100 + s * 2 + half);
            if (s == 3 && half == 1) // keeps its right end for a globe and a jar
            {
                FillShelf(g, x0, x0 + 0.36f, y, clear, back, seed);
                const int globe = AddMaterial(g, Surface::Ball, {0.10f, 0.16f, 0.22f}, 0.5f, 51);
                const int brass = AddMaterial(g, Surface::Metal, {0.70f, 0.48f, 0.20f}, 0.8f);
                const Placement p = TipAboutZ(PlaceAt({x0 + 0.50f, y, front + 0.14f}), 0.06f);
                AddTurned(g, PlaceAt(p.origin),
                          {{0.0f, 0.03f}, {0.02f, 0.03f}, {0.05f, 0.006f}, {0.05f, 0.0f}}, 20,
                          brass);
                AddEllipsoid(g, p, {0, 0.135f, 0}, {0.1f, 0.1f, 0.1f}, globe);
            }
            else if (s == 4 && half == 0)
            {
                FillShelf(g, x0 + 0.22f, x1, y, clear, back, seed);
                const int jar = AddMaterial(g, Surface::Ceramic, {0.40f, 0.36f, 0.28f}, 0.7f, 52);
                AddTurned(g, PlaceAt({x0 + 0.11f, y, front + 0.14f}),
                          {{0.0f, 0.0f},
                           {0.05f, 0.0f},
                           {0.08f, 0.07f},
                           {0.085f, 0.13f},
                           {0.05f, 0.19f},
                           {0.04f, 0.20f},
                           {0.045f, 0.215f},
                           {0.03f, 0.23f},
                           {0.0f, 0.245f}},
                          28, jar);
            }
            else
                FillShelf(g, x0, x1, y, clear, back, seed);
        }
    }
}

static void AddArmchair(Geometry* g, const Placement& p)
{
    const int velvet = AddMaterial(g, Surface::Velvet, {0.40f, 0.20f, 0.025f}, 0.0f, 61);
    AddCushion(g, p, {0, 0.25f, 0}, {0.40f, 0.10f, 0.38f}, 0.04f, 0.0f, velvet);
    AddCushion(g, p, {0, 0.42f, -0.03f}, {0.32f, 0.085f, 0.36f}, 0.06f, 0.03f, velvet);
    for (const float side : {-1.0f, 1.0f})
    {
        AddCushion(g, p, {side * 0.40f, 0.42f, -0.01f}, {0.085f, 0.20f, 0.39f}, 0.075f, 0.012f,
                   velvet);
    }
    const Placement back = TipAboutX({ToRoom(p, {0, 0.35f, 0.33f}), p.x, p.y, p.z}, 0.03f);
    AddCushion(g, back, {0, 0.27f, 0.02f}, {0.42f, 0.40f, 0.10f}, 0.09f, 0.02f, velvet);
    AddCushion(g, back, {0, 0.31f, -0.12f}, {0.31f, 0.27f, 0.07f}, 0.06f, 0.035f, velvet);

    const int pillow = AddMaterial(g, Surface::Linen, {0.05f, 0.16f, 0.19f}, 0.0f, 62);
    Placement lean = {ToRoom(p, {0.10f, 0.66f, 0.10f}), p.x, p.y, p.z};
    lean = TipAboutZ(TipAboutX(lean, 0.055f), 0.04f);
    AddPillow(g, lean, 0.235f, 0.085f, pillow);

    const int leg = AddMaterial(g, Surface::Wood, {0.10f, 0.055f, 0.03f}, 0.4f, 61);
    for (const float x : {-0.34f, 0.34f})
        for (const float z : {-0.32f, 0.32f})
            AddBar(g,
                   {ToRoom(p, {x, 0.18f, z}), ToRoom(p, {x * 1.03f, 0.09f, z * 1.03f}),
                    ToRoom(p, {x * 1.06f, 0.0f, z * 1.06f})},
                   {0.024f, 0.019f, 0.014f}, 10, leg);
}

static void AddLamp(Geometry* g)
{
    const Placement p = PlaceAt({kLampBulb.x, 0, kLampBulb.z});
    const int brass = AddMaterial(g, Surface::Metal, {0.70f, 0.48f, 0.20f}, 0.8f);
    AddTurned(g, p, {{0.0f, 0.03f}, {0.03f, 0.03f}, {0.13f, 0.022f}, {0.14f, 0.01f}, {0.14f, 0.0f}},
              36, brass);
    AddBar(g, {ToRoom(p, {0, 0.02f, 0}), ToRoom(p, {0, 0.8f, 0}), ToRoom(p, {0, 1.5f, 0})},
           {0.011f, 0.011f, 0.011f}, 12, brass);
    const int shade = AddMaterial(g, Surface::LampShade, {0.6f, 0.48f, 0.3f}, 0.0f, 64);
    AddTurned(
        g, p,
        {{0.23f, kShadeBottom}, {0.19f, 0.5f * (kShadeBottom + kShadeTop)}, {0.15f, kShadeTop}}, 40,
        shade);
}

static void AddBench(Geometry* g)
{
    const int oak = AddMaterial(g, Surface::Wood, {0.19f, 0.10f, 0.045f}, 0.0f, 66);
    const Placement p = PlaceAt({0.62f, 0, 4.28f});
    AddBox(g, p, {-0.62f, 0.40f, -0.17f}, {0.62f, 0.44f, 0.17f}, oak);
    AddBox(g, p, {-0.56f, 0.33f, -0.13f}, {0.56f, 0.40f, -0.11f}, oak);
    for (const float x : {-0.55f, 0.50f})
        for (const float z : {-0.14f, 0.09f})
            AddBox(g, p, {x, 0, z}, {x + 0.05f, 0.40f, z + 0.05f}, oak);
    const int wool = AddMaterial(g, Surface::Linen, {0.34f, 0.06f, 0.05f}, 0.0f, 67);
    for (const float layer : {0.0f, 1.0f, 2.0f})
        AddCushion(g, PlaceAt({0.35f, 0.44f + 0.042f * layer, 4.28f}, 0.01f * layer),
                   {0, 0.021f, 0}, {0.19f - 0.004f * layer, 0.021f, 0.14f}, 0.02f, 0.004f, wool);
    const int basket = AddMaterial(g, Surface::Clay, {0.26f, 0.17f, 0.08f}, 0.0f, 68);
    AddTurned(g, PlaceAt({0.78f, 0, 4.24f}),
              {{0.0f, 0.01f},
               {0.13f, 0.0f},
               {0.15f, 0.08f},
               {0.165f, 0.2f},
               {0.17f, 0.215f},
               {0.158f, 0.215f},
               {0.15f, 0.1f}},
              32, basket);
}

void AddSittingCorner(Geometry* g)
{
    AddBench(g);
    AddArmchair(g, PlaceAt({-1.42f, 0, 3.08f}, -0.105f));
    AddLamp(g);

    const int rug = AddMaterial(g, Surface::Rug, {0.24f, 0.09f, 0.07f}, 0.0f, 65);
    AddBox(g, PlaceAt({-0.42f, 0, 2.45f}, 0.012f), {-1.15f, 0.0f, -0.82f}, {1.15f, 0.009f, 0.82f},
           rug);

    const int red = AddMaterial(g, Surface::Ball, {0.50f, 0.05f, 0.03f}, 0.6f, 71);
    const int blue = AddMaterial(g, Surface::Ball, {0.04f, 0.13f, 0.42f}, 0.6f, 72);
    const int yellow = AddMaterial(g, Surface::Ball, {0.65f, 0.42f, 0.03f}, 0.6f, 73);
    const auto ball = [&](Vec3 at, float radius, float turn, float tip, int material)
    {
        AddEllipsoid(g, TipAboutX(PlaceAt(at, turn), tip), {0, 0, 0}, {radius, radius, radius},
                     material);
    };
    ball({-0.62f, 0.139f, 2.02f}, 0.13f, 0.1f, 0.12f, red);
    ball({-0.20f, 0.094f, 2.42f}, 0.085f, 0.3f, -0.06f, blue);
    ball({-0.28f, 0.069f, 1.86f}, 0.06f, 0.7f, 0.2f, yellow);
}

} // namespace sample
