// Zoom, compare and layout of the frame. What a mouse does all the way from its button is part of
// the scripted run.

#include "app/DockerWnd.h"
#include "app/ToolbarWnd.h"
#include "tests/win/FrameHarness.h"
#include "tools/Messages.h"

#include <commctrl.h>

#include <cstdio>
#include <cstring>

class FrameView : public FrameTest
{
protected:
    static std::string State()
    {
        const ViewState& state = g_view.state;
        char text[200];
        std::snprintf(text, sizeof text, "%.9g of %.9g,%.9g at %g,%g", state.scale,
                      state.srcCentreX, state.srcCentreY, state.dstCentreX,
                      state.dstCentreY - g_view.area.top);
        return text;
    }
    static RECT PlaceOf(HWND window)
    {
        RECT rect;
        GetWindowRect(window, &rect);
        MapWindowPoints(nullptr, GetParent(window), reinterpret_cast<POINT*>(&rect), 2);
        return rect;
    }
};

TEST_F(FrameView, CommandsMouseAndBoxZoom)
{
    const auto enter = [](const wchar_t* text)
    {
        SetWindowTextW(g_hwndZoomCombo, text);
        SendMessageW(GetWindow(g_hwndZoomCombo, GW_CHILD), WM_CHAR, VK_RETURN, 0);
        Pump();
    };
    for (const int id : {ID_ZOOM_IN, ID_ZOOM_OUT, ID_ZOOM_FIT, ID_ZOOM_100})
        Command(id);
    EXPECT_EQ(ZoomBoxText(), L"100.0 %") << "nothing is open";

    OpenPicture("photo.png", 1996, 640);
    EXPECT_EQ(State(), "1 of 998,320 at 499,320");
    Command(ID_ZOOM_IN);
    EXPECT_EQ(ZoomBoxText(), L"120.0 %");
    Command(ID_ZOOM_OUT);
    Command(ID_ZOOM_FIT);
    EXPECT_EQ(State(), "0.5 of 998,320 at 499,320");
    EXPECT_EQ(ZoomBoxText(), L"50.0 %");
    EXPECT_EQ(ViewPixel(10, 10), Bytes({190, 190, 190})) << "above the fitted strip";
    Command(ID_ZOOM_100);
    EXPECT_EQ(State(), "1 of 998,320 at 499,320");
    Mouse(WM_LBUTTONDBLCLK, 300, 300);
    EXPECT_EQ(ZoomBoxText(), L"50.0 %");
    // One step whatever the delta; nothing counts as down.
    for (const int delta : {40, 360, -120, -1, 0})
    {
        const double scale = g_view.state.scale;
        Wheel(delta, 250, 250);
        EXPECT_NEAR(g_view.state.scale / scale, delta > 0 ? 1.2 : 1 / 1.2, 1e-12) << delta;
    }
    SendMessageW(g_hwndZoomCombo, CB_SETCURSEL, 6, 0);
    SendMessageW(g_hwndMain, WM_COMMAND, MAKEWPARAM(ID_ZOOM_COMBO, CBN_SELCHANGE),
                 reinterpret_cast<LPARAM>(g_hwndZoomCombo));
    EXPECT_EQ(ZoomBoxText(), L"400.0 %");
    EXPECT_EQ(GetFocus(), g_hwndMain);
    enter(L"abc");
    EXPECT_EQ(ZoomBoxText(), L"400.0 %");
    enter(L"1,5");
    EXPECT_EQ(ZoomBoxText(), L"10.0 %");
}

