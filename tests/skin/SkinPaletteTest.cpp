#include "skin/SkinPalette.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>
#include <vector>

// Relative luminance and contrast as the accessibility guidelines of the web define them.
static double Luminance(uint32_t colour)
{
    const double weights[] = {0.2126, 0.7152, 0.0722};
    double sum = 0;
    for (int i = 0; i < 3; ++i)
    {
        const double value = double(colour >> (8 * i) & 0xFF) / 255;
        sum += weights[i] *
               (value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4));
    }
    return sum;
}

static double Contrast(uint32_t a, uint32_t b)
{
    const double ratio = (Luminance(a) + 0.05) / (Luminance(b) + 0.05);
    return std::max(ratio, 1 / ratio);
}

TEST(DarkColours, KeepTextReadable)
{
    const SkinPalette palette = DarkSkinPalette();
    const uint32_t text = palette.colour[kSkinText], grey = palette.colour[kSkinGreyText];
    const uint32_t face = palette.colour[kSkinFace], window = palette.colour[kSkinWindow];
    const uint32_t menu = palette.colour[kSkinMenu];
    using namespace SkinShade;
    const struct
    {
        uint32_t text, behind;
        double least;
    } pairs[] = {
        {text, face, 7},
        {text, window, 7}, // edits and boxes
        {text, kButton, 7},
        {kTextHot, kButtonHot, 7},
        {text, kButtonDown, 7},
        {text, kTip, 7},
        {kMenuText, menu, 7},
        {kMenuText, kSelected, 6},
        {kTextHot, kSelected, 7},
        {grey, face, 3},
        {grey, window, 3},
        {grey, menu, 3},
        {grey, kButtonOff, 3},
        // Both colours of lists are fixed: 5.5, not 7.
        {palette.colour[kSkinWindowText], window, 5},
        // Things that are no text, but have to be found.
        {kThumb, face, 3},
        {kAccent, kGroove, 3},
    };
    for (const auto& pair : pairs)
        EXPECT_GE(Contrast(pair.text, pair.behind), pair.least)
            << std::hex << pair.text << " on " << pair.behind;
    EXPECT_NE(grey, text);
}

// Desktop and window frame, what selections look like, tooltips and links.
TEST(DarkColours, LeaveToTheSystemWhatTheSkinHasNoUseFor)
{
    const SkinPalette palette = DarkSkinPalette();
    std::vector<int> left;
    for (int i = 0; i < kSkinColours; ++i)
        if (SkinPaletteColour(palette, i) == kNoSkinColour)
            left.push_back(i);
    EXPECT_EQ(left, (std::vector<int>{0, 1, 6, 7, 13, 14, 23, 24, 25, 26, 29}));
    EXPECT_EQ(SkinPaletteColour(palette, -1), kNoSkinColour);
    EXPECT_EQ(SkinPaletteColour(palette, kSkinColours), 0u);
    for (int i = 0; i < kSkinColours; ++i)
        EXPECT_EQ(SkinPaletteColour(EmptySkinPalette(), i), kNoSkinColour) << i;
}

// What lies deeper is darker.
TEST(DarkColours, GoFromTheDeepestToTheHighest)
{
    const SkinPalette palette = DarkSkinPalette();
    const int order[] = {22,        12,        kSkinDarkShadow, kSkinShadow,   kSkinWindow,
                         kSkinFace, kSkinMenu, kSkinHighlight,  kSkinGreyText, kSkinWindowText,
                         kSkinText};
    for (size_t i = 1; i < std::size(order); ++i)
        EXPECT_LT(palette.colour[order[i - 1]], palette.colour[order[i]]) << order[i];
    // Of each pair about title bars, the active window's is the one that stands out from the text.
    for (const auto& [active, inactive] : {std::pair(2, 3), {9, 19}, {10, 11}})
        EXPECT_GT(palette.colour[active], palette.colour[inactive]) << active;
}

TEST(DarkSchemes, AreTwoAndThreeAndAllThatAreForced)
{
    for (const int scheme : {2, 3})
        EXPECT_TRUE(IsDark({scheme, false}));
    EXPECT_TRUE(IsDark({1, true}));
    EXPECT_FALSE(IsDark({1, false}) || IsDark({kNoScheme, true}));
}
