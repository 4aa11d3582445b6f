#include "skin/SkinTable.h"

SkinTable EmptySkinTable()
{
    SkinTable table;
    for (uint32_t& colour : table.colour)
        colour = kNoSkinColour;
    return table;
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
    {22, SkinGrey(0)},   // light edge: black on purpose
    {27, SkinGrey(60)},  // gradient of the active caption
    {28, SkinGrey(95)},  // gradient of the inactive caption
};

SkinTable DarkSkinTable()
{
    SkinTable table = EmptySkinTable();
    for (const auto& row : kDarkColours)
        table.colour[row.index] = row.colour;
    return table;
}

uint32_t SkinTableColour(const SkinTable& table, int index)
{
    if (index >= kSkinColours)
        return 0;
    return index < 0 ? kNoSkinColour : table.colour[index];
}
