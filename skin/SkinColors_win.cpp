#include "skin/SkinColors.h"

#include "skin/SkinBrushes_win.h"

static SkinState g_state;
static SkinTable g_table = EmptySkinTable();
static HBRUSH g_brushes[kSkinColours];

int SkinScheme()
{
    return g_state.scheme;
}

bool SkinIsDark()
{
    return IsDark(g_state);
}

unsigned long SkinColor(int systemIndex)
{
    const uint32_t colour = SkinTableColour(g_table, systemIndex);
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
    g_table = EmptySkinTable();
}

void SetSkinState(const SkinState& state)
{
    ResetColours();
    g_state = state;
    if (state.scheme == kNoScheme)
        return;
    g_table = DarkSkinTable();
    for (int i = 0; i < kSkinColours; ++i)
        if (g_table.colour[i] != kNoSkinColour)
            g_brushes[i] = CreateSolidBrush(g_table.colour[i]);
}
