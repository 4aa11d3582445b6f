// Both are rows of items whose places and texts the control tells one by one.
// Tabs are painted as a whole rather than as owner-drawn items, since the frame
// of the page belongs to the control too.

#include "skin/SkinTabs_win.h"

#include "skin/SkinColors_win.h"
#include "skin/SkinDraw_win.h"

#include <commctrl.h>

constexpr int kTextRoom = 260; // longer texts are cut, as the system does

static void DrawHeaderItem(HDC dc, HWND header, int index, HFONT font)
{
    wchar_t text[kTextRoom] = L"";
    RECT box = {};
    HDITEMW item = {};
    item.mask = HDI_TEXT | HDI_FORMAT;
    item.pszText = text;
    item.cchTextMax = kTextRoom;
    SendMessageW(header, HDM_GETITEMRECT, WPARAM(index), reinterpret_cast<LPARAM>(&box));
    SendMessageW(header, HDM_GETITEMW, WPARAM(index), reinterpret_cast<LPARAM>(&item));
    FillRectangle(dc, box.right - 1, box.top + 3, 1, box.bottom - box.top - 6,
                  SkinColor(kSkinHighlight));
    InflateRect(&box, -6, 0);
    const UINT align = (item.fmt & HDF_JUSTIFYMASK) == HDF_RIGHT    ? UINT(DT_RIGHT)
                       : (item.fmt & HDF_JUSTIFYMASK) == HDF_CENTER ? UINT(DT_CENTER)
                                                                    : UINT(DT_LEFT);
    DrawLabel(dc, font, text, box,
              align | DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS,
              SkinColor(kSkinText));
}

static bool DrawHeader(const SkinCall& call, HDC dc, const RECT& client)
{
    FillBox(dc, client, SkinColor(kSkinFace));
    FillRectangle(dc, 0, client.bottom - 1, client.right, 1, SkinColor(kSkinDarkShadow));
    const int count = int(SendMessageW(call.hwnd, HDM_GETITEMCOUNT, 0, 0));
    const HFONT font = FontOf(call.hwnd);
    for (int i = 0; i < count; ++i)
        DrawHeaderItem(dc, call.hwnd, i, font);
    return true;
}

bool PaintHeader(const SkinCall& call, LRESULT* answer)
{
    *answer = 0;
    return PaintBuffered(call, DrawHeader);
}

static void DrawTabItem(HDC dc, HWND tab, int index, bool selected, HFONT font)
{
    wchar_t text[kTextRoom] = L"";
    RECT box = {};
    TCITEMW item = {};
    item.mask = TCIF_TEXT;
    item.pszText = text;
    item.cchTextMax = kTextRoom;
    SendMessageW(tab, TCM_GETITEMRECT, WPARAM(index), reinterpret_cast<LPARAM>(&box));
    SendMessageW(tab, TCM_GETITEMW, WPARAM(index), reinterpret_cast<LPARAM>(&item));
    const COLORREF fill = SkinColor(selected ? kSkinFace : kSkinShadow);
    DrawRoundedBox(dc, box, fill, SkinColor(kSkinHighlight), SkinColor(kSkinFace));
    if (selected)
        FillRectangle(dc, box.left + 1, box.top, box.right - box.left - 2, 2, SkinShade::kAccent);
    DrawLabel(dc, font, text, box, DT_CENTER | DT_VCENTER | DT_SINGLELINE, SkinColor(kSkinText));
}

// The frame goes around the page, below the tabs.
static bool DrawTab(const SkinCall& call, HDC dc, const RECT& client)
{
    RECT page = client;
    SendMessageW(call.hwnd, TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&page));
    InflateRect(&page, 3,
                3); // what the system keeps free around the page's contents
    FillBox(dc, client, SkinColor(kSkinFace));
    FrameBox(dc, page, SkinColor(kSkinHighlight));
    const int count = int(SendMessageW(call.hwnd, TCM_GETITEMCOUNT, 0, 0));
    const int selected = int(SendMessageW(call.hwnd, TCM_GETCURSEL, 0, 0));
    for (int i = 0; i < count; ++i)
        DrawTabItem(dc, call.hwnd, i, i == selected, FontOf(call.hwnd));
    return true;
}

bool PaintTab(const SkinCall& call, LRESULT* answer)
{
    *answer = 0;
    // Texts that run upwards are the system's to draw.
    return !(call.window.style & TCS_VERTICAL) && PaintBuffered(call, DrawTab);
}
