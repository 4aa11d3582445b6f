#include "app/MainWnd.h"

#include "app/AppWindows_win.h"
#include "app/CommandIds.h"
#include "app/CommandsWnd.h"
#include "app/DockerWnd.h"
#include "app/FrameView_win.h"
#include "app/Frame_win.h"
#include "app/MainMouseWnd.h"
#include "app/ToolMessagesWnd.h"
#include "app/ToolbarWnd.h"
#include "base/Format_win.h"
#include "skin/SkinColors_win.h"
#include "text/ProfileStore.h"
#include "text/Strings.h"
#include "tools/Messages.h"
#include "tools/Settings_win.h"

#include <commctrl.h>
#include <objbase.h>
#include <shellapi.h>

// Lives as long as the process, so that a second instance can tell a running program from one that
// has crashed: both leave the crash marker set.
static HANDLE g_instanceMutex;
static bool g_otherInstance;
static bool g_settingsUnsaved; // at the end of the run

static void WarnAboutCrash(HWND frame)
{
    if (FrameSettings().crashedLastTime != 0 && !g_otherInstance)
        MessageBoxW(frame, Text(kTextCrashedLastTime), Text(kTextWarning), MB_ICONASTERISK);
}

static LRESULT OnCreate(HWND frame, WPARAM, LPARAM)
{
    const std::wstring mutexName = VcFormatText(L"%S.Running", g_productName);
    g_instanceMutex = CreateMutexW(nullptr, FALSE, mutexName.c_str());
    g_otherInstance = GetLastError() == ERROR_ALREADY_EXISTS;
    g_closeWanted = false;

    DragAcceptFiles(frame, TRUE);
    FrameDocument() = {};
    FrameCommands() = {};
    LoadSettings(&FrameSettings());
    LoadLocalizedStrings(); // once more, now that the language is known
    WarnAboutCrash(frame);

    g_hwndStatus = CreateWindowExW(0, STATUSCLASSNAMEW, Text(kTextNothing), WS_CHILD | WS_VISIBLE,
                                   0, 0, 0, 0, frame, nullptr, g_hInst, nullptr);
    g_hwndMain = frame;
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)))
        return -1;
    const uint8_t background = GetRValue(SkinColor(COLOR_APPWORKSPACE));
    if (CreateDisplayDocument(&g_displayDocument, frame, background) != Outcome::Done)
        return -1;
    g_view.owner = frame;
    g_view.display = g_displayDocument.display;
    if (!CreateToolbar(frame))
        return -1;
    g_hwndDocker = CreateDocker(frame);
    ShowWindow(g_hwndDocker, SW_SHOW);
    g_hwndActiveTool = nullptr;
    SetUpFrameHost();
    ShowCommandStates();
    SetFocus(frame);
    return 0;
}

static LRESULT OnSize(HWND frame, WPARAM wParam, LPARAM lParam)
{
    if (!g_hwndToolbar || wParam == SIZE_MINIMIZED)
        return 0;
    SendMessageW(g_hwndStatus, WM_SIZE, wParam, lParam);
    LayoutToolbar();
    RECT client, status, toolbar;
    GetClientRect(frame, &client);
    GetWindowRect(g_hwndStatus, &status);
    GetWindowRect(g_hwndToolbar, &toolbar);
    MapWindowPoints(nullptr, frame, reinterpret_cast<POINT*>(&toolbar), 2);
    RECT docker;
    GetWindowRect(g_hwndDocker, &docker);
    MapWindowPoints(nullptr, frame, reinterpret_cast<POINT*>(&docker), 2);
    const int height = client.bottom - (status.bottom - status.top) - toolbar.bottom;
    SetWindowPos(g_hwndDocker, nullptr, docker.left, toolbar.bottom, docker.right - docker.left,
                 height, SWP_NOZORDER | SWP_NOACTIVATE);
    LayoutDocker();
    RedrawView();
    // The strips around the view: the system has erased around the place that the view had before.
    RedrawWindow(frame, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_NOCHILDREN);
    ViewMoved();
    return 0;
}

