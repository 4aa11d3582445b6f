#include "skin/SkinScroll_win.h"

#include "skin/SkinColors.h"
#include "skin/SkinDraw_win.h"
#include "skin/SkinPaintings_win.h"

constexpr LONG kThumbInset = 3;

// Along the bar `from` to `to`, across it all.
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
        DrawPlate(dc, thumb, colour, colour, SkinColor(kSkinShadow));
}

bool DrawWindowScrollBar(HDC dc, HWND hwnd, LONG object)
{
    SCROLLBARINFO info = {};
    info.cbSize = sizeof info;
    if (!GetScrollBarInfo(hwnd, object, &info) || (info.rgstate[0] & STATE_SYSTEM_INVISIBLE))
        return false;
    RECT bar = info.rcScrollBar, origin = {};
    if (object == OBJID_CLIENT)
        MapWindowPoints(hwnd, nullptr, reinterpret_cast<POINT*>(&origin), 1);
    else
        GetWindowRect(hwnd, &origin);
    OffsetRect(&bar, -origin.left, -origin.top);

    const bool vertical =
        object == OBJID_VSCROLL ||
        (object == OBJID_CLIENT && (GetWindowLongPtrW(hwnd, GWL_STYLE) & SBS_VERT) != 0);
    const LONG length = vertical ? bar.bottom - bar.top : bar.right - bar.left;
    const bool usable = !(info.rgstate[0] & STATE_SYSTEM_UNAVAILABLE);
    const bool hot = HotWindow() == hwnd && object == OBJID_CLIENT;
    FillBox(dc, bar, SkinColor(kSkinShadow));
    if (usable && info.xyThumbBottom > info.xyThumbTop)
        DrawThumb(dc, Along(bar, vertical, info.xyThumbTop, info.xyThumbBottom), vertical,
                  hot ? SkinShade::kBarThumbHot : SkinShade::kBarThumb);
    const COLORREF arrow = StateTextColour(usable);
    DrawArrow(dc, Along(bar, vertical, 0, info.dxyLineButton),
              vertical ? ArrowTo::Up : ArrowTo::Left, arrow);
    DrawArrow(dc, Along(bar, vertical, length - info.dxyLineButton, length),
              vertical ? ArrowTo::Down : ArrowTo::Right, arrow);
    return true;
}

static bool DrawScrollBar(const SkinCall& call, HDC dc, const RECT&)
{
    return DrawWindowScrollBar(dc, call.hwnd, OBJID_CLIENT);
}

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
