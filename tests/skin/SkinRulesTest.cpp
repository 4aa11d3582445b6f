// What holds for every class in the skin's table, and the exceptions.

#include "skin/SkinRules.h"
#include "skin/SkinButtonRules.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <vector>

namespace
{
using namespace SkinMessage;
using Kinds = std::vector<SkinClass>;

// The classes that windows can have.
Kinds AllKinds()
{
    Kinds kinds;
    for (int kind = 0; kind <= int(SkinClass::Holder); ++kind)
        if (SkinClass(kind) != SkinClass::Any)
            kinds.push_back(SkinClass(kind));
    return kinds;
}

bool IsOneOf(const Kinds& kinds, SkinClass kind)
{
    return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
}

SkinWindow Plain(SkinClass kind)
{
    SkinWindow window;
    window.kind = kind;
    return window;
}

SkinTask PlainTask(SkinClass kind, uint32_t message)
{
    return SkinTaskFor(Plain(kind), message);
}

// A window of that class in the state in which the skin paints all of it.
SkinWindow Painted(SkinClass kind)
{
    SkinWindow window = Plain(kind);
    if (kind == SkinClass::Button)
        window.style = kConvertedStyle;
    window.enabled = kind != SkinClass::Static;
    return window;
}

// The system paints these well enough once it has been told the colours.
const Kinds kLeftToColours = {SkinClass::Other,    SkinClass::Dialog,    SkinClass::Edit,
                              SkinClass::ListBox,  SkinClass::ComboList, SkinClass::ListView,
                              SkinClass::TreeView, SkinClass::Tooltip,   SkinClass::Holder};
} // namespace

TEST(SkinRules, PaintEveryControlInAWayOfItsOwn)
{
    std::map<SkinTask, SkinClass> painters;
    for (const SkinClass kind : AllKinds())
    {
        const SkinTask task = PlainTask(kind, kPaint);
        EXPECT_EQ(task == SkinTask::None, IsOneOf(kLeftToColours, kind)) << int(kind);
        const bool first = painters.emplace(task, kind).second;
        EXPECT_TRUE(first || task == SkinTask::None) << int(kind) << " as another";
        EXPECT_TRUE(task != SkinTask::PassOn && task != SkinTask::KeepBackground) << int(kind);
        EXPECT_EQ(PlainTask(kind, kPrintClient), task) << "a picture of it: " << int(kind);
    }
    SkinWindow window = Plain(SkinClass::Edit);
    window.enabled = false;
    EXPECT_EQ(SkinTaskFor(window, kPaint), SkinTask::PaintDisabledEdit);
    EXPECT_EQ(SkinTaskFor(Painted(SkinClass::Button), kPaint), SkinTask::None)
        << "owner-drawn: its parent is asked";
}

TEST(SkinRules, EraseNothingBeforeItIsPaintedAsAWhole)
{
    const Kinds bars = {SkinClass::Toolbar, SkinClass::StatusBar};
    for (const SkinClass kind : AllKinds())
    {
        const SkinTask task = SkinTaskFor(Painted(kind), kEraseBackground);
        if (IsOneOf(bars, kind))
            EXPECT_EQ(task, SkinTask::None) << int(kind);
        else if (kind == SkinClass::Holder)
            EXPECT_EQ(task, SkinTask::FillWithWindowColour);
        else if (IsOneOf(kLeftToColours, kind) || kind == SkinClass::Menu)
            EXPECT_EQ(task, SkinTask::PassOn) << int(kind);
        else
            EXPECT_EQ(task, SkinTask::KeepBackground) << int(kind);
    }
    // What the system paints, or parts of which shine through.
    EXPECT_EQ(PlainTask(SkinClass::Button, kEraseBackground), SkinTask::None);
    EXPECT_EQ(PlainTask(SkinClass::Static, kEraseBackground), SkinTask::None);
    SkinWindow tab = Plain(SkinClass::Tab), menu = Plain(SkinClass::Menu);
    tab.dark = false;
    menu.flatMenus = true;
    EXPECT_EQ(SkinTaskFor(tab, kEraseBackground), SkinTask::None);
    EXPECT_EQ(SkinTaskFor(menu, kEraseBackground), SkinTask::None);
}

