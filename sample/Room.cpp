#include "sample/Room.h"

#include "sample/Furniture.h"
#include "sample/Materials.h"

namespace sample
{

static const Placement kHere = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
constexpr float kLeft = kWindowLeft, kRight = kWindowRight; // of the window
constexpr float kBottom = kWindowBottom, kTop = kWindowTop;

static void AddWalls(Geometry* g)
{
    const float l = kRoomLeft, r = kRoomRight, t = kRoomTop, n = kRoomNear, f = kRoomFar;
    const Vec3 wide = {r - l, 0, 0}, high = {0, t, 0}, deep = {0, 0, f - n};
    const Material planks = {Planks, {0.26f, 0.145f, 0.07f}, 0.55f, 31};
    const Material ceiling = {Plaster, {0.66f, 0.62f, 0.54f}, 0, 32};
    const Material brick = {Bricks, {0.27f, 0.125f, 0.075f}, 0, 33};
    const Material green = {Plaster, {0.11f, 0.165f, 0.145f}, 0, 34};
    const Material pale = {Plaster, {0.40f, 0.36f, 0.30f}, 0, 36};
    AddQuad(g, {l, 0, n}, deep, wide, planks);
    AddQuad(g, {l, t, n}, deep, wide, ceiling);
    AddQuad(g, {l, 0, n}, deep, high, brick);
    AddQuad(g, {r, 0, n}, deep, high, green);
    AddQuad(g, {l, 0, n}, wide, high, pale);

    // The far wall, as thick as the window is deep.
    const float o = kWindowOutside;
    AddBox(g, kHere, {l, 0, f}, {kLeft, t, o}, green);
    AddBox(g, kHere, {kRight, 0, f}, {r, t, o}, green);
    AddBox(g, kHere, {kLeft, 0, f}, {kRight, kBottom, o}, green);
    AddBox(g, kHere, {kLeft, kTop, f}, {kRight, t, o}, green);
}

static void AddWindow(Geometry* g)
{
    const Material paint = {Painted, {0.70f, 0.67f, 0.60f}, 0, 2};
    const auto bar = [&](float x0, float x1, float y0, float y1, float forward) {
        AddBox(g, kHere, {x0, y0, 4.76f - forward}, {x1, y1, 4.83f}, paint);
    };
    bar(kLeft, kLeft + 0.055f, kBottom, kTop, 0.155f);
    bar(kRight - 0.055f, kRight, kBottom, kTop, 0.155f);
    bar(kLeft, kRight, kBottom, kBottom + 0.06f, 0);
    bar(kLeft, kRight, kTop - 0.055f, kTop, 0.155f);
    bar(0.47f, 0.53f, kBottom, kTop, 0.015f);
    bar(1.17f, 1.23f, kBottom, kTop, 0.015f);
    bar(kLeft, kRight, 1.845f, 1.895f, 0.008f);
    AddBox(g, kHere, {kLeft - 0.09f, kBottom - 0.035f, 4.5f},
           {kRight + 0.09f, kBottom + 0.004f, 4.78f}, paint);
}

// A clay pot with a rosette of thick leaves, and a blue bottle.
static void AddWindowBoard(Geometry* g)
{
    const Material clay = {Mottled, {0.42f, 0.17f, 0.08f}, 0, 4};
    const Material leaf = {Mottled, {0.09f, 0.22f, 0.07f}, 0.2f, 5};
    const Material blue = {Painted, {0.03f, 0.10f, 0.34f}, 1.0f, 6};
    const Placement pot = PlaceAt({0.28f, kBottom + 0.004f, 4.64f});
    AddTurned(g, pot, {0, 0, 50, 0, 52, 4, 70, 100, 78, 102, 80, 128, 70, 130, 66, 110, 0, 108},
              clay);
    for (int i = 0; i < 30; i++)
    {
        const float ring = float(i / 8), turn = 0.125f * float(i % 8) + 0.37f * ring;
        const Placement stem = Tipped(PlaceAt(ToRoom(pot, {0, 0.12f + 0.028f * ring, 0}), turn), 0,
                                      0.03f + 0.055f * ring);
        AddRound(g, Moved(stem, {0.105f - 0.017f * ring, 0, 0}),
                 {0.085f - 0.012f * ring, 0.011f, 0.025f}, leaf);
    }
    AddTurned(g, PlaceAt({1.62f, kBottom + 0.004f, 4.63f}),
              {0, 0, 50, 2, 65, 50, 60, 120, 22, 170, 18, 230, 27, 250, 16, 252, 12, 200}, blue);
}

static void AddCurtains(Geometry* g)
{
    const Material linen = {Plaster, {0.60f, 0.52f, 0.40f}, 0, 7};
    for (const float left : {-0.72f, 1.90f})
        AddSheet(
            g, PlaceAt({left, 0.03f, 4.44f}), 89, 13, linen,
            [&](float u, float v)
            {
                const float wander = 0.5f * Noise({u * 3 + left, v * 1.6f, 0}, 11);
                const CosSin fold = Turn(u * 6.5f + wander);
                const float deep =
                    (0.022f + 0.03f * v) * (0.7f + 0.6f * Noise({u * 5 + left, 0, 0}, 12));
                return Vec3{0.52f * u + 0.012f * fold.cos, 2.43f * (1.0f - v), -deep * fold.sin};
            });
    const Material iron = {Painted, {0.03f, 0.028f, 0.025f}, 0, 19};
    AddBar(g, kHere, {{-0.85f, 2.48f, 4.44f}, {2.5f, 2.48f, 4.44f}}, 0.013f, 0.013f, iron);
    AddRound(g, PlaceAt({-0.87f, 2.48f, 4.44f}), {0.03f, 0.03f, 0.03f}, iron);
}

static void AddTrimmings(Geometry* g)
{
    const Material beam = {Wood, {0.085f, 0.045f, 0.022f}, 0, 6};
    for (const float z : {-0.6f, 0.7f, 2.0f, 3.3f})
        AddBox(g, kHere, {kRoomLeft, 2.53f, z}, {kRoomRight, kRoomTop, z + 0.17f}, beam);
    const Material skirting = {Painted, {0.55f, 0.53f, 0.47f}, 0, 9};
    const float thick = 0.018f, high = 0.11f;
    AddBox(g, kHere, {kRoomLeft, 0, kRoomNear}, {kRoomLeft + thick, high, kRoomFar}, skirting);
    AddBox(g, kHere, {kRoomLeft, 0, kRoomFar - thick}, {kRoomRight, high, kRoomFar}, skirting);
    AddBox(g, kHere, {kRoomRight - thick, 0, kRoomNear}, {kRoomRight, high, kRoomFar}, skirting);

    const Material frame = {Wood, {0.06f, 0.035f, 0.02f}, 0.4f, 10};
    const float pictures[2][4] = {{2.62f, 3.30f, 1.22f, 1.78f}, {3.42f, 3.84f, 1.40f, 1.72f}};
    for (const auto& [near, far, low, top] : pictures)
    {
        const float x = kRoomLeft + 0.03f, m = 0.035f;
        AddBox(g, kHere, {kRoomLeft, low, near}, {x, top, far}, frame);
        AddBox(g, kHere, {x, low + m, near + m}, {x + 0.001f, top - m, far - m},
               {Canvas, {0.10f, 0.16f, 0.28f}, 0, 21});
    }
}

void BuildRoom(Geometry* g)
{
    AddWalls(g);
    AddWindow(g);
    AddWindowBoard(g);
    AddCurtains(g);
    AddTrimmings(g);
    AddFurniture(g);
}

} // namespace sample
