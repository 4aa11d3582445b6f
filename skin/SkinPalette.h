#pragma once

#include <cstdint>

// Colours of the controls: what a scheme has in place of the system's colours,
// and the shades that the paintings use besides. All are COLORREFs: 0x00BBGGRR.

constexpr uint32_t SkinRgb(uint32_t red, uint32_t green, uint32_t blue)
{
    return red | green << 8 | blue << 16;
}
constexpr uint32_t SkinGrey(uint32_t level)
{
    return SkinRgb(level, level, level);
}

// Colours are asked for by the system's indices (COLOR_...). These are the ones
// that the paintings use, by what they colour here.
enum SkinIndex : int
{
    kSkinMenu = 4,
    kSkinWindow = 5, // inside of edits and lists
    kSkinWindowText = 8,
    kSkinFace = 15,   // behind everything else: dialogs, bars, labels
    kSkinShadow = 16, // sunk below the face: tracks of scroll bars, tabs that are
                      // not selected
    kSkinGreyText = 17,
    kSkinText = 18, // of buttons, and of all that stands on the face
    kSkinHighlight = 20,
    kSkinDarkShadow = 21,
};

constexpr int kSkinColours = 30;
// The scheme has nothing in place of the system's colour. Zero would not do: it
// is black.
constexpr uint32_t kNoSkinColour = 0xFFFFFFFF;

struct SkinPalette
{
    uint32_t colour[kSkinColours];
};

// Every colour is the system's.
SkinPalette EmptySkinPalette();
SkinPalette DarkSkinPalette();

// The scheme's colour of an index, or kNoSkinColour. Indices above the palette
// give black: no painting asks for one, and the system may not know it either.
uint32_t SkinPaletteColour(const SkinPalette& palette, int index);

constexpr int kNoScheme = 0, kDarkScheme = 2;

struct SkinState
{
    int scheme = kNoScheme;
    bool force = false; // the dark-only rules hold under every scheme but none
};

// Scheme 3 is a second dark one; the view's background and the images of check
// boxes know it too.
constexpr bool IsDark(const SkinState& state)
{
    return state.scheme == 2 || state.scheme == 3 || (state.scheme != 0 && state.force);
}

// Shades for which the system has no index, since its own controls draw them as
// pictures. Text has a contrast of at least 7:1 on the fills, disabled text of
// 3:1 (SkinPaletteTest measures it). "Hot" is under the mouse, "down" pressed,
// "off" disabled.
namespace SkinShade
{
constexpr uint32_t kButton = SkinGrey(74), kButtonHot = SkinGrey(86), kButtonDown = SkinGrey(52);
constexpr uint32_t kButtonOff = SkinGrey(66), kEdge = SkinGrey(104), kEdgeHot = SkinGrey(136);
constexpr uint32_t kEdgeOff = SkinGrey(86), kTextHot = SkinGrey(255);
constexpr uint32_t kMenuText = SkinGrey(240), kMenuEdge = SkinGrey(112);
// The one colour that is no grey says what has the focus, is checked, is the
// default, or is done.
constexpr uint32_t kAccent = SkinRgb(63, 147, 221), kAccentHot = SkinRgb(98, 169, 230);
constexpr uint32_t kSelected = SkinRgb(44, 88, 132);
constexpr uint32_t kTip = SkinGrey(45);
constexpr uint32_t kGroove = SkinGrey(46), kThumb = SkinGrey(205), kThumbHot = SkinGrey(240);
constexpr uint32_t kThumbOff = SkinGrey(112), kBarThumb = SkinGrey(112);
constexpr uint32_t kBarThumbHot = SkinGrey(140), kToolHot = SkinGrey(92), kToolDown = SkinGrey(54);
} // namespace SkinShade
