#include "skin/SkinBrushes_win.h"
#include "skin/SkinColors.h"
#include "skin/SkinDraw_win.h"
#include "skin/SkinImages_win.h"
#include "skin/SkinPaintings_win.h"

#include <commctrl.h>

#include <algorithm>

constexpr int kCheckGap = 4;     // between box and text
constexpr int kGroupIndent = 14; // of a group box's title: in line with the labels below it

static uint64_t DataOf(HWND button)
{
    return uint64_t(GetWindowLongPtrW(button, GWLP_USERDATA));
}

static bool IsDefaultButton(HWND button)
{
    return DataOf(button) >> 4 == BS_DEFPUSHBUTTON;
}

struct ButtonLook
{
    COLORREF fill, edge, text;
};

static ButtonLook LookOf(HWND button, UINT state)
{
    if (state & ODS_DISABLED)
        return {SkinShade::kButtonOff, SkinShade::kEdgeOff, SkinColor(kSkinGreyText)};
    const bool hot = HotWindow() == button, marked = IsDefaultButton(button);
    const COLORREF edge = marked ? SkinShade::kAccent : SkinShade::kEdge;
    const bool checked = IsConvertedPushLike(button) && IsCheckedData(DataOf(button));
    if ((state & ODS_SELECTED) || checked)
        return {SkinShade::kButtonDown, marked || checked ? SkinShade::kAccent : SkinShade::kEdge,
                SkinColor(kSkinText)};
    if (hot)
        return {SkinShade::kButtonHot, marked ? SkinShade::kAccentHot : SkinShade::kEdgeHot,
                SkinShade::kTextHot};
    return {SkinShade::kButton, edge, SkinColor(kSkinText)};
}

static LONG TextHeight(HDC dc, HWND button, RECT box, UINT flags)
{
    const HGDIOBJ before = SelectObject(dc, FontOf(button));
    DrawTextW(dc, TextOf(button).c_str(), -1, &box, flags | DT_CALCRECT);
    SelectObject(dc, before);
    return box.bottom - box.top;
}

static void DrawPushButton(HDC dc, HWND button, const RECT& box, UINT state)
{
    const ButtonLook look = LookOf(button, state);
    FillBox(dc, box, SkinColor(kSkinFace));
    DrawPlate(dc, box, look.fill, look.edge, SkinColor(kSkinFace));
    if (state & ODS_FOCUS)
    {
        RECT ring = box;
        InflateRect(&ring, -2, -2);
        FrameBox(dc, ring, SkinShade::kAccent);
    }
    RECT text = box;
    InflateRect(&text, -4, 0);
    const bool lines = (GetWindowLongPtrW(button, GWL_STYLE) & BS_MULTILINE) != 0;
    const UINT flags = DT_CENTER | (lines ? DT_WORDBREAK : DT_VCENTER | DT_SINGLELINE);
    if (lines)
        text.top = std::max<LONG>(0, (text.bottom - TextHeight(dc, button, text, flags)) / 2);
    DrawLabel(dc, FontOf(button), TextOf(button), text, flags, look.text);
}

bool DrawButtonItem(const SkinCall& call, LRESULT* answer)
{
    const DRAWITEMSTRUCT& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(call.lParam);
    if (item.CtlType != ODT_BUTTON || SkinClassOfWindow(item.hwndItem) != SkinClass::Button ||
        !IsConvertedButton(uint32_t(GetWindowLongPtrW(item.hwndItem, GWL_STYLE))))
        return false;
    RECT box;
    GetClientRect(item.hwndItem, &box);
    const SkinCanvas canvas(std::max<int>(box.right, 1), std::max<int>(box.bottom, 1));
    if (!canvas.dc)
        return false;
    DrawPushButton(canvas.dc, item.hwndItem, box, item.itemState);
    BitBlt(item.hDC, 0, 0, box.right, box.bottom, canvas.dc, 0, 0, SRCCOPY);
    *answer = TRUE;
    return true;
}

bool AnswerButtonDialogCode(const SkinCall& call, LRESULT* answer)
{
    const uint64_t data = DataOf(call.hwnd);
    if (IsRadioData(data))
        *answer = DLGC_BUTTON | DLGC_RADIOBUTTON;
    else if (IsCheckData(data))
        *answer = DLGC_BUTTON;
    else
        *answer =
            DLGC_BUTTON | (IsDefaultButton(call.hwnd) ? DLGC_DEFPUSHBUTTON : DLGC_UNDEFPUSHBUTTON);
    return true;
}

// A dialog moves the default mark by changing styles, which would undo the conversion.
bool SetButtonStyle(const SkinCall& call, LRESULT* answer)
{
    if (!IsConvertedButton(call.window.style))
        return false;
    const uint32_t style = uint32_t(call.wParam);
    if (ConvertsButton(style) || !IsPushLike(call.window.style))
        SetWindowLongPtrW(call.hwnd, GWLP_USERDATA,
                          LONG_PTR(ButtonData(style) | (DataOf(call.hwnd) & 1)));
    if (call.lParam)
        InvalidateRect(call.hwnd, nullptr, FALSE);
    *answer = 0;
    return true;
}

// Where the parts of a check box go.
struct CheckPlaces
{
    RECT box, text, wanted; // the last: what the text needs
};

