// A converted button is owner-drawn: its parent gets the draw-item message, and
// the skin draws the button in the parent's place. Since the button has lost
// its type, the skin also does what types are good for: it answers the dialog
// manager's question which button Enter presses, keeps the default mark when
// the dialog manager moves it, and checks and clears buttons that are pressed.

#include "skin/SkinButtons_win.h"

#include "skin/SkinButtonRules.h"
#include "skin/SkinColors_win.h"
#include "skin/SkinDraw_win.h"

#include <algorithm>

static uint32_t StyleOf(HWND button)
{
    return uint32_t(GetWindowLongPtrW(button, GWL_STYLE));
}

static uint64_t DataOf(HWND button)
{
    return uint64_t(GetWindowLongPtrW(button, GWLP_USERDATA));
}

static bool IsConverted(HWND hwnd)
{
    return SkinClassOfWindow(hwnd) == SkinClass::Button && IsConvertedButton(StyleOf(hwnd));
}

bool IsConvertedPushLike(HWND hwnd)
{
    return hwnd && IsConverted(hwnd) && IsPushLike(StyleOf(hwnd));
}

struct ButtonLook
{
    COLORREF fill, edge, text;
};

// The default button has the accent around it, and so has one that is checked.
static ButtonLook LookOf(HWND button, UINT state)
{
    if (state & ODS_DISABLED)
        return {SkinShade::kButtonOff, SkinShade::kEdgeOff, SkinColor(kSkinGreyText)};
    const bool marked = IsDefaultData(DataOf(button));
    const bool checked = IsConvertedPushLike(button) && IsCheckedData(DataOf(button));
    if ((state & ODS_SELECTED) || checked)
        return {SkinShade::kButtonDown, marked || checked ? SkinShade::kAccent : SkinShade::kEdge,
                SkinColor(kSkinText)};
    if (HotWindow() == button)
        return {SkinShade::kButtonHot, marked ? SkinShade::kAccentHot : SkinShade::kEdgeHot,
                SkinShade::kTextHot};
    return {SkinShade::kButton, marked ? SkinShade::kAccent : SkinShade::kEdge,
            SkinColor(kSkinText)};
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
    DrawRoundedBox(dc, box, look.fill, look.edge, SkinColor(kSkinFace));
    if (state & ODS_FOCUS)
    {
        RECT ring = box;
        InflateRect(&ring, -2, -2);
        FrameBox(dc, ring, SkinShade::kAccent);
    }
    RECT text = box;
    InflateRect(&text, -4, 0);
    // DrawText centres a single line by itself, but several only from left to
    // right.
    const bool lines = (StyleOf(button) & BS_MULTILINE) != 0;
    const UINT flags = DT_CENTER | (lines ? DT_WORDBREAK : DT_VCENTER | DT_SINGLELINE);
    if (lines)
        text.top = std::max<LONG>(0, (text.bottom - TextHeight(dc, button, text, flags)) / 2);
    DrawLabel(dc, FontOf(button), TextOf(button), text, flags, look.text);
}

bool DrawButtonItem(const SkinCall& call, LRESULT* answer)
{
    const DRAWITEMSTRUCT& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(call.lParam);
    // Buttons that a program has made owner-drawn are the program's to draw.
    if (!IsConverted(item.hwndItem))
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
        *answer = DLGC_BUTTON | (IsDefaultData(data) ? DLGC_DEFPUSHBUTTON : DLGC_UNDEFPUSHBUTTON);
    return true;
}

// A dialog moves the default mark by changing styles, which would undo the
// conversion. So only the type in the user data changes, and the check stays.
// What could not have been converted is no type for a button that looks like a
// push button.
bool SetButtonStyle(const SkinCall& call, LRESULT* answer)
{
    const uint32_t style = uint32_t(call.wParam);
    if (ConvertsButton(style) || !IsPushLike(call.window.style))
        SetWindowLongPtrW(call.hwnd, GWLP_USERDATA,
                          LONG_PTR(ButtonData(style) | (DataOf(call.hwnd) & 1)));
    if (call.lParam)
        InvalidateRect(call.hwnd, nullptr, FALSE);
    *answer = 0;
    return true;
}

static void SetChecked(HWND button, bool checked)
{
    const LONG_PTR data = GetWindowLongPtrW(button, GWLP_USERDATA);
    SetWindowLongPtrW(button, GWLP_USERDATA, (data & ~LONG_PTR(1)) | (checked ? 1 : 0));
    InvalidateRect(button, nullptr, TRUE);
}

static void CheckInGroup(HWND button)
{
    std::vector<HWND> siblings;
    std::vector<bool> starts;
    size_t index = 0;
    for (HWND hwnd = GetWindow(button, GW_HWNDFIRST); hwnd; hwnd = GetWindow(hwnd, GW_HWNDNEXT))
    {
        if (hwnd == button)
            index = siblings.size();
        siblings.push_back(hwnd);
        starts.push_back((StyleOf(hwnd) & WS_GROUP) != 0);
    }
    const auto [first, end] = GroupAround(starts, index);
    for (size_t i = first; i < end; ++i)
        if (IsConvertedPushLike(siblings[i]))
            SetChecked(siblings[i], siblings[i] == button);
}

void OnConvertedClick(HWND button)
{
    const uint64_t data = DataOf(button);
    if (IsRadioData(data))
        CheckInGroup(button);
    else if (IsCheckData(data))
        SetChecked(button, !IsCheckedData(data));
}
