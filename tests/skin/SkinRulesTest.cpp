#include "skin/SkinRules.h"
#include "skin/SkinGlyphs.h"
#include "skin/SkinTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

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
    const SkinTable table = DarkSkinTable();
    const uint32_t text = table.colour[kSkinText], grey = table.colour[kSkinGreyText];
    const uint32_t face = table.colour[kSkinFace], window = table.colour[kSkinWindow];
    const uint32_t menu = table.colour[kSkinMenu];
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
        {table.colour[kSkinWindowText], window, 5},
        // Things that are no text, but have to be found.
        {kThumb, face, 3},
        {kAccent, kGroove, 3},
    };
    for (const auto& pair : pairs)
        EXPECT_GE(Contrast(pair.text, pair.behind), pair.least)
            << std::hex << pair.text << " on " << pair.behind;
    EXPECT_NE(grey, text);
}

TEST(DarkColours, LeaveUnnamedColoursToTheSystem)
{
    const SkinTable table = DarkSkinTable();
    EXPECT_EQ(SkinTableColour(table, 13), kNoSkinColour);
    EXPECT_EQ(SkinTableColour(table, 22), 0u) << "black is a colour";
    EXPECT_EQ(SkinTableColour(table, 30), 0u);
    EXPECT_EQ(std::count(table.colour, table.colour + kSkinColours, kNoSkinColour), 11);
    EXPECT_TRUE(IsDark({3, false}) && IsDark({1, true}));
    EXPECT_FALSE(IsDark({1, false}) || IsDark({0, true}));
}

TEST(SkinRules, TakeMessagesByClassAndStyle)
{
    constexpr uint32_t kErase = 0x14, kNcPaint = 0x85, kDialogCode = 0x87, kDrawItem = 0x2B;
    const auto window =
        [](const wchar_t* name, uint32_t style, uint32_t exStyle = 0, bool enabled = true)
    { return SkinWindow{SkinClassOf(name), style, exStyle, enabled, true, true}; };
    const struct
    {
        SkinWindow window;
        uint32_t message;
        bool taken;
    } rows[] = {
        {window(L"BUTTON", 0xB), kErase, true},
        {window(L"Button", 3), kErase, false},
        {window(L"Static", 0), kErase, false},
        {window(L"Static", 0, 0, false), kErase, true},
        {window(L"Static", 0x12), kErase, true},
        {window(L"#32768", 0), kErase, false},
        {window(L"ToolbarWindow32", 0), kErase, false},
        {window(L"msctls_statusbar32", 0), kErase, false},
        {window(L"msctls_trackbar32", 0), kErase, true},
        {window(L"Edit", 0), kNcPaint, false},
        {window(L"Edit", 0, 0x200), kNcPaint, true},
        {window(L"Edit", 0, 0x20000), kNcPaint, true},
        {window(L"ListBox", 0), kNcPaint, true},
        {window(L"Static", 0), kNcPaint, false},
        {window(L"Button", kConvertedStyle), kDialogCode, true},
        {window(L"Button", 0xB), kDialogCode, false},
        {window(L"anything", 0), kDrawItem, true},
        {window(L"anything", 0), 0x200, false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(SkinTakes(row.window, row.message), row.taken)
            << &row - rows << ", message " << row.message;
    for (const uint32_t always : {8U, 10U, 12U, 71U, 224U, 233U, 243U, 43U})
        EXPECT_TRUE(SkinTakes(window(L"anything", 0), always)) << always;
}

TEST(SkinRules, ConvertWhatLooksLikeAPushButton)
{
    for (const auto& [style, converts] : {std::pair(0U, true),
                                          {1U, true},
                                          {3U, false},
                                          {0x1003U, true},
                                          {0x1009U, true},
                                          {7U, false},
                                          {0x1007U, false},
                                          {0xBU, false}})
        EXPECT_EQ(ConvertsButton(style), converts) << style;
    EXPECT_EQ(ConvertedStyle(0x50011006), 0x5001101BU);
    EXPECT_TRUE(IsRadioData(ButtonData(0x1009)) && IsCheckData(ButtonData(0x1006)));
    EXPECT_FALSE(IsRadioData(ButtonData(0x1003)) || IsCheckData(ButtonData(1)));
    EXPECT_TRUE(OptsOutOfSkin(0x94C801C4) && OptsOutOfSkin(0x200));
    EXPECT_FALSE(OptsOutOfSkin(0x94C800C4));
}

TEST(SkinRules, FindTheGroupOfAButton)
{
    const std::vector<bool> starts = {false, true, false, false, true, false};
    const std::pair<size_t, size_t> expected[] = {{0, 1}, {1, 4}, {1, 4}, {1, 4}, {4, 6}, {4, 6}};
    for (size_t i = 0; i < starts.size(); ++i)
        EXPECT_EQ(GroupAround(starts, i), expected[i]) << i;
}

TEST(Glyphs, ShrinkByTwoPerLine)
{
    for (const auto& [to, lengths] : {std::pair(ArrowTo::Down, std::vector<int>{7, 5, 3, 1}),
                                      {ArrowTo::Up, {1, 3, 5, 7}},
                                      {ArrowTo::Right, {7, 5, 3, 1}},
                                      {ArrowTo::Left, {1, 3, 5, 7}}})
    {
        const Glyph glyph = ArrowGlyph(to);
        std::vector<int> drawn;
        for (const GlyphLine& line : glyph.lines)
        {
            drawn.push_back(line.length);
            const int across = glyph.vertical ? line.y : line.x;
            EXPECT_EQ(2 * across + line.length, 7) << "centred";
        }
        EXPECT_EQ(drawn, lengths);
    }
}

TEST(ScrollThumb, SitsWhereThePageIs)
{
    const struct
    {
        ScrollRange range;
        int start, end;
    } rows[] = {
        {{0, 99, 10, 0}, 16, 28},    // shorter than a thumb may be
        {{0, 99, 10, 90}, 104, 116}, // the last page
        {{0, 99, 10, 500}, 104, 116}, {{-50, 49, 50, -25}, 41, 91},
        {{0, 9, 10, 0}, 0, 0}, // all in sight
        {{0, 100, 0, 50}, 60, 72},
    };
    for (const auto& row : rows)
    {
        const ThumbPlace thumb = PlaceThumb(row.range, 132, 16);
        EXPECT_EQ(thumb.start, row.start) << &row - rows;
        EXPECT_EQ(thumb.end, row.end) << &row - rows;
    }
}
