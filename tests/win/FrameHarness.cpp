#include "tests/win/FrameHarness.h"

#include "app/CommandsWnd.h"
#include "app/MainWnd.h"
#include "app/ToolbarWnd.h"
#include "tests/win/ProfileFiles.h"

#include <commctrl.h>
#include <commdlg.h>
#include <dlgs.h>
#include <shlobj.h>

#include <cstring>

static const wchar_t kFrameClass[] = L"PlenovizFrameTest";
constexpr UINT kGetMenuHandle = 0x01E1; // of an open menu's window

std::wstring WideOf(const std::string& utf8)
{
    wchar_t text[2048];
    MultiByteToWideChar(CP_UTF8, 0, utf8.c_str(), -1, text, 2048);
    return text;
}

std::wstring FrameTest::Wide(const std::string& name) const
{
    std::wstring path = WideOf(folder.File(name));
    for (wchar_t& c : path)
        if (c == L'/')
            c = L'\\';
    return path;
}

void Pump()
{
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
}

void GiveSeries(std::vector<std::wstring> files)
{
    TakeSeries(&FrameDocument(), std::move(files));
}

void FrameTest::StartFrame()
{
    static const bool registered = RegisterMainWindowClass(GetModuleHandleW(nullptr), kFrameClass);
    ASSERT_TRUE(registered);
    g_hwndMain = g_hwndToolbar = g_hwndStatus = g_hwndZoomCombo = g_hwndDocker = nullptr;
    LoadLocalizedStrings();
    ASSERT_TRUE(InitInstance(GetModuleHandleW(nullptr), kFrameClass, L"Plenoviz", SW_SHOW));
    Pump();
}

void FrameTest::SetUp()
{
    UseFreshProfileFiles();
    StartFrame();
    SetClientSize(1000, kAreaHeight + ToolbarClientHeight() + 3 + 23);
}

void FrameTest::TearDown()
{
    FrameDocument().unsaved = false;
    EndWork(&FrameDocument());
    if (g_hwndMain && IsWindow(g_hwndMain))
        CloseFrame();
    UseFreshProfileFiles();
}

void FrameTest::CloseFrame()
{
    SendMessageW(g_hwndMain, WM_CLOSE, 0, 0);
    Pump(); // takes the quit message away
}

std::wstring FrameTest::Title() const
{
    return WindowText(g_hwndMain);
}

std::wstring FrameTest::StatusText() const
{
    wchar_t text[1024] = L"";
    SendMessageW(g_hwndStatus, SB_GETTEXTW, 0, reinterpret_cast<LPARAM>(text));
    return text;
}

std::wstring FrameTest::ZoomBoxText() const
{
    return WindowText(g_hwndZoomCombo);
}

void FrameTest::OpenPicture(const std::string& name, int width, int height, int components,
                            int bits)
{
    Save(ScenePicture(width, height, components, bits, 0), folder.File(name));
    Drop({Wide(name)});
    ASSERT_EQ(FrameDocument().source->width, width) << name;
}

void FrameTest::MakeResult(uint8_t level)
{
    ASSERT_EQ(PrepareToolPictures(&FrameDocument()), Outcome::Done);
    for (int y = 0; y < FrameDocument().result->height; ++y)
        std::memset(FrameDocument().result->data +
                        size_t(y) * size_t(FrameDocument().result->stride),
                    level, size_t(FrameDocument().result->stride));
    FrameDocument().unsaved = true;
    ShowResult();
}

LRESULT Command(int id)
{
    const LRESULT answer = SendMessageW(g_hwndMain, WM_COMMAND, WPARAM(id), 0);
    Pump();
    return answer;
}

