// How the frame starts and ends: controls, settings, crash marker, questions.

#include "tests/win/FrameHarness.h"
#include "text/ProfileStore.h"
#include "tools/Messages.h"
#include "tools/Settings.h"

#include <commctrl.h>

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
    EXPECT_EQ(SendMessageW(g_hwndZoomCombo, CB_GETCOUNT, 0, 0), 8);
    EXPECT_EQ(Enabled(), "110000000");
    EXPECT_EQ(SendMessageW(g_hwndToolbar, TB_BUTTONCOUNT, 0, 0), 18);
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
    WriteNumber(UserSettingsFile(), L"General", L"Crashed Last Time", 1);
    RunModal([this] { StartFrame(); }, {Box(kTextCrashedLastTime, kTextWarning)});
    CloseFrame();
    RunModal([this] { StartFrame(); }, {});
    CloseFrame();
    const std::wstring name = WideOf(std::string(g_productName) + ".Running");
    const HANDLE otherInstance = CreateMutexW(nullptr, FALSE, name.c_str());
    WriteNumber(UserSettingsFile(), L"General", L"Crashed Last Time", 1);
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
        ASSERT_TRUE(PrepareToolPictures(&FrameDocument()));
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

TEST_F(Frame, NamesTheMenuAndTheButtons)
{
    RunMenu(
        [](HMENU root)
        {
            const struct
            {
                UINT item, by;
                const wchar_t* text;
            } rows[] = {{0, MF_BYPOSITION, L"File"},
                        {1, MF_BYPOSITION, L"Create Vexa"},
                        {2, MF_BYPOSITION, L"Help"},
                        {ID_FILE_OPEN, MF_BYCOMMAND, L"Load Image...\tCtrl+O"},
                        {ID_FILE_SAVEAS, MF_BYCOMMAND, L"Save As...\tCtrl+S"},
                        {ID_SINGLE_LIGHT, MF_BYCOMMAND, L"Single Image Vexa Light..."},
                        {IDM_ABOUT, MF_BYCOMMAND, L"About..."}};
            for (const auto& row : rows)
            {
                wchar_t text[128] = L"";
                GetMenuStringW(root, row.item, text, 128, row.by);
                EXPECT_STREQ(text, row.text);
            }
        });
    for (const auto& [id, string] :
         {std::pair(ID_FILE_OPEN, kTextLoadTip),
          std::pair(ID_SMART_CONTRAST, kTextSmartContrastItem),
          std::pair(ID_ZOOM_COMBO, kTextZoomBoxTip), std::pair(IDM_ABOUT, kNoText)})
    {
        NMTTDISPINFOW info = {};
        info.hdr = {g_hwndToolbar, UINT_PTR(id), UINT(TTN_GETDISPINFOW)};
        SendMessageW(g_hwndMain, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&info));
        EXPECT_EQ(info.lpszText, string ? Text(string) : nullptr) << id;
    }
    RunModal([] { Command(IDM_ABOUT); }, {[](HWND box)
                                          {
                                              EXPECT_EQ(MessageBoxText(box).substr(0, 22),
                                                        L"Plenoviz, Version 2.2\n");
                                              PressButton(box, IDOK);
                                          }});
}
