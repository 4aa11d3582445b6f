// The dark scheme as a list of system colours that it replaces. Greys only:
// photographs are judged beside these controls, and a tinted surround would
// shift how their colours are seen. From dark to light: tracks and shadows,
// fields for typing, the face of dialogs, menus above it, edges; text is
// lighter than all of them.

#include "skin/SkinPalette.h"

SkinPalette EmptySkinPalette()
{
    SkinPalette palette;
    for (uint32_t& colour : palette.colour)
        colour = kNoSkinColour;
    return palette;
}

static const struct
{
    int index;
    uint32_t colour;
} kDarkColours[] = {
    {2, SkinGrey(110)},  // active caption
    {3, SkinGrey(90)},   // inactive caption
    {4, SkinGrey(80)},   // menu
    {5, SkinGrey(65)},   // window
    {8, SkinGrey(190)},  // window text
    {9, SkinGrey(190)},  // caption text
    {10, SkinGrey(239)}, // active border
    {11, SkinGrey(210)}, // inactive border
    {12, SkinGrey(35)},  // application work space
    {15, SkinGrey(70)},  // button face
    {16, SkinGrey(55)},  // button shadow
    {17, SkinGrey(160)}, // grey text
    {18, SkinGrey(230)}, // button text
    {19, SkinGrey(155)}, // inactive caption text
    {20, SkinGrey(100)}, // button highlight
    {21, SkinGrey(50)},  // dark shadow
    {22, SkinGrey(0)},   // 3-D light: black on purpose, so that bevels drawn by
                         // the system do not glare
    {27, SkinGrey(60)},  // gradient of the active caption
    {28, SkinGrey(95)},  // gradient of the inactive caption
};

SkinPalette DarkSkinPalette()
{
    SkinPalette palette = EmptySkinPalette();
    for (const auto& row : kDarkColours)
        palette.colour[row.index] = row.colour;
    return palette;
}

uint32_t SkinPaletteColour(const SkinPalette& palette, int index)
{
    if (index >= kSkinColours)
        return 0;
    return index < 0 ? kNoSkinColour : palette.colour[index];
}