TEST(SkinRules, PaintTheEdgeOfWhateverHasOne)
{
    constexpr uint32_t kBorder = 0x800000, kDialogFrame = 1, kClientEdge = 0x200,
                       kStaticEdge = 0x20000;
    const Kinds always = {SkinClass::ListBox, SkinClass::ComboList, SkinClass::TreeView,
                          SkinClass::ListView, SkinClass::Progress};
    const Kinds framed = {SkinClass::Static, SkinClass::Edit, SkinClass::Toolbar};
    const struct
    {
        uint32_t style, exStyle;
    } edges[] = {{kBorder, 0}, {0, kClientEdge}, {0, kStaticEdge}};
    for (const SkinClass kind : AllKinds())
    {
        if (kind == SkinClass::Menu || kind == SkinClass::ComboBox)
            continue; // below
        EXPECT_EQ(PlainTask(kind, kFramePaint) == SkinTask::PaintFrame, IsOneOf(always, kind))
            << int(kind);
        for (const auto& edge : edges)
        {
            SkinWindow window = Plain(kind);
            window.style = edge.style;
            window.exStyle = edge.exStyle;
            EXPECT_EQ(SkinTaskFor(window, kFramePaint) == SkinTask::PaintFrame,
                      IsOneOf(always, kind) || IsOneOf(framed, kind))
                << int(kind) << ", edge " << &edge - edges;
        }
    }
    EXPECT_EQ(PlainTask(SkinClass::Menu, kFramePaint), SkinTask::PaintMenuFrame);
    EXPECT_EQ(PlainTask(SkinClass::ComboBox, kFramePaint), SkinTask::PassOn);

    // A dialog's frame around a field is none of its own; and some labels are all frame.
    SkinWindow window = Plain(SkinClass::Edit);
    window.exStyle = kDialogFrame;
    EXPECT_EQ(SkinTaskFor(window, kFramePaint), SkinTask::None);
    window.kind = SkinClass::Toolbar;
    EXPECT_EQ(SkinTaskFor(window, kFramePaint), SkinTask::PaintFrame);
    window = Plain(SkinClass::Static);
    for (uint32_t type = 0; type < 0x20; ++type)
    {
        window.style = type;
        const bool frame = (type >= 7 && type <= 9) || (type >= 0x10 && type <= 0x12);
        EXPECT_EQ(SkinTakes(window, kFramePaint), frame) << type;
        EXPECT_EQ(SkinTakes(window, kEraseBackground), frame) << type;
    }
}

TEST(SkinRules, ChangeQuietlyWhatWouldDrawItselfAtOnce)
{
    const std::map<SkinClass, std::vector<uint32_t>> quiet = {
        {SkinClass::Button, {kSetText, kEnable, kSetFocus, kKillFocus, kSetCheck, kSetState}},
        {SkinClass::Static, {kSetText, kEnable}},
        {SkinClass::ComboBox, {kEnable, kSetFocus, kKillFocus, kComboSelect}},
        {SkinClass::Trackbar, {kEnable}},
    };
    for (const SkinClass kind : AllKinds())
        for (const uint32_t message :
             {kSetText, kEnable, kSetFocus, kKillFocus, kSetCheck, kSetState, kComboSelect})
        {
            const auto found = quiet.find(kind);
            const bool expected = found != quiet.end() &&
                                  std::count(found->second.begin(), found->second.end(), message);
            EXPECT_EQ(PlainTask(kind, message) == SkinTask::ChangeQuietly, expected)
                << int(kind) << ", message " << message;
        }
}