static CheckPlaces PlaceCheck(HDC dc, const SkinCall& call, const RECT& client, HFONT font,
                              const std::wstring& text, UINT flags)
{
    const int boxWidth = GetSystemMetrics(SM_CXMENUCHECK);
    const bool right = (call.window.style & BS_LEFTTEXT) != 0;
    CheckPlaces places = {client, client, {}};
    if (right)
    {
        places.box.left = std::max<LONG>(0, client.right - boxWidth);
        places.text.right = std::max<LONG>(0, places.box.left - kCheckGap);
    }
    else
    {
        places.box.right = boxWidth;
        places.text.left = std::max(boxWidth, kCheckImageSize) + kCheckGap;
    }
    places.wanted = places.text;
    const HGDIOBJ before = SelectObject(dc, font);
    DrawTextW(dc, text.c_str(), int(text.size()), &places.wanted, flags | DT_CALCRECT);
    SelectObject(dc, before);
    const LONG height = places.wanted.bottom - places.wanted.top;
    const LONG width =
        std::min(places.wanted.right - places.wanted.left, places.text.right - places.text.left);
    places.wanted.top = (client.bottom - height) / 2;
    places.wanted.bottom = places.wanted.top + height;
    if (right)
        places.wanted.left = places.text.right - width;
    else
        places.wanted.left = places.text.left;
    places.wanted.right = places.wanted.left + width;
    return places;
}

static bool DrawCheck(const SkinCall& call, HDC dc, const RECT& client)
{
    const std::wstring text = TextOf(call.hwnd);
    const HFONT font = FontOf(call.hwnd);
    const bool lines = (call.window.style & BS_MULTILINE) != 0;
    const bool right = (call.window.style & BS_LEFTTEXT) != 0;
    const UINT flags = (lines ? DT_WORDBREAK : DT_SINGLELINE) | (right ? DT_RIGHT : DT_LEFT);
    const CheckPlaces places = PlaceCheck(dc, call, client, font, text, flags);

    const HBRUSH brush = ParentBrush(call.hwnd, dc);
    FillRect(dc, &client, brush);
    const uint32_t type = ButtonType(call.window.style);
    const bool radio = type == BS_RADIOBUTTON || type == BS_AUTORADIOBUTTON;
    const int state = int(SendMessageW(call.hwnd, BM_GETCHECK, 0, 0));
    const wchar_t* image = CheckImageName(radio, SkinIsDark(), state, call.window.enabled);
    const int top = (client.bottom - kCheckImageSize) / 2;
    const int left = right ? client.right - kCheckImageSize : 0;
    if (!DrawCheckImage(dc, left, top, image))
        return false;
    const bool hot = call.window.enabled && HotWindow() == call.hwnd;
    DrawLabel(dc, font, text, places.wanted, flags,
              hot ? SkinShade::kTextHot : StateTextColour(call.window.enabled));
    if (GetFocus() == call.hwnd)
    {
        RECT ring = places.wanted;
        InflateRect(&ring, 2, 1);
        ring.bottom = std::min(ring.bottom, client.bottom);
        ring.right = std::min(ring.right, client.right);
        FrameBox(dc, ring, SkinShade::kAccent);
    }
    return true;
}

// Space that the title takes in the upper edge.
static SIZE TitleSize(HDC dc, HFONT font, const std::wstring& text)
{
    const HGDIOBJ before = SelectObject(dc, font);
    RECT box = {};
    DrawTextW(dc, text.empty() ? L"X" : text.c_str(), -1, &box, DT_CALCRECT | DT_SINGLELINE);
    SelectObject(dc, before);
    return {text.empty() ? 0 : box.right, box.bottom};
}

// The title without blanks that only hold it off the frame.
static std::wstring GroupTitle(HWND group)
{
    const std::wstring text = TextOf(group);
    const size_t first = text.find_first_not_of(L' ');
    return first == std::wstring::npos ? std::wstring() : text.substr(first);
}

static bool DrawGroup(const SkinCall& call, HDC dc, const RECT& client)
{
    const std::wstring text = GroupTitle(call.hwnd);
    const HFONT font = FontOf(call.hwnd);
    const SIZE size = TitleSize(dc, font, text);
    FillRect(dc, &client, ParentBrush(call.hwnd, dc));
    RECT frame = client;
    frame.top = size.cy / 2;
    DrawPlate(dc, frame, SkinColor(kSkinFace), SkinColor(kSkinHighlight), SkinColor(kSkinFace));
    if (size.cx == 0)
        return true;
    RECT title = {kGroupIndent, 0, std::min(kGroupIndent + size.cx, client.right), size.cy};
    FillRectangle(dc, title.left - 3, 0, title.right - title.left + 6, size.cy,
                  SkinColor(kSkinFace));
    DrawLabel(dc, font, text, title, DT_SINGLELINE, StateTextColour(call.window.enabled));
    return true;
}

// The controls inside of the frame are siblings, which it must not paint over.
static bool PaintGroup(const SkinCall& call)
{
    RECT hole;
    GetClientRect(call.hwnd, &hole);
    const HDC dc = GetDC(call.hwnd);
    const SIZE size = TitleSize(dc, FontOf(call.hwnd), L"");
    ReleaseDC(call.hwnd, dc);
    hole = {hole.left + 1, hole.top + size.cy, hole.right - 1, hole.bottom - 1};
    return PaintBuffered(call, DrawGroup, &hole);
}

bool PaintButton(const SkinCall& call, LRESULT* answer)
{
    *answer = 0;
    switch (ButtonType(call.window.style))
    {
    case BS_CHECKBOX:
    case BS_AUTOCHECKBOX:
    case BS_RADIOBUTTON:
    case BS_AUTORADIOBUTTON:
    case BS_3STATE:
    case BS_AUTO3STATE: return PaintBuffered(call, DrawCheck);
    case BS_GROUPBOX: return PaintGroup(call);
    default: return false;
    }
}
