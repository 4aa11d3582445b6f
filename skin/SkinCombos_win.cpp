// A combo box is an edge around a field with an arrow. The field is a child
// that paints itself, or, when there is nothing to type, is drawn here: by the
// skin, or by whoever draws the items of the list. Items that the system's
// dialogs draw come in the system's colours and are darkened.

#include "skin/SkinCombos_win.h"

#include "skin/SkinColors_win.h"
#include "skin/SkinDraw_win.h"
#include "skin/SkinSubclass_win.h"

#include <commctrl.h>

#include <algorithm>

constexpr int kTextPadding = 4;
constexpr int kGreyish = 24; // levels between the colours of a pixel without much colour

// Simple (an edit above a list), dropdown (an edit) or dropdown list (no edit).
static uint32_t ComboType(uint32_t style)
{
    return style & 3;
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

// What holds a control has a white background, seen until the control has been
// painted.
bool FillWithWindowColour(const SkinCall& call, LRESULT* answer)
{
    RECT client;
    GetClientRect(call.hwnd, &client);
    FillBox(reinterpret_cast<HDC>(call.wParam), client, SkinColor(kSkinWindow));
    *answer = 1;
    return true;
}

// Grey levels of a picture in the system's light colours, put between the
// scheme's field and text.
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

// The dialog is given a bitmap to draw its item on, which is darkened and
// shown. Selected items are left alone: their background is the accent of the
// system, which is no grey.
bool DrawForeignItem(const SkinCall& call, LRESULT* answer)
{
    const DRAWITEMSTRUCT& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(call.lParam);
    const int width = item.rcItem.right - item.rcItem.left;
    const int height = item.rcItem.bottom - item.rcItem.top;
    const bool selected = (item.itemState & ODS_SELECTED) && !(item.itemState & ODS_COMBOBOXEDIT);
    if (selected || call.window.kind != SkinClass::Dialog || width <= 0 || height <= 0)
        return false;
    const SkinPixels copy(item.hDC, width, height);
    if (!copy.pixels)
        return false;
    const HGDIOBJ font = SelectObject(copy.dc, FontOf(item.hwndItem));
    const RECT box = {0, 0, width, height};
    DRAWITEMSTRUCT moved = item;
    moved.hDC = copy.dc;
    moved.rcItem = box;
    FillRect(copy.dc, &box, GetSysColorBrush(COLOR_WINDOW));
    *answer = CallPrevious(call.hwnd, call.message, call.wParam, reinterpret_cast<LPARAM>(&moved));
    GdiFlush();
    DarkenPixels(copy.pixels, size_t(width) * size_t(height));
    BitBlt(item.hDC, item.rcItem.left, item.rcItem.top, width, height, copy.dc, 0, 0, SRCCOPY);
    SelectObject(copy.dc, font);
    return true;
}

static bool DrawCombo(const SkinCall& call, HDC dc, const RECT& client)
{
    COMBOBOXINFO info = {};
    info.cbSize = sizeof info;
    if (!GetComboBoxInfo(call.hwnd, &info))
        return false;
    const HWND focus = GetFocus();
    const bool focused = focus && (focus == call.hwnd || focus == info.hwndItem);
    if (ComboType(call.window.style) == CBS_SIMPLE)
    {
        RECT field = info.rcItem;
        InflateRect(&field, 2, 2);
        FillBox(dc, client, SkinColor(kSkinFace));
        DrawRoundedBox(dc, field, SkinColor(kSkinWindow), ComboEdge(call, focused),
                       SkinColor(kSkinFace));
        return true;
    }
    DrawRoundedBox(dc, client, SkinColor(kSkinWindow), ComboEdge(call, focused),
                   SkinColor(kSkinFace));
    const bool hot = call.window.enabled && HotWindow() == call.hwnd;
    DrawArrow(dc, info.rcButton, ArrowTo::Down,
              hot ? SkinShade::kTextHot : StateTextColour(call.window.enabled));
    if (ComboType(call.window.style) != CBS_DROPDOWNLIST)
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
