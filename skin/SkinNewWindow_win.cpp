// Lists, trees, progress bars and tooltips have messages for their colours:
// with these set, the control's own painting does for the scheme. Only what has
// no such messages is painted by the skin.

#include "skin/SkinNewWindow_win.h"

#include "skin/SkinButtonRules.h"
#include "skin/SkinColors_win.h"
#include "skin/SkinTitle_win.h"
#include "skin/SkinWindow_win.h"

#include <commctrl.h>
#include <uxtheme.h>

static void StyleButton(HWND hwnd)
{
    const uint32_t style = uint32_t(GetWindowLongPtrW(hwnd, GWL_STYLE));
    // Buttons that the system's dialogs wrap stay themselves, also where nothing
    // is excluded.
    if (!ConvertsButton(style) || HasClassName(GetParent(hwnd), L"CtrlNotifySink"))
        return;
    // User data that is there already is somebody's, and stays.
    if (!GetWindowLongPtrW(hwnd, GWLP_USERDATA))
        SetWindowLongPtrW(hwnd, GWLP_USERDATA, LONG_PTR(ButtonData(style)));
    SetWindowLongPtrW(hwnd, GWL_STYLE, LONG_PTR(ConvertedStyle(style)));
    InvalidateRect(hwnd, nullptr, TRUE);
}

static void StyleListView(HWND hwnd)
{
    SendMessageW(hwnd, LVM_SETBKCOLOR, 0, LPARAM(SkinColor(kSkinWindow)));
    SendMessageW(hwnd, LVM_SETTEXTBKCOLOR, 0, LPARAM(SkinColor(kSkinWindow)));
    SendMessageW(hwnd, LVM_SETTEXTCOLOR, 0, LPARAM(SkinColor(kSkinWindowText)));
}

static void StyleTree(HWND hwnd)
{
    if (!(GetWindowLongPtrW(hwnd, GWL_STYLE) & TVS_HASLINES))
        return;
    SendMessageW(hwnd, TVM_SETBKCOLOR, 0, LPARAM(SkinColor(kSkinWindow)));
    SendMessageW(hwnd, TVM_SETLINECOLOR, 0, LPARAM(SkinColor(kSkinWindowText)));
    SendMessageW(hwnd, TVM_SETTEXTCOLOR, 0, LPARAM(SkinColor(kSkinWindowText)));
}

static void StyleTab(HWND hwnd)
{
    SetWindowLongPtrW(hwnd, GWL_STYLE, GetWindowLongPtrW(hwnd, GWL_STYLE) | TCS_OWNERDRAWFIXED);
}

static void StyleProgress(HWND hwnd)
{
    SendMessageW(hwnd, PBM_SETBKCOLOR, 0,
                 LPARAM(SkinIsDark() ? SkinColor(kSkinWindow) : CLR_DEFAULT));
}

// A themed tooltip would not listen to colours.
static void StyleTooltip(HWND hwnd)
{
    SetWindowTheme(hwnd, L"", L"");
    SendMessageW(hwnd, TTM_SETTIPBKCOLOR, SkinShade::kTip, 0);
    SendMessageW(hwnd, TTM_SETTIPTEXTCOLOR, SkinColor(kSkinText), 0);
    const RECT margin = {4, 2, 4, 2};
    SendMessageW(hwnd, TTM_SETMARGIN, 0, reinterpret_cast<LPARAM>(&margin));
}

static const struct
{
    SkinClass kind;
    void (*apply)(HWND);
} kStyles[] = {
    {SkinClass::Button, StyleButton},     {SkinClass::ListView, StyleListView},
    {SkinClass::TreeView, StyleTree},     {SkinClass::Tab, StyleTab},
    {SkinClass::Progress, StyleProgress}, {SkinClass::Tooltip, StyleTooltip},
};

void StyleNewWindow(HWND hwnd)
{
    const SkinClass kind = SkinClassOfWindow(hwnd);
    if (IsExcludedFromSkin(hwnd))
        return;
    AskForDarkTitle(hwnd);
    for (const auto& row : kStyles)
        if (row.kind == kind)
            row.apply(hwnd);
}
