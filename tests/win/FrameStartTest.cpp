// How the frame starts and ends: controls, settings, crash marker, questions.

#include "app/CommandRules.h"
#include "app/CommandsWnd.h"
#include "tests/win/FrameHarness.h"
#include "text/ProfileStore.h"
#include "tools/Messages.h"
#include "tools/Settings.h"
#include "view/ImageViewZoom.h"

#include <commctrl.h>

#include <iterator>
#include <map>
#include <set>
#include <vector>

class Frame : public FrameTest
{
protected:
    static int CrashMarker()
    {
        return ReadNumber(UserSettingsFile(), L"General", L"Crashed Last Time", -1);
    }
};

TEST_F(Frame, StartsWithNothingOpen)
{
    EXPECT_EQ(Title(), L"Plenoviz");
    EXPECT_EQ(StatusText(), L"");
    EXPECT_EQ(ZoomBoxText(), L"100.0 %");
    EXPECT_EQ(SendMessageW(g_hwndZoomCombo, CB_GETCOUNT, 0, 0), kZoomPresetCount);
    EXPECT_EQ(Enabled(), "110000000");
    EXPECT_TRUE(IsWindowVisible(g_hwndDocker));
    EXPECT_EQ(GetFocus(), g_hwndMain);
    EXPECT_EQ(CrashMarker(), 1) << "until a clean end";
    EXPECT_TRUE(GetWindowLongPtrW(g_hwndMain, GWL_EXSTYLE) & WS_EX_ACCEPTFILES);
}

TEST_F(Frame, WarnsOnceAfterACrashAndBlamesNoneOnASecondInstance)
{
    CloseFrame();
    EXPECT_FALSE(IsWindow(g_hwndMain));
    EXPECT_EQ(CrashMarker(), 0);
    (void)WriteNumber(UserSettingsFile(), L"General", L"Crashed Last Time", 1);
    RunModal([this] { StartFrame(); }, {Box(kTextCrashedLastTime, kTextWarning)});
    CloseFrame();
    RunModal([this] { StartFrame(); }, {});
    CloseFrame();
    const std::wstring name = WideOf(std::string(g_productName) + ".Running");
    const HANDLE otherInstance = CreateMutexW(nullptr, FALSE, name.c_str());
    (void)WriteNumber(UserSettingsFile(), L"General", L"Crashed Last Time", 1);
    RunModal([this] { StartFrame(); }, {});
    CloseHandle(otherInstance);
}

TEST_F(Frame, AsksBeforeItClosesOverAnUnsavedResult)
{
    OpenPicture("photo.png", 64, 48);
    MakeResult(90);
    const auto close = [] { SendMessageW(g_hwndMain, WM_CLOSE, 0, 0); };
    const auto exit = [] { Command(IDM_EXIT); };
    RunModal(close, {Box(kTextUnsavedQuestion, kTextWarning, IDNO)});
    RunModal(exit, {Box(kTextUnsavedQuestion, kTextWarning, IDNO)});
    RunModal([] { EXPECT_FALSE(SendMessageW(g_hwndMain, WM_QUERYENDSESSION, 0, 0)); },
             {Box(kTextUnsavedQuestion, kTextWarning, IDNO)});
    EXPECT_TRUE(IsWindow(g_hwndMain));
    EXPECT_TRUE(FrameDocument().unsaved);
    EXPECT_EQ(ViewCentre(), Bytes({90, 90, 90}));
    SendMessageW(g_hwndMain, WM_ENDSESSION, FALSE, 0);
    EXPECT_EQ(CrashMarker(), 1) << "another program refused";
    SendMessageW(g_hwndMain, WM_ENDSESSION, TRUE, 0);
    EXPECT_EQ(CrashMarker(), 0);
    RunModal(exit, {Box(kTextUnsavedQuestion, kTextWarning, IDYES)});
    Pump();
    EXPECT_FALSE(IsWindow(g_hwndMain));
    EXPECT_EQ(CrashMarker(), 0);
}