// Keeps painting off toolbar, status bar and docker, which would flicker. Only on the frame's own
// context: the toolbar has its background painted by its parent, and lends its context for that.
static void ExcludeChildren(HDC dc, HWND frame)
{
    if (WindowFromDC(dc) != frame)
        return;
    for (const HWND child : {g_hwndToolbar, g_hwndStatus, g_hwndDocker})
    {
        RECT rect;
        if (!child || !GetWindowRect(child, &rect))
            continue;
        MapWindowPoints(nullptr, frame, reinterpret_cast<POINT*>(&rect), 2);
        ExcludeClipRect(dc, rect.left, rect.top, rect.right, rect.bottom);
    }
}

static LRESULT OnPaint(HWND frame, WPARAM, LPARAM)
{
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(frame, &paint);
    ExcludeChildren(dc, frame);
    PaintView(dc, g_displayDocument, g_view);
    EndPaint(frame, &paint);
    return 0;
}

// The view covers its area by itself; only the strips around it want the background. The context
// may be the one that the view is painted on next, which must not inherit the hole.
static LRESULT OnEraseBackground(HWND frame, WPARAM wParam, LPARAM)
{
    const HDC dc = reinterpret_cast<HDC>(wParam);
    RECT client;
    GetClientRect(frame, &client);
    const CBxRect<int>& area = g_view.area;
    const int saved = SaveDC(dc);
    ExcludeChildren(dc, frame);
    ExcludeClipRect(dc, area.left, area.top, area.right, area.bottom);
    FillRect(dc, &client, SkinBrush(COLOR_BTNFACE));
    RestoreDC(dc, saved);
    return 1;
}

static LRESULT OnCommand(HWND frame, WPARAM wParam, LPARAM)
{
    const int id = LOWORD(wParam);
    if (id == ID_OPEN_EXPOSURE_FUSION || id == ID_OPEN_POWER_FUSION)
        return OnSeriesReady(id);
    return RunCommand(frame, LOWORD(wParam), HIWORD(wParam));
}

static LRESULT OnNotify(HWND frame, WPARAM wParam, LPARAM lParam)
{
    NMHDR* header = reinterpret_cast<NMHDR*>(lParam);
    if (header->code == TTN_GETDISPINFOW && GiveTooltip(header))
        return 0;
    return DefWindowProcW(frame, WM_NOTIFY, wParam, lParam);
}

static LRESULT OnDropFiles(HWND, WPARAM wParam, LPARAM)
{
    const HDROP drop = reinterpret_cast<HDROP>(wParam);
    wchar_t path[kPathChars] = L"";
    const bool mayOpen = FrameDocument().phase == DocumentPhase::Idle && MayLoseResult();
    const bool named = mayOpen && DragQueryFileW(drop, 0, path, kPathChars) > 0;
    DragFinish(drop);
    if (named)
        OpenPictureFile(path);
    return 0;
}

// While a worker runs, its pictures cannot go: it is asked to stop, and the frame closes when it
// has.
static LRESULT OnClose(HWND frame, WPARAM, LPARAM)
{
    if (!MayLoseResult())
        return 0;
    if (IsComputing())
    {
        g_closeWanted = true;
        StopJob(FrameDocument());
        return 0;
    }
    DestroyWindow(frame);
    return 0;
}

static LRESULT OnQueryEndSession(HWND, WPARAM, LPARAM)
{
    return MayLoseResult();
}

// The process may end at any moment from here on: a worker had better begin no new file.
static LRESULT OnEndSession(HWND, WPARAM ending, LPARAM)
{
    if (!ending)
        return 0;
    StopJob(FrameDocument());
    (void)SaveSettingsOnExit(&FrameSettings()); // no box may come up any more
    return 0;
}

static LRESULT OnDestroy(HWND, WPARAM, LPARAM)
{
    g_settingsUnsaved = SaveSettingsOnExit(&FrameSettings()) != Outcome::Done;
    FrameDocument() = {};
    CoUninitialize();
    ReleaseImageView(&g_view);
    ReleaseDisplayDocument(&g_displayDocument);
    if (g_instanceMutex)
        CloseHandle(g_instanceMutex);
    g_instanceMutex = nullptr;
    PostQuitMessage(0);
    return 0;
}

