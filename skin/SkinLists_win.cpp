#include "skin/SkinColors.h"
#include "skin/SkinDraw_win.h"
#include "skin/SkinPaintings_win.h"

#include <commctrl.h>

constexpr int kTextPadding = 4;

static bool DropsList(uint32_t style)
{
    return (style & 3) == CBS_DROPDOWNLIST;
}

static COLORREF ComboEdge(const SkinCall& call, bool focused)
{
    if (!call.window.enabled)
        return SkinShade::kEdgeOff;
    if (focused)
        return SkinShade::kAccent;
    return HotWindow() == call.hwnd ? SkinShade::kEdgeHot : SkinShade::kEdge;
}

// An owner-drawn box has its item drawn by whoever draws the list's.
static void DrawOwnersItem(const SkinCall& call, HDC dc, const RECT& place)
{
    DRAWITEMSTRUCT item = {};
    const LRESULT selected = SendMessageW(call.hwnd, CB_GETCURSEL, 0, 0);
    item.CtlType = ODT_COMBOBOX;
    item.CtlID = UINT(GetDlgCtrlID(call.hwnd));
    item.itemID = UINT(selected);
    item.itemAction = ODA_DRAWENTIRE;
    item.itemState = ODS_COMBOBOXEDIT | (call.window.enabled ? 0U : UINT(ODS_DISABLED));
    item.hwndItem = call.hwnd;
    item.hDC = dc;
    item.rcItem = place;
    item.itemData = ULONG_PTR(SendMessageW(call.hwnd, CB_GETITEMDATA, WPARAM(selected), 0));
    const int saved = SaveDC(dc);
    const HGDIOBJ font = SelectObject(dc, FontOf(call.hwnd));
    IntersectClipRect(dc, place.left, place.top, place.right, place.bottom);
    SetTextColor(dc, SkinColor(kSkinText));
    SetBkColor(dc, SkinColor(kSkinWindow));
    if (selected >= 0)
        SendMessageW(GetParent(call.hwnd), WM_DRAWITEM, item.CtlID,
                     reinterpret_cast<LPARAM>(&item));
    SelectObject(dc, font);
    RestoreDC(dc, saved);
}

static bool DrawCombo(const SkinCall& call, HDC dc, const RECT& client)
{
    COMBOBOXINFO info = {};
    info.cbSize = sizeof info;
    if (!GetComboBoxInfo(call.hwnd, &info))
        return false;
    const HWND focus = GetFocus();
    const bool focused = focus && (focus == call.hwnd || focus == info.hwndItem);
    const COLORREF fill = SkinColor(kSkinWindow);
    DrawPlate(dc, client, fill, ComboEdge(call, focused), SkinColor(kSkinFace));
    const bool hot = call.window.enabled && HotWindow() == call.hwnd;
    DrawArrow(dc, info.rcButton, ArrowTo::Down,
              hot ? SkinShade::kTextHot : StateTextColour(call.window.enabled));
    if (!DropsList(call.window.style))
        return true;
    if (call.window.style & (CBS_OWNERDRAWFIXED | CBS_OWNERDRAWVARIABLE))
    {
        DrawOwnersItem(call, dc, info.rcItem);
        return true;
    }
    RECT text = client;
    text.left += kTextPadding + 1;
    text.right = info.rcButton.left - 1;
    DrawLabel(dc, FontOf(call.hwnd), TextOf(call.hwnd), text,
              DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS,
              hot ? SkinShade::kTextHot : StateTextColour(call.window.enabled));
    return true;
}

bool PaintCombo(const SkinCall& call, LRESULT* answer)
{
    *answer = 0;
    if ((call.window.style & 3) == CBS_SIMPLE)
        return false;
    return PaintBuffered(call, DrawCombo);
}

static void DrawHeaderItem(HDC dc, HWND header, int index, HFONT font)
{
    wchar_t text[260] = L"";
    RECT box = {};
    HDITEMW item = {};
    item.mask = HDI_TEXT | HDI_FORMAT;
    item.pszText = text;
    item.cchTextMax = 260;
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
    wchar_t text[260] = L"";
    RECT box = {};
    TCITEMW item = {};
    item.mask = TCIF_TEXT;
    item.pszText = text;
    item.cchTextMax = 260;
    SendMessageW(tab, TCM_GETITEMRECT, WPARAM(index), reinterpret_cast<LPARAM>(&box));
    SendMessageW(tab, TCM_GETITEMW, WPARAM(index), reinterpret_cast<LPARAM>(&item));
    const COLORREF fill = SkinColor(selected ? kSkinFace : kSkinShadow);
    DrawPlate(dc, box, fill, SkinColor(kSkinHighlight), SkinColor(kSkinFace));
    if (selected)
        FillRectangle(dc, box.left + 1, box.top, box.right - box.left - 2, 2, SkinShade::kAccent);
    DrawLabel(dc, font, text, box, DT_CENTER | DT_VCENTER | DT_SINGLELINE, SkinColor(kSkinText));
}

static bool DrawTab(const SkinCall& call, HDC dc, const RECT& client)
{
    RECT page = client;
    SendMessageW(call.hwnd, TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&page));
    InflateRect(&page, 3, 3);
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
    return !(call.window.style & TCS_VERTICAL) && PaintBuffered(call, DrawTab);
}
