#include "sample/Room.h"

namespace sample
{

static constexpr float kTableTop = 0.74f;

// Lying book: two covers and a spine around the block of pages.
static void AddBook(Geometry* g, const Placement& p, Vec3 size, Vec3 color, uint32_t seed)
{
    const int cover = AddMaterial(g, Surface::BookSpine, color, 0.0f, seed);
    const int paper = AddMaterial(g, Surface::Paper, {0.62f, 0.56f, 0.44f}, 0.0f, seed);
    const float x = size.x * 0.5f, z = size.z * 0.5f, c = 0.0035f;
    AddBox(g, p, {-x, 0, -z}, {x, c, z}, cover);
    AddBox(g, p, {-x, size.y - c, -z}, {x, size.y, z}, cover);
    AddBox(g, p, {-x, c, -z}, {-x + c, size.y - c, z}, cover);
    AddBox(g, p, {-x + c, c, -z + 0.005f}, {x - 0.005f, size.y - c, z - 0.005f}, paper);
}

static void AddFruitBowl(Geometry* g, Vec3 at)
{
    const int bowl = AddMaterial(g, Surface::Ceramic, {0.60f, 0.58f, 0.52f}, 1.0f, 81);
    AddTurned(g, PlaceAt(at),
              {{0.0f, 0.012f},
               {0.055f, 0.010f},
               {0.06f, 0.0f},
               {0.068f, 0.002f},
               {0.072f, 0.014f},
               {0.13f, 0.045f},
               {0.172f, 0.085f},
               {0.178f, 0.096f},
               {0.172f, 0.097f},
               {0.13f, 0.055f},
               {0.07f, 0.026f},
               {0.0f, 0.02f}},
              48, bowl);

    const auto apple = [&](Vec3 p, float tip, Vec3 color, uint32_t seed)
    {
        const int skin = AddMaterial(g, Surface::Fruit, color, 0.6f, seed);
        const int stalk = AddMaterial(g, Surface::Wood, {0.08f, 0.05f, 0.03f}, 0.0f, seed);
        const Placement place = TipAboutZ(TipAboutX(PlaceAt(at + p), tip), tip * 0.7f);
        AddTurned(g, place,
                  {{0.0f, -0.034f},
                   {0.014f, -0.039f},
                   {0.032f, -0.026f},
                   {0.043f, 0.004f},
                   {0.036f, 0.028f},
                   {0.018f, 0.037f},
                   {0.006f, 0.031f},
                   {0.0f, 0.026f}},
                  28, skin);
        AddBar(g,
               {ToRoom(place, {0, 0.026f, 0}), ToRoom(place, {0.002f, 0.04f, 0}),
                ToRoom(place, {0.008f, 0.052f, 0})},
               {0.0018f, 0.0015f, 0.0022f}, 6, stalk);
    };
    apple({-0.075f, 0.095f, -0.035f}, 0.05f, {0.42f, 0.03f, 0.02f}, 82);
    apple({0.045f, 0.093f, -0.085f}, -0.06f, {0.30f, 0.36f, 0.05f}, 83);
    apple({0.005f, 0.135f, 0.02f}, 0.02f, {0.48f, 0.07f, 0.03f}, 84);
    apple({0.01f, 0.09f, 0.10f}, -0.03f, {0.38f, 0.05f, 0.02f}, 85);

    const int orange = AddMaterial(g, Surface::Citrus, {0.62f, 0.22f, 0.01f}, 0.35f, 86);
    AddEllipsoid(g, PlaceAt(at, 0.1f), {0.088f, 0.098f, 0.0f}, {0.045f, 0.044f, 0.045f}, orange);
    AddEllipsoid(g, PlaceAt(at, 0.1f), {-0.03f, 0.096f, -0.105f}, {0.042f, 0.041f, 0.042f}, orange);
    const int lemon = AddMaterial(g, Surface::Citrus, {0.66f, 0.48f, 0.03f}, 0.35f, 87);
    AddEllipsoid(g, TipAboutZ(PlaceAt(at + Vec3{-0.085f, 0.105f, 0.06f}, 0.18f), 0.05f), {0, 0, 0},
                 {0.045f, 0.032f, 0.032f}, lemon);
    // Its twin rolled out of the bowl.
    AddEllipsoid(g, PlaceAt({at.x - 0.21f, kTableTop + 0.032f, at.z - 0.16f}, 0.42f), {0, 0, 0},
                 {0.045f, 0.032f, 0.032f}, lemon);

    // A bunch of grapes over the rim.
    const int grape = AddMaterial(g, Surface::Fruit, {0.07f, 0.02f, 0.08f}, 0.8f, 88);
    for (uint32_t i = 0; i < 34; i++)
    {
        const float s = float(i) / 34.0f;
        const float spread = 0.034f * (1.0f - 0.6f * s);
        const Vec3 jitter = {Unit(Hash(i, 201)) - 0.5f, Unit(Hash(i, 202)) - 0.5f,
                             Unit(Hash(i, 203)) - 0.5f};
        const Vec3 path = {0.085f + 0.12f * s, 0.122f - 0.095f * s * s, -0.075f - 0.075f * s};
        const float radius = 0.0115f + 0.002f * Unit(Hash(i, 204));
        AddEllipsoid(g, PlaceAt(at), path + jitter * (2.0f * spread),
                     {radius, radius * 1.12f, radius}, grape);
    }
}

static void AddTulip(Geometry* g, Vec3 foot, Vec3 middle, Vec3 head, Vec3 color, uint32_t seed)
{
    const int stem = AddMaterial(g, Surface::Leaf, {0.10f, 0.22f, 0.04f}, 0.1f, seed);
    const int petal = AddMaterial(g, Surface::Petal, color, 0.1f, seed);
    AddBar(g, {foot, middle, head}, {0.0048f, 0.0045f, 0.0042f}, 8, stem);
    const Vec3 up = Normalize(head - middle);
    Placement p = {head, {}, up, {}};
    MakeBasis(up, &p.x, &p.z);
    // Six petals in two rings, each a curved leaf of a cup.
    for (int i = 0; i < 6; i++)
    {
        constexpr int kRows = 8, kColumns = 6;
        std::vector<Vec3> points;
        for (int r = 0; r < kRows; r++)
            for (int c = 0; c < kColumns; c++)
            {
                const float v = float(r) / (kRows - 1), u = float(c) / (kColumns - 1) * 2.0f - 1.0f;
                const float width = 0.20f * (1.0f - v * v * v * 0.93f);
                const CosSin a = Turn(float(i) / 6.0f + u * width * 0.62f);
                const float swell = v * (1.0f - v) * 4.0f;
                const float out = 0.004f + 0.0235f * swell + 0.017f * v + (i & 1 ? 0.0025f : 0.0f);
                points.push_back(ToRoom(p, {a.cos * out, 0.075f * v - 0.004f, a.sin * out}));
            }
        AddSheet(g, points, kRows, kColumns, petal);
    }
}

static void AddTulips(Geometry* g, Vec3 at)
{
    const int vase = AddMaterial(g, Surface::Ceramic, {0.05f, 0.22f, 0.24f}, 1.0f, 91);
    AddTurned(g, PlaceAt(at),
              {{0.0f, 0.0f},
               {0.045f, 0.0f},
               {0.05f, 0.006f},
               {0.078f, 0.08f},
               {0.075f, 0.14f},
               {0.045f, 0.20f},
               {0.036f, 0.235f},
               {0.048f, 0.262f},
               {0.044f, 0.262f},
               {0.031f, 0.235f},
               {0.04f, 0.19f}},
              40, vase);

    const Vec3 colors[] = {
        {0.55f, 0.03f, 0.04f}, {0.62f, 0.25f, 0.02f}, {0.55f, 0.10f, 0.18f}, {0.66f, 0.50f, 0.06f}};
    for (uint32_t i = 0; i < 9; i++)
    {
        const CosSin a = Turn(float(i) * 0.381966f + 0.08f);
        const float reach = i == 0 ? 0.02f : 0.07f + 0.10f * Unit(Hash(i, 301));
        const float height = 0.50f - 0.9f * reach + 0.10f * Unit(Hash(i, 302));
        const Vec3 out = {a.cos, 0, a.sin};
        AddTulip(g, at + out * 0.012f + Vec3{0, 0.16f, 0},
                 at + out * (reach * 0.45f) + Vec3{0, 0.24f + height * 0.25f, 0},
                 at + out * reach + Vec3{0, height, 0}, colors[Hash(i, 303) % 4], 310 + i);
    }
    const int leaf = AddMaterial(g, Surface::Leaf, {0.09f, 0.20f, 0.05f}, 0.25f, 92);
    for (uint32_t i = 0; i < 7; i++)
    {
        constexpr int kRows = 10, kColumns = 5;
        const CosSin a = Turn(float(i) * 0.27f + 0.2f);
        const Vec3 out = {a.cos, 0, a.sin}, side = {-a.sin, 0, a.cos};
        const float length = 0.17f + 0.08f * Unit(Hash(i, 401));
        std::vector<Vec3> points;
        for (int r = 0; r < kRows; r++)
            for (int c = 0; c < kColumns; c++)
            {
                const float v = float(r) / (kRows - 1), u = float(c) / (kColumns - 1) * 2.0f - 1.0f;
                const float width = 0.024f * (1.0f - v * v) * (0.4f + 1.9f * v);
                points.push_back(at + out * (0.025f + 0.14f * v * v - 0.010f * (1 - u * u)) +
                                 side * (width * u) +
                                 Vec3{0, 0.22f + length * v * (1.25f - 0.55f * v * v), 0});
            }
        AddSheet(g, points, kRows, kColumns, leaf);
    }
}

static void AddCup(Geometry* g, Vec3 at)
{
    const int china = AddMaterial(g, Surface::Ceramic, {0.62f, 0.60f, 0.55f}, 1.0f, 95);
    AddTurned(g, PlaceAt(at),
              {{0.0f, 0.004f},
               {0.035f, 0.004f},
               {0.038f, 0.0f},
               {0.042f, 0.003f},
               {0.07f, 0.012f},
               {0.078f, 0.017f},
               {0.07f, 0.015f},
               {0.04f, 0.008f},
               {0.0f, 0.008f}},
              36, china);
    const Vec3 cup = at + Vec3{0, 0.008f, 0};
    AddTurned(g, PlaceAt(cup),
              {{0.0f, 0.0f},
               {0.024f, 0.0f},
               {0.027f, 0.006f},
               {0.040f, 0.035f},
               {0.043f, 0.062f},
               {0.0405f, 0.062f},
               {0.037f, 0.035f},
               {0.022f, 0.010f}},
              36, china);
    AddBar(g,
           {cup + Vec3{-0.040f, 0.050f, 0}, cup + Vec3{-0.062f, 0.050f, 0},
            cup + Vec3{-0.062f, 0.024f, 0}, cup + Vec3{-0.036f, 0.020f, 0}},
           {0.004f, 0.004f, 0.004f, 0.004f}, 8, china);
    const int tea = AddMaterial(g, Surface::Ceramic, {0.10f, 0.025f, 0.006f}, 1.0f, 96);
    AddTurned(g, PlaceAt(cup), {{0.0f, 0.05f}, {0.02f, 0.05f}, {0.040f, 0.05f}}, 24, tea);
}

void AddTable(Geometry* g)
{
    const Vec3 centre = {1.22f, 0.0f, 0.98f};
    const int oak = AddMaterial(g, Surface::Wood, {0.21f, 0.105f, 0.045f}, 0.36f, 78);
    AddTurned(g, PlaceAt(centre, 0.06f),
              {{0.0f, kTableTop},
               {0.4f, kTableTop},
               {0.66f, kTableTop},
               {0.685f, kTableTop - 0.004f},
               {0.69f, kTableTop - 0.018f},
               {0.68f, kTableTop - 0.034f},
               {0.3f, kTableTop - 0.036f},
               {0.05f, kTableTop - 0.06f}},
              96, oak);
    AddTurned(g, PlaceAt(centre),
              {{0.05f, 0.70f},
               {0.045f, 0.5f},
               {0.07f, 0.35f},
               {0.045f, 0.15f},
               {0.12f, 0.04f},
               {0.30f, 0.02f},
               {0.31f, 0.0f}},
              36, oak);

    AddFruitBowl(g, {1.06f, kTableTop, 1.12f});
    AddTulips(g, {1.50f, kTableTop, 1.26f});
    AddCup(g, {0.80f, kTableTop, 0.80f});
    const Vec3 books = {1.42f, kTableTop, 0.80f};
    AddBook(g, PlaceAt(books, 0.05f), {0.17f, 0.034f, 0.24f}, {0.03f, 0.08f, 0.13f}, 97);
    AddBook(g, PlaceAt(books + Vec3{0.006f, 0.034f, 0.004f}, 0.015f), {0.15f, 0.026f, 0.22f},
            {0.36f, 0.10f, 0.04f}, 98);
    AddBook(g, PlaceAt(books + Vec3{-0.004f, 0.06f, -0.004f}, 0.085f), {0.13f, 0.02f, 0.19f},
            {0.42f, 0.34f, 0.16f}, 99);
}

} // namespace sample