static const MessageRow kFrameMessages[] = {
    {WM_CREATE, OnCreate},
    {WM_SIZE, OnSize},
    {WM_PAINT, OnPaint},
    {WM_ERASEBKGND, OnEraseBackground},
    {WM_COMMAND, OnCommand},
    {WM_NOTIFY, OnNotify},
    {WM_SETCURSOR, OnSetCursor},
    {WM_LBUTTONDOWN, OnLeftDown},
    {WM_MOUSEMOVE, OnMouseMove},
    {WM_LBUTTONUP, OnLeftUp},
    {WM_CAPTURECHANGED, OnCaptureLost},
    {WM_LBUTTONDBLCLK, OnDoubleClick},
    {WM_RBUTTONDOWN, OnRightDown},
    {WM_RBUTTONUP, OnRightUp},
    {WM_MOUSEWHEEL, OnWheel},
    {WM_DROPFILES, OnDropFiles},
    {WM_CLOSE, OnClose},
    {WM_QUERYENDSESSION, OnQueryEndSession},
    {WM_ENDSESSION, OnEndSession},
    {WM_DESTROY, OnDestroy},
    {WM_APP_PREVIEW_READY, OnPreviewReady}, // numbers and meanings: Messages.h
    {WM_APP_SHOW_RESULT, OnShowResult},
    {WM_APP_RESULT_CREATED, OnResultCreated},
    {WM_APP_CURSOR_WAIT, OnCursorWait},
    {WM_APP_CURSOR_ARROW, OnCursorArrow},
    {WM_APP_CURSOR_MOVE, OnCursorMove},
    {WM_APP_SHOW_RESULT_FIT, OnShowResultFit},
    {WM_APP_TOOL_DONE, OnToolDone},
    {WM_APP_TOOL_CANCELLED, OnToolCancelled},
    {WM_APP_SERIES_CANCELLED, OnSeriesCancelled},
    {WM_APP_START_WORKER, OnStartWorker},
    {WM_APP_ZOOM_TEXT, OnZoomText},
    {WM_APP_ZOOM_TEXT_RESTORE, OnZoomTextRestore},
    {WM_APP_VIEW_REFRESH, OnViewRefresh},
};

bool RegisterMainWindowClass(HINSTANCE instance, const wchar_t* className)
{
    WNDCLASSEXW frame = {};
    frame.cbSize = sizeof frame;
    frame.style = CS_HREDRAW | CS_VREDRAW | CS_DBLCLKS;
    frame.lpfnWndProc = TableProc<kFrameMessages>;
    frame.hInstance = instance;
    frame.hIcon = LoadIconW(instance, MAKEINTRESOURCEW(IDI_PLENOVIZ));
    frame.hIconSm = static_cast<HICON>(LoadImageW(instance, MAKEINTRESOURCEW(IDI_PLENOVIZ),
                                                  IMAGE_ICON, GetSystemMetrics(SM_CXSMICON),
                                                  GetSystemMetrics(SM_CYSMICON), 0));
    frame.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));
    frame.hbrBackground = SkinScheme() ? SkinBrush(COLOR_BTNFACE) : GetSysColorBrush(COLOR_WINDOW);
    frame.lpszClassName = className;
    return RegisterClassExW(&frame) != 0;
}

bool InitInstance(HINSTANCE instance, const wchar_t* className, const wchar_t* title, int show)
{
    g_hInst = instance;
    const HWND frame = CreateWindowExW(0, className, title, WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, 0,
                                       CW_USEDEFAULT, 0, nullptr, nullptr, instance, nullptr);
    if (!frame)
        return false;
    ShowWindow(frame, show);
    UpdateWindow(frame);
    return true;
}

int RunMessageLoop(HACCEL accelerators)
{
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
    {
        if (TranslateAcceleratorW(message.hwnd, accelerators, &message))
            continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    if (g_settingsUnsaved) // now that there is nothing left that could be in the way of a log-off
        TellSettingsUnsaved(g_hwndMain);
    return int(message.wParam);
}
