// The controls keep what they show (range and position, channel and thumb,
// parts and texts), and tell it by messages; so nothing is remembered here, and
// each painting asks anew.

#include "skin/SkinBars_win.h"

#include "skin/SkinColors_win.h"
#include "skin/SkinDraw_win.h"

#include <commctrl.h>

#include <algorithm>

// A piece of a quarter's length that runs through the bar every two seconds,
// while nobody knows how much is done. The control has itself painted again and
// again; the clock says where the piece is.
static RECT MarqueeChunk(const RECT& bar)
{
    constexpr ULONGLONG kRoundMs = 2000;
    const int width = bar.right - bar.left, chunk = width / 4;
    const int travelled = MulDiv(width + chunk, int(GetTickCount64() % kRoundMs), int(kRoundMs));
    const LONG left = bar.left + travelled - chunk;
    return {std::max(left, bar.left), bar.top, std::min(left + chunk, bar.right), bar.bottom};
}

static bool DrawProgress(const SkinCall& call, HDC dc, const RECT& client)
{
    PBRANGE range = {};
    SendMessageW(call.hwnd, PBM_GETRANGE, TRUE, reinterpret_cast<LPARAM>(&range));
    const int position = int(SendMessageW(call.hwnd, PBM_GETPOS, 0, 0));
    FillBox(dc, client, SkinShade::kGroove);
    // A border is painted with the frame.
    if (!(call.window.style & WS_BORDER))
        DrawRoundedBox(dc, client, SkinShade::kGroove, SkinShade::kEdge, SkinColor(kSkinFace));
    RECT done = client;
    InflateRect(&done, -1, -1);
    const int span = std::max(range.iHigh - range.iLow, 1);
    const int at = std::clamp(position - range.iLow, 0, span);
    if (call.window.style & PBS_MARQUEE)
        done = MarqueeChunk(done);
    else if (call.window.style & PBS_VERTICAL)
        done.top = done.bottom - MulDiv(done.bottom - done.top, at, span);
    else
        done.right = done.left + MulDiv(done.right - done.left, at, span);
    FillBox(dc, done, SkinShade::kAccent);
    return true;
}

bool PaintProgress(const SkinCall& call, LRESULT* answer)
{
    *answer = 0;
    return PaintBuffered(call, DrawProgress);
}

// The thumb is a disc: with a ring around it when it has the focus, and hollow
// when it is disabled.
constexpr int kGrooveHeight = 4;
constexpr float kThumbRadius = 5.5f, kRingRadius = 7.0f, kHoleRadius = 3.5f;

// The groove, its lit part, and the middle of the thumb.
struct TrackPlaces
{
    RECT groove, lit;
    float x, y;
};

static TrackPlaces PlaceTrack(bool vertical, RECT channel, const RECT& thumb, const RECT& client)
{
    // Some systems give the channel of a vertical bar lying down.
    if (vertical && channel.right - channel.left > channel.bottom - channel.top)
        channel = {channel.top, channel.left, channel.bottom, channel.right};
    TrackPlaces places = {};
    const LONG across = ((vertical ? client.right : client.bottom) - kGrooveHeight) / 2;
    if (vertical)
    {
        places.groove = {across, channel.top, across + kGrooveHeight, channel.bottom};
        places.lit = places.groove;
        places.lit.bottom = (thumb.top + thumb.bottom) / 2;
    }
    else
    {
        places.groove = {channel.left, across, channel.right, across + kGrooveHeight};
        places.lit = places.groove;
        places.lit.right = (thumb.left + thumb.right) / 2;
    }
    places.x = float(vertical ? client.right : thumb.left + thumb.right) / 2.0f;
    places.y = float(vertical ? thumb.top + thumb.bottom : client.bottom) / 2.0f;
    return places;
}

