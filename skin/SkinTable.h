#pragma once

#include <cstdint>

// Colours of the controls: what a scheme has in place of the system's colours, and the shades that
// the paintings mix in between. All are COLORREFs: 0x00BBGGRR.

constexpr uint32_t SkinRgb(uint32_t red, uint32_t green, uint32_t blue)
{
    return red | green << 8 | blue << 16;
}
constexpr uint32_t SkinGrey(uint32_t level)
{
    return SkinRgb(level, level, level);
}

// Indices are the system's (COLOR_...); these are the ones that paintings ask for.
enum SkinIndex : int
{
    kSkinMenu = 4,
    kSkinWindow = 5,
    kSkinWindowText = 8,
    kSkinWorkSpace = 12,
    kSkinFace = 15,
    kSkinShadow = 16,
    kSkinGreyText = 17,
    kSkinText = 18, // of buttons, and of all that stands on the face
    kSkinHighlight = 20,
    kSkinDarkShadow = 21,
};

constexpr int kSkinColours = 30;
constexpr uint32_t kNoSkinColour = 0xFFFFFFFF; // the system's stays; zero is black

struct SkinTable
{
    uint32_t colour[kSkinColours];
};

SkinTable EmptySkinTable();
SkinTable DarkSkinTable();

// What the table says about an index; above the table black, which no system colour is asked for.
uint32_t SkinTableColour(const SkinTable& table, int index);

constexpr int kNoScheme = 0, kDarkScheme = 2;

struct SkinState
{
    int scheme = kNoScheme;
    bool force = false; // the dark-only rules hold under every scheme but none
};

constexpr bool IsDark(const SkinState& state)
{
    return state.scheme == 2 || state.scheme == 3 || (state.scheme != 0 && state.force);
}

// What no system colour stands for. Text keeps 7:1 on these fills, disabled text 3:1.
namespace SkinShade
{
constexpr uint32_t kButton = SkinGrey(74), kButtonHot = SkinGrey(86), kButtonDown = SkinGrey(52);
constexpr uint32_t kButtonOff = SkinGrey(66), kEdge = SkinGrey(104), kEdgeHot = SkinGrey(136);
constexpr uint32_t kEdgeOff = SkinGrey(86), kTextHot = SkinGrey(255), kField = SkinGrey(65);
constexpr uint32_t kMenuText = SkinGrey(240), kMenuEdge = SkinGrey(112);
constexpr uint32_t kAccent = SkinRgb(63, 147, 221), kAccentHot = SkinRgb(98, 169, 230);
constexpr uint32_t kSelected = SkinRgb(44, 88, 132);
constexpr uint32_t kTip = SkinGrey(45);
constexpr uint32_t kGroove = SkinGrey(46), kThumb = SkinGrey(205), kThumbHot = SkinGrey(240);
constexpr uint32_t kThumbOff = SkinGrey(112), kBarThumb = SkinGrey(112);
constexpr uint32_t kBarThumbHot = SkinGrey(140), kToolHot = SkinGrey(92), kToolDown = SkinGrey(54);
} // namespace SkinShade
