// One brush is made for each colour of the scheme and kept while the scheme
// holds: answers to colour queries are brushes that their receiver does not
// delete, so making one per query would leak.

#include "skin/SkinColors_win.h"

static SkinState g_state;
static SkinPalette g_palette = EmptySkinPalette();
static HBRUSH g_brushes[kSkinColours]; // null where the system's colour stays

int SkinScheme()
{
    return g_state.scheme;
}

bool SkinIsDark()
{
    return IsDark(g_state);
}

COLORREF SkinColor(int systemIndex)
{
    const uint32_t colour = SkinPaletteColour(g_palette, systemIndex);
    return colour == kNoSkinColour ? GetSysColor(systemIndex) : colour;
}

HBRUSH SkinBrush(int systemIndex)
{
    if (systemIndex < 0)
        return nullptr;
    const bool ours = systemIndex < kSkinColours && g_brushes[systemIndex];
    return ours ? g_brushes[systemIndex] : GetSysColorBrush(systemIndex);
}

static void ResetColours()
{
    for (HBRUSH& brush : g_brushes)
    {
        if (brush)
            DeleteObject(brush);
        brush = nullptr;
    }
    g_palette = EmptySkinPalette();
}

void SetSkinState(const SkinState& state)
{
    ResetColours();
    g_state = state;
    if (state.scheme == kNoScheme)
        return;
    g_palette = DarkSkinPalette();
    for (int i = 0; i < kSkinColours; ++i)
        if (g_palette.colour[i] != kNoSkinColour)
            g_brushes[i] = CreateSolidBrush(g_palette.colour[i]);
}