// The groove is lit up to the thumb. While it is dragged, the mouse may be
// anywhere: the capture says that the thumb is still the one to light up.
static bool DrawTrackbar(const SkinCall& call, HDC dc, const RECT& client)
{
    RECT channel = {}, thumb = {};
    SendMessageW(call.hwnd, TBM_GETCHANNELRECT, 0, reinterpret_cast<LPARAM>(&channel));
    SendMessageW(call.hwnd, TBM_GETTHUMBRECT, 0, reinterpret_cast<LPARAM>(&thumb));
    if (IsRectEmpty(&thumb))
        return false;
    const bool enabled = call.window.enabled;
    const bool hot = HotWindow() == call.hwnd || GetCapture() == call.hwnd;
    const bool vertical = (call.window.style & TBS_VERT) != 0;
    const TrackPlaces places = PlaceTrack(vertical, channel, thumb, client);

    FillRect(dc, &client, ParentBrush(call.hwnd, dc));
    DrawRoundedBox(dc, places.groove, SkinShade::kGroove, SkinShade::kGroove, SkinColor(kSkinFace));
    const COLORREF light = enabled ? SkinShade::kAccent : SkinShade::kEdgeOff;
    if (!IsRectEmpty(&places.lit))
        DrawRoundedBox(dc, places.lit, light, light, SkinColor(kSkinFace));
    if (GetFocus() == call.hwnd && enabled)
        DrawDisc(dc, places.x, places.y, kRingRadius, SkinShade::kAccent);
    DrawDisc(dc, places.x, places.y, kThumbRadius,
             enabled ? (hot ? SkinShade::kThumbHot : SkinShade::kThumb) : SkinShade::kThumbOff);
    if (!enabled)
        DrawDisc(dc, places.x, places.y, kHoleRadius, SkinColor(kSkinFace));
    return true;
}

// The control asks for the places of its thumb alone to be painted when that moves; the lit part
// between them changes as well.
bool PaintTrackbar(const SkinCall& call, LRESULT* answer)
{
    *answer = 0;
    if (!call.wParam) // not for a picture of it
        InvalidateRect(call.hwnd, nullptr, FALSE);
    return PaintBuffered(call, DrawTrackbar);
}

constexpr int kMaxParts = 256; // the most that a status bar takes

// A status bar is divided into parts, or "simple" while it shows one text for
// all.

static void DrawStatusPart(HDC dc, HWND bar, int part, bool simple, HFONT font)
{
    RECT box = {};
    if (simple)
        GetClientRect(bar, &box);
    else
        SendMessageW(bar, SB_GETRECT, WPARAM(part), reinterpret_cast<LPARAM>(&box));
    const WPARAM from = simple ? WPARAM(SB_SIMPLEID) : WPARAM(part);
    const LRESULT length = SendMessageW(bar, SB_GETTEXTLENGTHW, from, 0);
    std::wstring text(size_t(LOWORD(length)) + 1, L'\0');
    SendMessageW(bar, SB_GETTEXTW, from, reinterpret_cast<LPARAM>(text.data()));
    text.resize(LOWORD(length));
    InflateRect(&box, -6, 0);
    DrawLabel(dc, font, text, box, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS,
              SkinColor(kSkinText));
}

static bool DrawStatusBar(const SkinCall& call, HDC dc, const RECT& client)
{
    FillBox(dc, client, SkinColor(kSkinFace));
    FillRectangle(dc, 0, 0, client.right, 1, SkinColor(kSkinShadow));
    const HFONT font = FontOf(call.hwnd);
    const bool simple = SendMessageW(call.hwnd, SB_ISSIMPLE, 0, 0) != 0;
    int ends[kMaxParts];
    const LRESULT parts =
        simple ? 1
               : SendMessageW(call.hwnd, SB_GETPARTS, kMaxParts, reinterpret_cast<LPARAM>(ends));
    for (int i = 0; i < int(parts); ++i)
        DrawStatusPart(dc, call.hwnd, i, simple, font);
    // A window that fills the screen cannot be sized.
    const bool sizes = (call.window.style & SBARS_SIZEGRIP) != 0;
    if (sizes && !IsZoomed(GetAncestor(call.hwnd, GA_ROOT)))
        DrawSizeGrip(dc, client);
    return true;
}

bool PaintStatusBar(const SkinCall& call, LRESULT* answer)
{
    *answer = 0;
    return PaintBuffered(call, DrawStatusBar);
}
