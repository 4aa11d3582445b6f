// However wide the system has made an edge, it becomes one line, and what
// remains of it takes the colour of the inside. Nothing changes its size, so no
// control has to be laid out again.

#include "skin/SkinFrames_win.h"

#include "skin/SkinColors_win.h"
#include "skin/SkinDraw_win.h"
#include "skin/SkinMenus_win.h"
#include "skin/SkinScroll_win.h"
#include "skin/SkinSubclass_win.h"

// Client area and, in `window`, the whole window, both in coordinates of the
// window's upper left corner, as a window context has them.
static RECT ClientInWindow(HWND hwnd, RECT* window)
{
    RECT client;
    GetWindowRect(hwnd, window);
    GetClientRect(hwnd, &client);
    MapWindowPoints(hwnd, nullptr, reinterpret_cast<POINT*>(&client), 2);
    OffsetRect(&client, -window->left, -window->top);
    OffsetRect(window, -window->left, -window->top);
    return client;
}

static COLORREF InnerColour(const SkinCall& call)
{
    switch (call.window.kind)
    {
    case SkinClass::Static:
    case SkinClass::Toolbar: return SkinColor(kSkinFace);
    case SkinClass::Progress: return SkinShade::kGroove;
    default: return SkinColor(kSkinWindow);
    }
}

static COLORREF EdgeColour(const SkinCall& call)
{
    if (call.window.kind == SkinClass::Toolbar)
        return SkinColor(kSkinShadow);
    if (GetFocus() == call.hwnd)
        return SkinShade::kAccent;
    return call.window.enabled ? SkinShade::kEdge : SkinShade::kEdgeOff;
}

bool PaintFrame(const SkinCall& call, LRESULT* answer)
{
    RECT window;
    RECT inner = ClientInWindow(call.hwnd, &window);
    const bool vertical = (call.window.style & WS_VSCROLL) != 0;
    const bool horizontal = (call.window.style & WS_HSCROLL) != 0;
    if (EqualRect(&inner, &window))
        return false; // no edge
    const HDC dc = GetWindowDC(call.hwnd);
    if (!dc)
        return false;
    const int saved = SaveDC(dc);
    ExcludeClipRect(dc, inner.left, inner.top, inner.right, inner.bottom);
    FillBox(dc, window, InnerColour(call));
    if (vertical)
        DrawWindowScrollBar(dc, call.hwnd, OBJID_VSCROLL);
    if (horizontal)
        DrawWindowScrollBar(dc, call.hwnd, OBJID_HSCROLL);
    // Last, since scroll bars reach up to the edge.
    FrameBox(dc, window, EdgeColour(call));
    RestoreDC(dc, saved);
    ReleaseDC(call.hwnd, dc);
    *answer = 0;
    return true;
}

// Around the items, which are drawn one by one. Some systems count this as
// client area, some do not; so the place of the items is asked for, and the
// same is done for either message.
bool PaintMenuFrame(const SkinCall& call, LRESULT* answer)
{
    // The system goes first: it lays the items out and has them drawn.
    *answer = CallPrevious(call.hwnd, call.message, call.wParam, call.lParam);
    RECT window, screen, items;
    ClientInWindow(call.hwnd, &window);
    GetWindowRect(call.hwnd, &screen);
    if (!MenuItemsPlace(call.hwnd, &items))
        return true;
    OffsetRect(&items, -screen.left, -screen.top);
    const HDC dc = GetWindowDC(call.hwnd);
    if (!dc)
        return true;
    ExcludeClipRect(dc, items.left, items.top, items.right, items.bottom);
    FillBox(dc, window, SkinColor(kSkinMenu));
    FrameBox(dc, window, SkinShade::kMenuEdge);
    ReleaseDC(call.hwnd, dc);
    return true;
}