TEST_F(FrameView, EnteringTheZoomBoxSelectsItsTextAndLeavingRestoresIt)
{
    OpenPicture("photo.png", 300, 200);
    const HWND edit = GetWindow(g_hwndZoomCombo, GW_CHILD);
    SetFocus(g_hwndMain);
    SendMessageW(edit, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
    EXPECT_EQ(GetFocus(), edit);
    SendMessageW(edit, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(L"33"));
    EXPECT_EQ(ZoomBoxText(), L"33");
    SendMessageW(edit, WM_CHAR, VK_ESCAPE, 0);
    Pump();
    EXPECT_EQ(GetFocus(), g_hwndMain);
    EXPECT_EQ(ZoomBoxText(), L"100.0 %");

    // Keys that are commands work in the box; the arrows move its caret.
    SetWindowTextW(edit, L"1234567890.0 %");
    SetFocus(edit);
    EXPECT_EQ(LOWORD(SendMessageW(edit, EM_CHARFROMPOS, 0, 0)), 0) << "begins in front";
    SendMessageW(edit, EM_SETSEL, 3, 3);
    SendMessageW(edit, WM_COMMAND, MAKEWPARAM(ID_SOURCE_PREV, 1), 0);
    DWORD from = 0;
    SendMessageW(edit, EM_GETSEL, reinterpret_cast<WPARAM>(&from), 0);
    EXPECT_EQ(from, 2u);
    SendMessageW(edit, WM_COMMAND, MAKEWPARAM(ID_ZOOM_IN, 1), 0);
    EXPECT_EQ(ZoomBoxText(), L"120.0 %");
}

TEST_F(FrameView, RightButtonComparesOverAResultOnly)
{
    OpenPicture("photo.png", 900, 500);
    const Bytes source = ViewCentre(), result = {99, 99, 99};
    Mouse(WM_RBUTTONDOWN, 300, 300);
    EXPECT_NE(GetCapture(), g_hwndMain) << "nothing to compare with";
    Mouse(WM_RBUTTONUP, 300, 300);
    EXPECT_TRUE(FrameDocument().showsSource);

    MakeResult(99);
    EXPECT_EQ(ViewCentre(), result);
    for (const bool letGo : {true, false})
    {
        Mouse(WM_RBUTTONDOWN, 300, 300);
        EXPECT_EQ(ViewCentre(), source);
        if (letGo)
            Mouse(WM_RBUTTONUP, 300, 300);
        else
            ReleaseCapture(); // another window takes the mouse away
        EXPECT_EQ(ViewCentre(), result);
        EXPECT_FALSE(FrameDocument().showsSource);
    }

    // While a tool computes the mouse does nothing, and so does the zoom box.
    const std::string before = State();
    FrameDocument().phase = DocumentPhase::Computing;
    for (const UINT message : {WM_LBUTTONDOWN, WM_LBUTTONDBLCLK, WM_RBUTTONDOWN})
        Mouse(message, 300, 300);
    Mouse(WM_MOUSEMOVE, 350, 350, MK_LBUTTON);
    Wheel(120, 300, 300);
    SendMessageW(g_hwndMain, WM_APP_ZOOM_TEXT, 0, 0);
    EXPECT_EQ(State(), before);
    EXPECT_EQ(ViewCentre(), result);
}

TEST_F(FrameView, DockerTakesTheWidestWindow)
{
    const auto child = [](int width, int height)
    {
        return CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE, 0, 0, width, height,
                               g_hwndDocker, nullptr, nullptr, nullptr);
    };
    const auto left = [] { return PlaceOf(g_hwndDocker).left; };
    OpenPicture("photo.png", 64, 48);
    EXPECT_EQ(left(), 998);
    const HWND first = child(200, 100), second = child(260, 50);
    DockWindow(first);
    DockWindow(second);
    EXPECT_EQ(left(), 738);
    EXPECT_EQ(PlaceOf(g_hwndDocker).right, 999);
    EXPECT_EQ(PlaceOf(second).left, 1);
    EXPECT_EQ(PlaceOf(second).top, 100);
    Command(ID_ZOOM_FIT);
    EXPECT_EQ(g_view.area.right, 738);
    SetClientSize(900, 600);
    EXPECT_EQ(left(), 638);
    EXPECT_EQ(PlaceOf(g_hwndDocker).top, PlaceOf(g_hwndToolbar).bottom);
    EXPECT_EQ(PlaceOf(g_hwndDocker).bottom, PlaceOf(g_hwndStatus).top);
    UndockWindow(second);
    EXPECT_EQ(left(), 698);
    UndockWindow(first);
    EXPECT_EQ(left(), 898);
    Command(ID_ZOOM_FIT);
    EXPECT_EQ(g_view.area.right, 898);
    EXPECT_EQ(g_view.area.top, ToolbarClientHeight() + 3);
    EXPECT_EQ(g_view.area.bottom, 577);

    // The zoom group ends at the right edge, its box lies over its place.
    for (const int width : {700, 1000, 850})
    {
        SetClientSize(width, 600);
        RECT item;
        SendMessageW(g_hwndToolbar, TB_GETITEMRECT, 17, reinterpret_cast<LPARAM>(&item));
        EXPECT_NEAR(item.right, width, 2) << width;
        SendMessageW(g_hwndToolbar, TB_GETITEMRECT, 16, reinterpret_cast<LPARAM>(&item));
        const RECT box = PlaceOf(g_hwndZoomCombo);
        EXPECT_EQ(box.left, item.left + 5);
        EXPECT_EQ(box.top, item.top + 4);
        EXPECT_EQ(box.right, item.right - 5);
    }
}