// Seen by their numbers, since a message with a wrong one is never met.
TEST(SkinRules, StandBeforeEveryClassForSomeMessages)
{
    for (const SkinClass kind : AllKinds())
    {
        for (const uint32_t message : {8U, 10U, 12U, 71U, 224U, 233U, 243U, 43U, 44U, 288U})
            EXPECT_TRUE(SkinTakes(Plain(kind), message)) << int(kind) << ", " << message;
        for (uint32_t message = 0x132; message <= 0x138; ++message)
            EXPECT_TRUE(SkinTakes(Plain(kind), message)) << int(kind) << ", " << message;
    }
    for (const uint32_t message : {8U, 10U, 12U, 20U, 71U, 224U, 233U, 243U})
        EXPECT_EQ(PlainTask(SkinClass::Other, message), SkinTask::PassOn) << message;
}

TEST(SkinRules, KeepTheTypeOfConvertedButtonsOnly)
{
    for (const SkinClass kind : AllKinds())
        for (const uint32_t style : {0U, 0xBU, kConvertedStyle})
            for (const uint32_t message :
                 {0x87U, 0xF4U}) // asks for the dialog code, sets the style
            {
                SkinWindow window = Plain(kind);
                window.style = style;
                EXPECT_EQ(SkinTakes(window, message),
                          kind == SkinClass::Button && style == kConvertedStyle)
                    << int(kind) << ", style " << style << ", message " << message;
            }
}

TEST(SkinRules, SayNoAtOnceToAllOtherMessages)
{
    for (uint32_t message = 0; message < 0x400; ++message)
    {
        bool taken = false;
        for (const SkinClass kind : AllKinds())
            for (const uint32_t style : {0U, kConvertedStyle})
            {
                SkinWindow window = Plain(kind);
                window.style = style;
                taken = taken || SkinTakes(window, message);
            }
        EXPECT_EQ(SkinMayTake(message), taken) << message;
    }
    EXPECT_FALSE(SkinMayTake(0x200)) << "a mouse on its way";
}

// Two classes hold another control, and each other class stands alone.
TEST(SkinClasses, TellTheSystemsControlsApart)
{
    std::map<SkinClass, int> found;
    for (const wchar_t* name : {L"#32768",
                                L"#32770",
                                L"Button",
                                L"ComboBox",
                                L"ComboBoxEx32",
                                L"ComboLBox",
                                L"Edit",
                                L"ListBox",
                                L"msctls_progress32",
                                L"msctls_statusbar32",
                                L"msctls_trackbar32",
                                L"msctls_updown32",
                                L"ScrollBar",
                                L"SHELLDLL_DefView",
                                L"Static",
                                L"SysHeader32",
                                L"SysListView32",
                                L"SysTabControl32",
                                L"SysTreeView32",
                                L"ToolbarWindow32",
                                L"tooltips_class32"})
        ++found[SkinClassOf(name)];
    for (const SkinClass kind : AllKinds())
        EXPECT_EQ(found[kind], kind == SkinClass::Other    ? 0
                               : kind == SkinClass::Holder ? 2
                                                           : 1)
            << int(kind);
}

TEST(SkinClasses, GoByNamesInAnyLetters)
{
    EXPECT_EQ(SkinClassOf(L"BUTTON"), SkinClassOf(L"Button"));
    EXPECT_EQ(SkinClassOf(L"SYSHEADER32"), SkinClass::Header);
    for (const wchar_t* name : {L"", L"Butto", L"Buttons", L"anything"})
        EXPECT_EQ(SkinClassOf(name), SkinClass::Other);
}

TEST(SkinRules, LeaveDialogsThatAskForTheSystemsLook)
{
    EXPECT_TRUE(OptsOutOfSkin(0x94C801C4) && OptsOutOfSkin(0x200));
    EXPECT_FALSE(OptsOutOfSkin(0x94C800C4));
}
