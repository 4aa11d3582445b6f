#include "skin/SkinColors.h"
#include "skin/SkinDraw_win.h"
#include "skin/SkinPaintings_win.h"

#include "skin/SkinSubclass_win.h"

#include <commctrl.h>

#include <algorithm>

constexpr int kTextPadding = 4;
constexpr int kGreyish = 24; // levels between the colours of a pixel without much colour

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

// What holds a control has a white background, seen until the control has been painted.
bool FillWithWindowColour(const SkinCall& call, LRESULT* answer)
{
    RECT client;
    GetClientRect(call.hwnd, &client);
    FillBox(reinterpret_cast<HDC>(call.wParam), client, SkinColor(kSkinWindow));
    *answer = 1;
    return true;
}

// Grey levels of a picture in the system's light colours, put between the scheme's field and text.
static void DarkenPixels(uint32_t* pixels, size_t count)
{
    const int field = GetRValue(SkinColor(kSkinWindow)), text = GetRValue(SkinColor(kSkinText));
    for (size_t i = 0; i < count; ++i)
    {
        const int red = int(pixels[i] >> 16 & 0xFF), green = int(pixels[i] >> 8 & 0xFF);
        const int blue = int(pixels[i] & 0xFF);
        const auto [low, high] = std::minmax({red, green, blue});
        if (high - low > kGreyish)
            continue; // of an icon, or of the selection
        const int grey = field + (255 - green) * (text - field) / 255;
        pixels[i] = uint32_t(grey) * 0x010101U;
    }
}

// Items of lists that the system's dialogs draw themselves, always in the system's colours.
bool DrawForeignItem(const SkinCall& call, LRESULT* answer)
{
    const DRAWITEMSTRUCT& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(call.lParam);
    const int width = item.rcItem.right - item.rcItem.left;
    const int height = item.rcItem.bottom - item.rcItem.top;
    const bool selected = (item.itemState & ODS_SELECTED) && !(item.itemState & ODS_COMBOBOXEDIT);
    if (item.CtlType != ODT_COMBOBOX || selected || call.window.kind != SkinClass::Dialog ||
        width <= 0 || height <= 0)
        return false;
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof info.bmiHeader, width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    const HDC dc = CreateCompatibleDC(item.hDC);
    const HBITMAP bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (bitmap)
    {
        const HGDIOBJ before = SelectObject(dc, bitmap);
        const HGDIOBJ font = SelectObject(dc, FontOf(item.hwndItem));
        const RECT box = {0, 0, width, height};
        DRAWITEMSTRUCT copy = item;
        copy.hDC = dc;
        copy.rcItem = box;
        FillRect(dc, &box, GetSysColorBrush(COLOR_WINDOW));
        *answer =
            CallPrevious(call.hwnd, call.message, call.wParam, reinterpret_cast<LPARAM>(&copy));
        GdiFlush();
        DarkenPixels(static_cast<uint32_t*>(bits), size_t(width) * size_t(height));
        BitBlt(item.hDC, item.rcItem.left, item.rcItem.top, width, height, dc, 0, 0, SRCCOPY);
        SelectObject(dc, font);
        SelectObject(dc, before);
        DeleteObject(bitmap);
    }
    DeleteDC(dc);
    return bitmap != nullptr;
}

static bool DrawCombo(const SkinCall& call, HDC dc, const RECT& client)
{
    COMBOBOXINFO info = {};
    info.cbSize = sizeof info;
    if (!GetComboBoxInfo(call.hwnd, &info))
        return false;
    const HWND focus = GetFocus();
    const bool focused = focus && (focus == call.hwnd || focus == info.hwndItem);
    if ((call.window.style & 3) == CBS_SIMPLE)
    {
        RECT field = info.rcItem;
        InflateRect(&field, 2, 2);
        FillBox(dc, client, SkinColor(kSkinFace));
        DrawPlate(dc, field, SkinColor(kSkinWindow), ComboEdge(call, focused),
                  SkinColor(kSkinFace));
        return true;
    }
    DrawPlate(dc, client, SkinColor(kSkinWindow), ComboEdge(call, focused), SkinColor(kSkinFace));
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