void SetClientSize(int width, int height)
{
    RECT window, client;
    GetWindowRect(g_hwndMain, &window);
    GetClientRect(g_hwndMain, &client);
    SetWindowPos(g_hwndMain, nullptr, 0, 0, width + (window.right - window.left) - client.right,
                 height + (window.bottom - window.top) - client.bottom,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    Pump();
    GetClientRect(g_hwndMain, &client);
    ASSERT_EQ(client.right, width);
    ASSERT_EQ(client.bottom, height);
}

void Drop(const std::vector<std::wstring>& paths)
{
    std::wstring list;
    for (const std::wstring& path : paths)
        list += path + L'\0';
    list += L'\0';
    const HGLOBAL block = GlobalAlloc(GHND, sizeof(DROPFILES) + list.size() * sizeof(wchar_t));
    DROPFILES* drop = static_cast<DROPFILES*>(GlobalLock(block));
    drop->pFiles = sizeof(DROPFILES);
    drop->fWide = TRUE;
    std::memcpy(drop + 1, list.data(), list.size() * sizeof(wchar_t));
    GlobalUnlock(block);
    SendMessageW(g_hwndMain, WM_DROPFILES, reinterpret_cast<WPARAM>(block), 0);
    Pump();
}

LRESULT Mouse(UINT message, int x, int y, WPARAM keys)
{
    return SendMessageW(g_hwndMain, message, keys, MAKELPARAM(x, y));
}

void Wheel(int delta, int x, int y)
{
    POINT point = {x, y};
    ClientToScreen(g_hwndMain, &point);
    SendMessageW(g_hwndMain, WM_MOUSEWHEEL, MAKEWPARAM(0, delta), MAKELPARAM(point.x, point.y));
}

std::string Enabled()
{
    std::string text;
    for (const int id : {ID_FILE_OPEN, ID_MULTI_IMAGE, ID_FILE_SAVEAS, ID_SINGLE_LIGHT,
                         ID_DAYLIGHT_UP, ID_DAYLIGHT_DOWN, ID_SMART_CONTRAST, ID_TONE_MAPPING})
    {
        const LRESULT state = SendMessageW(g_hwndToolbar, TB_GETSTATE, WPARAM(id), 0);
        text += state & TBSTATE_ENABLED ? '1' : '0';
    }
    return text + (IsWindowEnabled(g_hwndZoomCombo) ? "1" : "0");
}

Bytes ViewPixel(int x, int y)
{
    GdiFlush();
    const uint8_t* pixel = g_displayDocument.display.data +
                           size_t(y) * size_t(g_displayDocument.display.stride) + size_t(x) * 3;
    return {pixel[0], pixel[1], pixel[2]};
}

Bytes ViewCentre()
{
    const CBxSize<int> size = SizeOfArea(g_view.area);
    return ViewPixel(size.cx / 2, size.cy / 2);
}

std::function<void(HWND)> Box(TextId text, TextId caption, int button)
{
    return [=](HWND box)
    {
        EXPECT_EQ(MessageBoxText(box), Text(text));
        EXPECT_EQ(WindowText(box), caption ? Text(caption) : L"");
        PressButton(box, button);
    };
}

void ChooseFile(HWND dialog, const std::wstring& inFolder, const std::wstring& name)
{
    HWND edit = GetDlgItem(dialog, cmb13);
    if (!edit)
        edit = GetDlgItem(dialog, edt1);
    ASSERT_TRUE(edit);
    SetWindowTextW(edit, inFolder.c_str());
    SendMessageW(dialog, WM_COMMAND, IDOK, 0);
    ASSERT_TRUE(IsWindow(dialog)) << "went to the folder";
    SetWindowTextW(edit, name.c_str());
    PressButton(dialog, IDOK);
}

static const std::function<void(HMENU)>* g_readMenu;

static void CALLBACK MenuTick(HWND, UINT, UINT_PTR timer, DWORD)
{
    const HWND window = FindWindowW(L"#32768", nullptr);
    if (!window || !IsWindowVisible(window))
        return;
    KillTimer(nullptr, timer);
    (*g_readMenu)(reinterpret_cast<HMENU>(SendMessageW(window, kGetMenuHandle, 0, 0)));
    PostMessageW(window, WM_KEYDOWN, VK_ESCAPE, 0);
}

void RunMenu(const std::function<void(HMENU)>& read)
{
    bool opened = false;
    const std::function<void(HMENU)> noted = [&](HMENU menu)
    {
        opened = true;
        read(menu);
    };
    g_readMenu = &noted;
    const UINT_PTR timer = SetTimer(nullptr, 0, 10, MenuTick);
    Command(ID_MENU_BUTTON);
    KillTimer(nullptr, timer);
    EXPECT_TRUE(opened);
}