// The toolbar lets its parent paint the background into its own context, where no child is in the
// way. In the frame's context the children are left alone.
TEST_F(FrameView, PaintsTheToolbarsBackground)
{
    const HDC screen = GetDC(nullptr), dc = CreateCompatibleDC(screen);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, 100, 20);
    const HGDIOBJ previous = SelectObject(dc, bitmap);
    SetPixel(dc, 50, 10, RGB(1, 2, 3));
    EXPECT_TRUE(SendMessageW(g_hwndMain, WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc), 0));
    EXPECT_EQ(GetPixel(dc, 50, 10), GetSysColor(COLOR_BTNFACE));
    const HRGN clipping = CreateRectRgn(0, 0, 1, 1);
    EXPECT_EQ(GetClipRgn(dc, clipping), 0) << "the view is painted next";
    DeleteObject(clipping);
    SelectObject(dc, previous);
    DeleteObject(bitmap);
    DeleteDC(dc);
    ReleaseDC(nullptr, screen);
}

// Numbers between the tools' messages belong to nobody.
TEST_F(FrameView, MessagesDoWhatTheirNumbersSay)
{
    OpenPicture("photo.png", 900, 500);
    MakeResult(99);
    const std::string state = State() + Enabled();
    for (const UINT id : {4253u, 4254u, 4256u, 4262u, 4265u, 4268u, 4272u, 4274u})
    {
        EXPECT_EQ(SendMessageW(g_hwndMain, id, 0, 0), 0) << id;
        EXPECT_EQ(State() + Enabled(), state) << id;
        EXPECT_EQ(ViewCentre(), Bytes({99, 99, 99})) << id;
    }
    for (const auto& [id, cursor] :
         {std::pair(WM_APP_CURSOR_WAIT, 32514), std::pair(WM_APP_CURSOR_MOVE, 32646),
          std::pair(WM_APP_CURSOR_ARROW, 32512)})
    {
        SendMessageW(g_hwndMain, id, 0, 0);
        EXPECT_EQ(reinterpret_cast<HCURSOR>(GetClassLongPtrW(g_hwndMain, GCLP_HCURSOR)),
                  LoadCursorW(nullptr, MAKEINTRESOURCEW(cursor)));
    }
    FrameDocument().unsaved = false;
    SendMessageW(g_hwndMain, WM_APP_RESULT_CREATED, 0, 0);
    EXPECT_TRUE(FrameDocument().unsaved);

    // The preview is the source still: cancelling brings it back.
    FrameDocument().phase = DocumentPhase::ToolOpen;
    SendMessageW(g_hwndMain, WM_APP_TOOL_CANCELLED, 0, 0);
    EXPECT_FALSE(FrameDocument().unsaved || FrameDocument().showsSource);
    EXPECT_EQ(FrameDocument().phase, DocumentPhase::Idle);
    ExpectSamePicture(FrameDocument().result, FrameDocument().source);

    std::memset(FrameDocument().preview->data, 33, size_t(FrameDocument().preview->size));
    SendMessageW(g_hwndMain, WM_APP_PREVIEW_READY, 0, 0);
    EXPECT_EQ(ViewCentre(), Bytes({33, 33, 33}));
    Command(ID_ZOOM_IN);
    EXPECT_EQ(ViewCentre(), Bytes({33, 33, 33})) << "zooming keeps the preview";
    SendMessageW(g_hwndMain, WM_APP_SHOW_RESULT, 0, 0);
    EXPECT_NE(ViewCentre(), Bytes({33, 33, 33}));
}