// Freed pictures under a running worker would end in a crash: the frame waits for its message.
TEST_F(Frame, ClosesWhenTheWorkerHasStopped)
{
    for (const UINT endMessage : {WM_APP_TOOL_DONE, WM_APP_TOOL_CANCELLED})
    {
        OpenPicture("photo.png", 64, 48);
        ASSERT_EQ(PrepareToolPictures(&FrameDocument()), Outcome::Done);
        bool stopped = false;
        BeginJob(&FrameDocument(), [&stopped] { stopped = true; });
        SendMessageW(g_hwndMain, WM_CLOSE, 0, 0);
        EXPECT_TRUE(IsWindow(g_hwndMain));
        EXPECT_TRUE(stopped);
        SendMessageW(g_hwndMain, endMessage, 0, 0);
        Pump();
        EXPECT_FALSE(IsWindow(g_hwndMain)) << endMessage;
        FrameDocument().unsaved = false;
        StartFrame();
    }
}

TEST_F(Frame, GreysTheMenuAsTheToolbar)
{
    struct Row
    {
        const char* state;
        std::vector<int> grey;
    };
    const std::vector<int> tools = {ID_SINGLE_LIGHT, ID_TONE_MAPPING, ID_DAYLIGHT_UP,
                                    ID_DAYLIGHT_DOWN, ID_SMART_CONTRAST};
    const auto grey = []
    {
        std::set<int> ids;
        RunMenu(
            [&](HMENU root)
            {
                for (const int id :
                     {ID_FILE_OPEN, ID_FILE_SAVEAS, ID_FILE_CLOSE, ID_OPTIONS, IDM_EXIT,
                      ID_MULTI_IMAGE, ID_SINGLE_LIGHT, ID_TONE_MAPPING, ID_DAYLIGHT_UP,
                      ID_DAYLIGHT_DOWN, ID_SMART_CONTRAST, IDM_ABOUT})
                    if (GetMenuState(root, UINT(id), MF_BYCOMMAND) & MF_GRAYED)
                        ids.insert(id);
            });
        return ids;
    };
    std::set<int> nothingOpen(tools.begin(), tools.end());
    nothingOpen.insert({ID_FILE_SAVEAS, ID_FILE_CLOSE});
    EXPECT_EQ(grey(), nothingOpen);
    OpenPicture("photo.png", 64, 48);
    EXPECT_EQ(grey(), std::set<int>());
    FrameDocument().series.chosenByUser = true;
    SendMessageW(g_hwndMain, WM_APP_TOOL_DONE, 0, 0);
    EXPECT_EQ(grey(), std::set<int>(tools.begin(), tools.end()));
    FrameDocument().unsaved = false;
    Command(ID_FILE_CLOSE);
    EXPECT_EQ(grey(), nothingOpen);
}

// Texts of the menu's items by what they choose.
static std::map<int, std::wstring> ItemsOf(HMENU menu)
{
    std::map<int, std::wstring> items;
    for (int i = 0; i < GetMenuItemCount(menu); ++i)
    {
        wchar_t text[128] = L"";
        GetMenuStringW(menu, UINT(i), text, 128, MF_BYPOSITION);
        if (const HMENU sub = GetSubMenu(menu, i))
            items.merge(ItemsOf(sub));
        else if (const UINT id = GetMenuItemID(menu, i)) // no separator
            items[int(id)] = text;
    }
    return items;
}

// Numbers from left to right, 0 for a line.
static std::vector<int> Buttons()
{
    std::vector<int> ids;
    TBBUTTON button = {};
    for (int i = 0; SendMessageW(g_hwndToolbar, TB_GETBUTTON, WPARAM(i), LPARAM(&button)); ++i)
        ids.push_back(button.idCommand);
    return ids;
}

static std::vector<ACCEL> Keys()
{
    std::vector<ACCEL> keys(64);
    const HACCEL table =
        LoadAcceleratorsW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDR_ACCELERATORS));
    keys.resize(size_t(CopyAcceleratorTableW(table, keys.data(), int(keys.size()))));
    return keys;
}

