#include "sample/Room.h"

namespace sample
{

static const Placement kHere = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

static void AddWalls(Geometry* g)
{
    const float l = kRoomLeft, r = kRoomRight, t = kRoomTop, n = kRoomNear, f = kRoomFar;
    const Vec3 wide = {r - l, 0, 0}, high = {0, t, 0}, deep = {0, 0, f - n};
    AddQuad(g, {l, 0, n}, deep, wide, kFloor);
    AddQuad(g, {l, t, n}, deep, wide, kCeiling);
    AddQuad(g, {l, 0, n}, deep, high, kLeftWall);
    AddQuad(g, {r, 0, n}, deep, high, kRightWall);
    AddQuad(g, {l, 0, n}, wide, high, kNearWall);

    // The far wall around the opening, then the opening's own four sides.
    const float wl = kWindowLeft, wr = kWindowRight, wb = kWindowBottom, wt = kWindowTop;
    AddQuad(g, {l, 0, f}, {wl - l, 0, 0}, high, kFarWall);
    AddQuad(g, {wr, 0, f}, {r - wr, 0, 0}, high, kFarWall);
    AddQuad(g, {wl, 0, f}, {wr - wl, 0, 0}, {0, wb, 0}, kFarWall);
    AddQuad(g, {wl, wt, f}, {wr - wl, 0, 0}, {0, t - wt, 0}, kFarWall);
    const int paint = AddMaterial(g, Surface::Paint, {0.66f, 0.63f, 0.56f}, 0.0f, 1);
    const Vec3 through = {0, 0, kWindowOutside - f};
    AddQuad(g, {wl, wb, f}, {0, wt - wb, 0}, through, paint);
    AddQuad(g, {wr, wb, f}, {0, wt - wb, 0}, through, paint);
    AddQuad(g, {wl, wb, f}, {wr - wl, 0, 0}, through, paint);
    AddQuad(g, {wl, wt, f}, {wr - wl, 0, 0}, through, paint);
}

static void AddWindow(Geometry* g)
{
    const float wl = kWindowLeft, wr = kWindowRight, wb = kWindowBottom, wt = kWindowTop;
    const int paint = AddMaterial(g, Surface::Paint, {0.70f, 0.67f, 0.60f}, 0.0f, 2);
    const float front = 4.76f, back = 4.83f;
    const auto bar = [&](float x0, float x1, float y0, float y1, float forward) {
        AddBox(g, kHere, {x0, y0, front - forward}, {x1, y1, back}, paint);
    };
    bar(wl, wl + 0.055f, wb, wt, 0);
    bar(wr - 0.055f, wr, wb, wt, 0);
    bar(wl, wr, wb, wb + 0.06f, 0);
    bar(wl, wr, wt - 0.055f, wt, 0);
    const float third = (wr - wl) / 3.0f;
    bar(wl + third - 0.03f, wl + third + 0.03f, wb, wt, 0.015f);
    bar(wr - third - 0.03f, wr - third + 0.03f, wb, wt, 0.015f);
    bar(wl, wr, 1.845f, 1.895f, 0.008f);

    const int brass = AddMaterial(g, Surface::Metal, {0.72f, 0.50f, 0.22f}, 0.8f);
    for (int i = 0; i < 3; i++) // window handles
    {
        const float x = wl + third * (float(i) + (i == 2 ? 0.09f : 0.93f));
        AddBar(g,
               {{x, 1.30f, front - 0.03f}, {x, 1.37f, front - 0.032f}, {x, 1.43f, front - 0.03f}},
               {0.007f, 0.009f, 0.007f}, 8, brass);
    }

    const int board = AddMaterial(g, Surface::Paint, {0.64f, 0.60f, 0.52f}, 0.0f, 3);
    AddBox(g, kHere, {wl - 0.09f, wb - 0.035f, 4.5f}, {wr + 0.09f, wb + 0.004f, 4.78f}, board);

    // A clay pot with a rosette of thick leaves and a blue bottle on the board.
    const int clay = AddMaterial(g, Surface::Clay, {0.42f, 0.17f, 0.08f}, 0.0f, 4);
    const Placement pot = PlaceAt({0.28f, wb + 0.004f, 4.64f});
    AddTurned(g, pot,
              {{0.0f, 0.0f},
               {0.05f, 0.0f},
               {0.052f, 0.004f},
               {0.07f, 0.10f},
               {0.078f, 0.102f},
               {0.08f, 0.128f},
               {0.07f, 0.130f},
               {0.066f, 0.11f},
               {0.0f, 0.108f}},
              28, clay);
    const int leaf = AddMaterial(g, Surface::Leaf, {0.09f, 0.22f, 0.07f}, 0.2f, 5);
    for (int ring = 0; ring < 4; ring++)
        for (int i = 0; i < 9 - ring; i++)
        {
            const float turn = float(i) / float(9 - ring) + 0.37f * float(ring);
            const float lift = 0.03f + 0.055f * float(ring);
            const CosSin a = Turn(turn);
            const float reach = 0.085f - 0.017f * float(ring);
            Placement p = PlaceAt(pot.origin + Vec3{0, 0.12f + 0.028f * float(ring), 0}, -turn);
            p = TipAboutZ(p, lift);
            p.origin += Vec3{a.cos * 0.02f, 0, a.sin * 0.02f};
            AddEllipsoid(g, p, {reach, 0, 0}, {0.085f - 0.012f * float(ring), 0.011f, 0.025f},
                         leaf);
        }
    const int blue = AddMaterial(g, Surface::Ceramic, {0.03f, 0.10f, 0.34f}, 1.0f, 6);
    AddTurned(g, PlaceAt({1.62f, wb + 0.004f, 4.63f}),
              {{0.0f, 0.0f},
               {0.05f, 0.002f},
               {0.065f, 0.05f},
               {0.06f, 0.12f},
               {0.022f, 0.17f},
               {0.018f, 0.23f},
               {0.027f, 0.25f},
               {0.016f, 0.252f},
               {0.012f, 0.20f}},
              28, blue);
}

static void AddCurtain(Geometry* g, float x0, float x1, uint32_t seed, int material)
{
    constexpr int kRows = 14, kColumns = 90;
    std::vector<Vec3> points;
    for (int r = 0; r < kRows; r++)
        for (int c = 0; c < kColumns; c++)
        {
            const float v = float(r) / (kRows - 1), u = float(c) / (kColumns - 1);
            const float wander = Noise({u * 3.0f, v * 1.6f, 0}, seed) * 0.5f;
            const float fold = Turn(u * 6.5f + wander).sin;
            const float depth =
                (0.022f + 0.03f * v) * (0.7f + 0.6f * Noise({u * 5, 0, 0}, seed + 1));
            const float sway = 0.03f * (Noise({v * 2.5f, u, 3}, seed + 2) - 0.5f);
            points.push_back({Mix(x0, x1, u) + sway + 0.012f * Turn(u * 6.5f + 0.25f).sin,
                              Mix(2.46f, 0.03f, v), 4.44f + depth * fold});
        }
    AddSheet(g, points, kRows, kColumns, material);
}

static void AddTrimmings(Geometry* g)
{
    const int linen = AddMaterial(g, Surface::Linen, {0.60f, 0.52f, 0.40f}, 0.0f, 7);
    AddCurtain(g, -0.72f, -0.20f, 11, linen);
    AddCurtain(g, 1.90f, 2.42f, 12, linen);
    const int iron = AddMaterial(g, Surface::Paint, {0.03f, 0.028f, 0.025f}, 0.0f, 19);
    AddBar(g, {{-0.85f, 2.48f, 4.44f}, {0.9f, 2.48f, 4.44f}, {2.5f, 2.48f, 4.44f}},
           {0.013f, 0.013f, 0.013f}, 10, iron);
    AddEllipsoid(g, kHere, {-0.87f, 2.48f, 4.44f}, {0.03f, 0.03f, 0.03f}, iron);

    const int beam = AddMaterial(g, Surface::Wood, {0.085f, 0.045f, 0.022f}, 0.0f, 6);
    for (const float z : {-0.6f, 0.7f, 2.0f, 3.3f})
        AddBox(g, kHere, {kRoomLeft, 2.53f, z}, {kRoomRight, kRoomTop, z + 0.17f}, beam);

    const int skirting = AddMaterial(g, Surface::Paint, {0.55f, 0.53f, 0.47f}, 0.0f, 9);
    AddBox(g, kHere, {kRoomLeft, 0, kRoomNear}, {kRoomLeft + 0.018f, 0.11f, kRoomFar}, skirting);
    AddBox(g, kHere, {kRoomLeft, 0, kRoomFar - 0.018f}, {kRoomRight, 0.11f, kRoomFar}, skirting);
    AddBox(g, kHere, {kRoomRight - 0.018f, 0, kRoomNear}, {kRoomRight, 0.11f, kRoomFar}, skirting);

    // Two framed pictures on the bricks.
    const int frame = AddMaterial(g, Surface::Wood, {0.06f, 0.035f, 0.02f}, 0.4f, 10);
    struct
    {
        float z0, z1, y0, y1;
        uint32_t seed;
    } pictures[] = {{2.62f, 3.30f, 1.22f, 1.78f, 21}, {3.44f, 3.80f, 1.36f, 1.84f, 22}};
    for (const auto& p : pictures)
    {
        const float x = kRoomLeft;
        AddBox(g, kHere, {x, p.y0, p.z0}, {x + 0.03f, p.y1, p.z1}, frame);
        const int canvas = AddMaterial(g, Surface::Painting, {0.4f, 0.32f, 0.24f}, 0.0f, p.seed);
        const float m = 0.035f;
        AddSheet(g,
                 {{x + 0.031f, p.y1 - m, p.z0 + m},
                  {x + 0.031f, p.y1 - m, p.z1 - m},
                  {x + 0.031f, p.y0 + m, p.z0 + m},
                  {x + 0.031f, p.y0 + m, p.z1 - m}},
                 2, 2, canvas);
    }
}

void BuildRoom(Geometry* g)
{
    AddMaterial(g, Surface::Planks, {0.26f, 0.145f, 0.07f}, 0.55f, 31);
    AddMaterial(g, Surface::Ceiling, {0.66f, 0.62f, 0.54f}, 0.0f, 32);
    AddMaterial(g, Surface::Brick, {0.27f, 0.125f, 0.075f}, 0.0f, 33);
    AddMaterial(g, Surface::Plaster, {0.11f, 0.165f, 0.145f}, 0.0f, 34);
    AddMaterial(g, Surface::Plaster, {0.11f, 0.165f, 0.145f}, 0.0f, 35);
    AddMaterial(g, Surface::Plaster, {0.40f, 0.36f, 0.30f}, 0.0f, 36);
    AddWalls(g);
    AddWindow(g);
    AddTrimmings(g);
    AddBookcase(g);
    AddSittingCorner(g);
    AddTable(g);
}

} // namespace sample
