#include "app/CommandRules.h"

#include "app/CommandIds.h"
#include "app/DockerLayout.h"
#include "app/Invitation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <string>

namespace
{
// On or off for the nine commands that change, in the order of kIds.
const int kIds[] = {ID_FILE_OPEN,     ID_MULTI_IMAGE,    ID_FILE_SAVEAS,
                    ID_FILE_CLOSE,    ID_SINGLE_LIGHT,   ID_DAYLIGHT_UP,
                    ID_DAYLIGHT_DOWN, ID_SMART_CONTRAST, ID_TONE_MAPPING};

std::string Enabled(const CommandStates& states)
{
    std::string text;
    for (const int id : kIds)
        text += IsCommandEnabled(states, id) ? '1' : '0';
    return text;
}
} // namespace

TEST(CommandStates, FollowWhatIsOpenAndWhatRuns)
{
    CommandStates states;
    EXPECT_EQ(Enabled(states), "110000000") << "nothing open";
    EXPECT_FALSE(states.zoomBox);
    PictureOpened(&states);
    EXPECT_EQ(Enabled(states), "111111111") << "a picture";
    EXPECT_TRUE(states.zoomBox);
    ToolCommandsEnabled(&states, false, false);
    EXPECT_EQ(Enabled(states), "000000000") << "a tool";
    EXPECT_TRUE(states.zoomBox);
    ToolCommandsEnabled(&states, true, false);
    EXPECT_EQ(Enabled(states), "111111111") << "the tool has ended";
    ToolCommandsEnabled(&states, true, true);
    EXPECT_EQ(Enabled(states), "111100000") << "in multi-image mode";
    PictureOpened(&states);
    EXPECT_EQ(Enabled(states), "111111111") << "one picture again";
    PictureClosed(&states);
    EXPECT_EQ(Enabled(states), "110000000") << "closed";
    EXPECT_FALSE(states.zoomBox);
    for (const int id : {ID_OPTIONS, IDM_EXIT, IDM_ABOUT, ID_ZOOM_IN, ID_MENU_BUTTON})
        EXPECT_TRUE(IsCommandEnabled(states, id)) << id;
}

TEST(CommandTable, KnowsEveryCommandOnce)
{
    std::set<int> ids;
    for (int i = 0; i < kCommandCount; ++i)
    {
        EXPECT_TRUE(ids.insert(kCommands[i].id).second) << kCommands[i].id;
        EXPECT_EQ(FindCommand(kCommands[i].id), &kCommands[i]);
    }
    EXPECT_EQ(FindCommand(ID_TOOLBAR_SPACER), nullptr);
    ASSERT_NE(FindCommand(ID_SMART_CONTRAST), nullptr);
    EXPECT_EQ(FindCommand(ID_SMART_CONTRAST)->tooltipText, kTextSmartContrastItem);
    EXPECT_FALSE(IsCommandEnabled(CommandStates(), 4242)) << "not a command";
}

TEST(CommandTable, HasRowsThatAgreeWithThemselves)
{
    std::set<std::pair<int, int>> keys;
    std::set<std::wstring> images;
    for (int i = 0; i < kCommandCount; ++i)
    {
        const FrameCommand& row = kCommands[i];
        SCOPED_TRACE(row.id);
        EXPECT_EQ(row.menu != MenuPlace::None, row.menuText != kNoText);
        EXPECT_TRUE(row.toolbar != ToolbarPlace::None ||
                    (!row.image && row.tooltipText == kNoText));
        EXPECT_TRUE(!row.image || images.insert(row.image).second);
        EXPECT_TRUE(row.key.kind == CommandKey::None ||
                    keys.insert({row.key.kind, row.key.code}).second);
        const std::wstring named = std::wstring(L"\tCtrl+") + wchar_t(row.key.code);
        EXPECT_EQ(row.keys, row.key.kind == CommandKey::Control ? named : L"");
    }
}

TEST(Docker, IsAPixelWiderThanItsWidestWindowAndEndsAPixelBeforeTheFrame)
{
    const struct
    {
        std::vector<CBxSize<int>> windows;
        int left, width;
    } cases[] = {
        {{}, 998, 1}, {{{200, 100}}, 798, 201}, {{{200, 100}, {260, 50}, {7, 9}}, 738, 261}};
    for (const auto& c : cases)
    {
        const DockerLayout layout = LayOutDocked(c.windows, 1000);
        EXPECT_EQ(layout.left, c.left);
        EXPECT_EQ(layout.width, c.width);
        ASSERT_EQ(layout.origins.size(), c.windows.size());
        int top = 0;
        for (size_t i = 0; i < c.windows.size(); top += c.windows[i++].cy)
        {
            EXPECT_EQ(layout.origins[i].x, 1);
            EXPECT_EQ(layout.origins[i].y, top);
        }
    }
}

// How much light a grey gives on a screen, seen against black.
static double Light(int grey)
{
    return std::pow((grey / 255.0 + 0.055) / 1.055, 2.4) + 0.05;
}

TEST(Invitation, StandsInTheMiddleAndIsLegible)
{
    for (const int background : {48, 190})
    {
        const InvitationLayout layout = LayOutInvitation({1000, 640}, {420, 40}, background);
        const double ratio = Light(layout.textGrey) / Light(background);
        EXPECT_GE(std::max(ratio, 1 / ratio), 7.0) << background;
        EXPECT_EQ(layout.text.left, 290);
        EXPECT_EQ(layout.text.top, 300);
        EXPECT_EQ(layout.frame.left + layout.frame.right, 1000);
        EXPECT_EQ(layout.frame.top + layout.frame.bottom, 640);
        EXPECT_GT(layout.text.left - layout.frame.left, layout.fontHeight);
    }
    EXPECT_GE(InvitationFontHeight({60, 20}), 13);
    EXPECT_LT(InvitationFontHeight({3840, 2100}), 40);
}