TEST_F(Frame, LaysOutToolbarMenuAndKeys)
{
    EXPECT_EQ(Buttons(),
              (std::vector<int>{ID_FILE_OPEN, ID_FILE_SAVEAS, 0, ID_SMART_CONTRAST, ID_SINGLE_LIGHT,
                                ID_MULTI_IMAGE, 0, ID_DAYLIGHT_UP, ID_DAYLIGHT_DOWN,
                                ID_TONE_MAPPING, 0, ID_TOOLBAR_SPACER, ID_ZOOM_IN, ID_ZOOM_OUT,
                                ID_ZOOM_100, ID_ZOOM_FIT, ID_ZOOM_COMBO, ID_MENU_BUTTON}));
    RunMenu(
        [](HMENU root)
        {
            const std::vector<UINT> popups[] = {
                {ID_FILE_OPEN, ID_FILE_SAVEAS, ID_FILE_CLOSE, 0, ID_OPTIONS, 0, IDM_EXIT},
                {ID_SMART_CONTRAST, ID_SINGLE_LIGHT, ID_MULTI_IMAGE, ID_DAYLIGHT_UP,
                 ID_DAYLIGHT_DOWN, ID_TONE_MAPPING},
                {IDM_ABOUT}};
            for (int place = 0; place < 3; ++place)
            {
                const HMENU popup = GetSubMenu(root, place);
                std::vector<UINT> ids;
                for (int i = 0; i < GetMenuItemCount(popup); ++i)
                    ids.push_back(GetMenuItemID(popup, i));
                EXPECT_EQ(ids, popups[place]) << place;
            }
        });
    // The resource says what the rows say. The last of a table has a mark.
    const int kinds[] = {0, FVIRTKEY, FVIRTKEY | FCONTROL, 0, FALT}; // of CommandKey::Kind
    std::map<int, std::pair<int, int>> keys, rows;
    for (const ACCEL& key : Keys())
        keys[key.cmd] = {key.fVirt & ~0x80, key.key};
    for (int i = 0; i < kCommandCount; ++i)
        if (const CommandKey& key = kCommands[i].key; key.kind != CommandKey::None)
            rows[kCommands[i].id] = {FNOINVERT | kinds[key.kind], key.code};
    EXPECT_EQ(keys, rows);
    EXPECT_EQ(keys[ID_FILE_OPEN], std::pair(FVIRTKEY | FCONTROL | FNOINVERT, int('O')));
}

static const wchar_t* TooltipOf(int id)
{
    NMTTDISPINFOW info = {};
    info.hdr = {g_hwndToolbar, UINT_PTR(id), UINT(TTN_GETDISPINFOW)};
    SendMessageW(g_hwndMain, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&info));
    return info.lpszText;
}

TEST_F(Frame, OffersEveryCommandOfTheTableAndNoOther)
{
    std::map<int, std::wstring> items;
    RunMenu([&](HMENU root) { items = ItemsOf(root); });
    std::set<int> buttons;
    for (const int id : Buttons())
        if (id != 0 && id != ID_TOOLBAR_SPACER)
            buttons.insert(id);
    std::set<int> all = buttons;
    for (const ACCEL& key : Keys())
        all.insert(key.cmd);
    for (const auto& [id, text] : items)
        all.insert(id);
    for (const int id : all)
        EXPECT_TRUE(FindCommand(id)) << id;
    for (int i = 0; i < kCommandCount; ++i)
    {
        const FrameCommand& command = kCommands[i];
        SCOPED_TRACE(command.id);
        EXPECT_TRUE(all.count(command.id)) << "nobody can choose it";
        const std::wstring item =
            command.menuText ? std::wstring(Text(command.menuText)) + command.keys : L"";
        EXPECT_EQ(items[command.id], item);
        EXPECT_TRUE(!command.tooltipText || buttons.count(command.id));
        EXPECT_EQ(TooltipOf(command.id), command.tooltipText ? Text(command.tooltipText) : nullptr);
    }
    EXPECT_EQ(items[ID_FILE_OPEN], L"Load Image...\tCtrl+O");
    EXPECT_STREQ(TooltipOf(ID_FILE_OPEN), L"Load Image... Ctrl+O");
}

TEST_F(Frame, NamesTheMenusAndItself)
{
    RunMenu(
        [](HMENU root)
        {
            const wchar_t* titles[] = {L"File", L"Create Vexa", L"Help"};
            for (UINT i = 0; i < 3; ++i)
            {
                wchar_t text[128] = L"";
                GetMenuStringW(root, i, text, 128, MF_BYPOSITION);
                EXPECT_STREQ(text, titles[i]);
            }
        });
    RunModal([] { Command(IDM_ABOUT); }, {[](HWND box)
                                          {
                                              EXPECT_EQ(MessageBoxText(box).substr(0, 22),
                                                        L"Plenoviz, Version 2.2\n");
                                              PressButton(box, IDOK);
                                          }});
}
