// The system tells where a scroll bar is and what it scrolls. Where the thumb
// goes is a rule of our own (PlaceThumb), so that what is painted follows from
// range and position alone.

#include "skin/SkinScroll_win.h"

#include "skin/SkinColors_win.h"
#include "skin/SkinDraw_win.h"

#include <commctrl.h>

#include <algorithm>

constexpr LONG kThumbInset = 3; // the thumb is narrower than the bar by this on either side
constexpr int kUpDownArrow = 5; // an up-down control is half as high as a scroll bar's button

// The part of the bar between two places along it.
static RECT Along(const RECT& bar, bool vertical, LONG from, LONG to)
{
    if (vertical)
        return {bar.left, bar.top + from, bar.right, bar.top + to};
    return {bar.left + from, bar.top, bar.left + to, bar.bottom};
}

static void DrawThumb(HDC dc, RECT thumb, bool vertical, COLORREF colour)
{
    if (vertical)
        InflateRect(&thumb, -kThumbInset, -1);
    else
        InflateRect(&thumb, -1, -kThumbInset);
    if (thumb.right > thumb.left && thumb.bottom > thumb.top)
        DrawRoundedBox(dc, thumb, colour, colour, SkinColor(kSkinShadow));
}

static bool IsVertical(HWND hwnd, LONG object)
{
    if (object != OBJID_CLIENT)
        return object == OBJID_VSCROLL;
    return (GetWindowLongPtrW(hwnd, GWL_STYLE) & SBS_VERT) != 0;
}

static int BarOf(LONG object)
{
    if (object == OBJID_CLIENT)
        return SB_CTL;
    return object == OBJID_VSCROLL ? SB_VERT : SB_HORZ;
}

static ScrollRange RangeOf(HWND hwnd, LONG object)
{
    SCROLLINFO info = {};
    info.cbSize = sizeof info;
    info.fMask = SIF_ALL;
    if (!GetScrollInfo(hwnd, BarOf(object), &info))
        return {0, 0, 1, 0};
    return {info.nMin, info.nMax, int(info.nPage), info.nPos};
}

// From screen coordinates into those that are painted in.
static RECT BarInWindow(HWND hwnd, LONG object, RECT bar)
{
    RECT origin = {};
    if (object == OBJID_CLIENT)
        MapWindowPoints(hwnd, nullptr, reinterpret_cast<POINT*>(&origin), 1);
    else
        GetWindowRect(hwnd, &origin);
    OffsetRect(&bar, -origin.left, -origin.top);
    return bar;
}

bool DrawWindowScrollBar(HDC dc, HWND hwnd, LONG object)
{
    SCROLLBARINFO info = {};
    info.cbSize = sizeof info;
    if (!GetScrollBarInfo(hwnd, object, &info) || (info.rgstate[0] & STATE_SYSTEM_INVISIBLE))
        return false;
    const RECT bar = BarInWindow(hwnd, object, info.rcScrollBar);
    const bool vertical = IsVertical(hwnd, object);
    const int length = vertical ? bar.bottom - bar.top : bar.right - bar.left;
    // The arrows' squares shrink when the bar is too short for both.
    const int button =
        std::min(length / 2, GetSystemMetrics(vertical ? SM_CYVSCROLL : SM_CXHSCROLL));
    const bool usable = !(info.rgstate[0] & STATE_SYSTEM_UNAVAILABLE);
    const bool hot = HotWindow() == hwnd && object == OBJID_CLIENT;
    const ThumbPlace thumb = PlaceThumb(RangeOf(hwnd, object), length, button);
    FillBox(dc, bar, SkinColor(kSkinShadow));
    if (usable && thumb.end > thumb.start)
        DrawThumb(dc, Along(bar, vertical, thumb.start, thumb.end), vertical,
                  hot ? SkinShade::kBarThumbHot : SkinShade::kBarThumb);
    const COLORREF arrow = StateTextColour(usable);
    DrawArrow(dc, Along(bar, vertical, 0, button), vertical ? ArrowTo::Up : ArrowTo::Left, arrow);
    DrawArrow(dc, Along(bar, vertical, length - button, length),
              vertical ? ArrowTo::Down : ArrowTo::Right, arrow);
    return true;
}

static bool DrawScrollBar(const SkinCall& call, HDC dc, const RECT&)
{
    return DrawWindowScrollBar(dc, call.hwnd, OBJID_CLIENT);
}

// The corner between two scroll bars is a scroll bar too, by its class.
static bool DrawGripBox(const SkinCall&, HDC dc, const RECT& client)
{
    FillBox(dc, client, SkinColor(kSkinFace));
    DrawSizeGrip(dc, client);
    return true;
}

bool PaintScrollBar(const SkinCall& call, LRESULT* answer)
{
    *answer = 0;
    const bool grip = (call.window.style & (SBS_SIZEBOX | SBS_SIZEGRIP)) != 0;
    return PaintBuffered(call, grip ? DrawGripBox : DrawScrollBar);
}

static bool DrawUpDown(const SkinCall& call, HDC dc, const RECT& client)
{
    const bool horizontal = (call.window.style & UDS_HORZ) != 0;
    RECT first = client, second = client;
    if (horizontal)
        first.right = second.left = client.right / 2;
    else
        first.bottom = second.top = client.bottom / 2;
    const COLORREF arrow = StateTextColour(call.window.enabled);
    for (const RECT& box : {first, second})
        DrawRoundedBox(dc, box, SkinShade::kButton, SkinShade::kEdge, SkinColor(kSkinFace));
    DrawArrow(dc, first, horizontal ? ArrowTo::Left : ArrowTo::Up, arrow, kUpDownArrow);
    DrawArrow(dc, second, horizontal ? ArrowTo::Right : ArrowTo::Down, arrow, kUpDownArrow);
    return true;
}

bool PaintUpDown(const SkinCall& call, LRESULT* answer)
{
    *answer = 0;
    return PaintBuffered(call, DrawUpDown);
}
