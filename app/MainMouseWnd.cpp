#include "app/MainMouseWnd.h"

#include "app/AppWindows_win.h"
#include "app/FrameView_win.h"
#include "app/Frame_win.h"
#include "tools/Messages.h"

#include <windowsx.h>

#include <utility>

static ViewDrag g_drag;
static bool g_draggingPreview; // the active tool's rectangle, not the picture
static bool g_comparing;       // the right button is down over the result

// The message that came by way of WM_SETCURSOR: the ordinary one is the next of its kind, and must
// not act a second time. Its time is no help: that is known only when it is there itself.
static UINT g_forwardedMessage;

static bool IsTwin(UINT message)
{
    return std::exchange(g_forwardedMessage, 0u) == message;
}

static POINT CursorInFrame()
{
    POINT cursor;
    GetCursorPos(&cursor);
    ScreenToClient(g_hwndMain, &cursor);
    return cursor;
}

// The docker is a child of the frame, so its area is the frame's client area as well.
static bool OverDocker()
{
    POINT cursor;
    RECT docker;
    GetCursorPos(&cursor);
    GetWindowRect(g_hwndDocker, &docker);
    return PtInRect(&docker, cursor);
}

// Whether the active tool has a rectangle there that it wants to move.
static bool GrabPreview(int x, int y)
{
    return g_view.previewRect && g_hwndActiveTool &&
           SendMessageW(g_hwndActiveTool, WM_APP_PREVIEW_GRAB, 0, MAKELPARAM(x, y)) != 0;
}

static void StartPan(int x, int y)
{
    if (IsComputing() || !HasPicture(ShownPicture()))
        return;
    g_draggingPreview = GrabPreview(x, y);
    if (!g_draggingPreview)
        StartDrag(&g_drag, x, y);
    SetCapture(g_hwndMain);
    SendMessageW(g_hwndMain, WM_APP_CURSOR_MOVE, 0, 0);
    SetCursor(LoadCursorW(nullptr, MAKEINTRESOURCEW(32646)));
}

static void EndPan()
{
    if (!g_drag.active && !g_draggingPreview)
        return;
    const bool dropped = std::exchange(g_draggingPreview, false);
    ForgetDrag(&g_drag);
    SendMessageW(g_hwndMain, WM_APP_CURSOR_ARROW, 0, 0);
    if (GetCapture() == g_hwndMain)
        ReleaseCapture();
    if (dropped && g_hwndActiveTool)
        SendMessageW(g_hwndActiveTool, WM_APP_PREVIEW_DROP, 0, 0);
    else
        ViewMoved();
}

// All of the picture, and of the result where there is one: whoever fits wants to see what has
// become of the photograph.
static void ZoomToFitView()
{
    if (IsComputing())
        return;
    ForgetDrag(&g_drag);
    UpdateViewArea();
    if (!ZoomToFit(&g_view, ShownPicture()))
        return;
    if (HasPicture(FrameDocument().result))
        FrameDocument().showsSource = false;
    ZoomChanged();
}

static void Compare(bool showSource)
{
    Document& document = FrameDocument();
    if (IsComputing() || !HasPicture(document.source))
        return;
    if (showSource == g_comparing || (showSource && document.showsSource))
        return;
    g_comparing = showSource;
    if (showSource)
        SetCapture(g_hwndMain);
    else if (GetCapture() == g_hwndMain)
        ReleaseCapture();
    document.showsSource = showSource;
    RedrawView();
    ViewMoved(); // the view may have moved over the source meanwhile
}

// What a mouse message does, however it came.
static void ActOn(UINT message, int x, int y)
{
    switch (message)
    {
    case WM_LBUTTONDOWN: StartPan(x, y); break;
    case WM_LBUTTONUP: EndPan(); break;
    case WM_LBUTTONDBLCLK: ZoomToFitView(); break;
    case WM_RBUTTONDOWN: Compare(true); break;
    case WM_RBUTTONUP: Compare(false); break;
    }
}

// While a tool is open, clicks come with WM_SETCURSOR first.
static bool IsForwarded(UINT message)
{
    switch (message)
    {
    case WM_LBUTTONDOWN:
    case WM_LBUTTONUP:
    case WM_LBUTTONDBLCLK:
    case WM_RBUTTONDOWN:
    case WM_RBUTTONUP: return true;
    default: return false; // the wheel has no delta here and is left to its own message
    }
}

LRESULT OnSetCursor(HWND frame, WPARAM wParam, LPARAM lParam)
{
    if (IsComputing())
        return 0;
    const UINT message = HIWORD(lParam);
    const bool overView = HWND(wParam) == frame && LOWORD(lParam) == HTCLIENT && !OverDocker();
    g_forwardedMessage = 0;
    if (!g_hwndActiveTool)
        return DefWindowProcW(frame, WM_SETCURSOR, wParam, lParam);
    const POINT cursor = CursorInFrame();
    if (message == WM_MOUSEMOVE)
        SendMessageW(g_hwndActiveTool, WM_MOUSEMOVE, 1, MAKELPARAM(cursor.x, cursor.y));
    else if (IsForwarded(message) && overView)
    {
        g_forwardedMessage = message;
        ActOn(message, cursor.x, cursor.y);
        if (message == WM_LBUTTONDOWN)
            SetFocus(g_hwndActiveTool);
    }
    return DefWindowProcW(frame, WM_SETCURSOR, wParam, lParam);
}

static LRESULT Act(UINT message, LPARAM lParam)
{
    if (!IsTwin(message))
        ActOn(message, GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam));
    return 0;
}

LRESULT OnLeftDown(HWND frame, WPARAM, LPARAM lParam)
{
    if (!g_hwndActiveTool)
        SetFocus(frame); // away from the zoom box
    return Act(WM_LBUTTONDOWN, lParam);
}

LRESULT OnMouseMove(HWND, WPARAM, LPARAM lParam)
{
    if (g_draggingPreview && g_hwndActiveTool)
        SendMessageW(g_hwndActiveTool, WM_MOUSEMOVE, 1, lParam);
    if (!IsComputing() &&
        DragTo(&g_drag, &g_view, ShownPicture(), GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)))
    {
        if (g_hwndActiveTool && !FrameDocument().showsSource)
            SendMessageW(g_hwndActiveTool, WM_APP_VIEW_MOVING, 0, 0);
        RedrawView();
        UpdateWindow(g_hwndMain);
    }
    return 0;
}

LRESULT OnLeftUp(HWND, WPARAM, LPARAM lParam)
{
    return Act(WM_LBUTTONUP, lParam);
}

LRESULT OnCaptureLost(HWND frame, WPARAM, LPARAM lParam)
{
    if (HWND(lParam) == frame)
        return 0; // taken once more
    EndPan();
    Compare(false);
    return 0;
}

LRESULT OnDoubleClick(HWND, WPARAM, LPARAM lParam)
{
    return Act(WM_LBUTTONDBLCLK, lParam);
}

LRESULT OnRightDown(HWND, WPARAM, LPARAM lParam)
{
    return Act(WM_RBUTTONDOWN, lParam);
}

LRESULT OnRightUp(HWND, WPARAM, LPARAM lParam)
{
    return Act(WM_RBUTTONUP, lParam);
}

LRESULT OnWheel(HWND frame, WPARAM wParam, LPARAM lParam)
{
    if (IsComputing())
        return 0;
    POINT cursor = {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    ScreenToClient(frame, &cursor);
    if (ZoomAboutCursor(&g_view, ShownPicture(), GET_WHEEL_DELTA_WPARAM(wParam) > 0, cursor.x,
                        cursor.y))
        ZoomChanged();
    return 0;
}
