#include "skin/SkinWindow_win.h"

#include "skin/SkinBrushes_win.h"
#include "skin/SkinColors.h"
#include "skin/SkinTitle_win.h"

#include <commctrl.h>
#include <uxtheme.h>
#include <versionhelpers.h>

#include <iterator>

static HWND g_hot;

SkinClass SkinClassOfWindow(HWND hwnd)
{
    wchar_t name[32] = L"";
    return GetClassNameW(hwnd, name, 32) ? SkinClassOf(name) : SkinClass::Other;
}

SkinWindow DescribeWindow(HWND hwnd)
{
    SkinWindow window;
    window.kind = SkinClassOfWindow(hwnd);
    window.style = uint32_t(GetWindowLongPtrW(hwnd, GWL_STYLE));
    window.exStyle = uint32_t(GetWindowLongPtrW(hwnd, GWL_EXSTYLE));
    window.enabled = IsWindowEnabled(hwnd) != FALSE;
    window.dark = SkinIsDark();
    BOOL flat = FALSE;
    if (window.kind == SkinClass::Menu)
        SystemParametersInfoW(SPI_GETFLATMENU, 0, &flat, 0);
    window.flatMenus = flat != FALSE;
    return window;
}

static bool HasClass(HWND hwnd, const wchar_t* wanted)
{
    wchar_t name[32] = L"";
    return GetClassNameW(hwnd, name, 32) && lstrcmpiW(name, wanted) == 0;
}

// The system's own dialogs of the newer kind draw most of themselves without controls; the few
// controls in them have to look like the rest.
static bool IsHostOfSystemDialog(HWND hwnd)
{
    return HasClass(hwnd, L"CtrlNotifySink") || HasClass(hwnd, L"DirectUIHWND") ||
           HasClass(hwnd, L"DUIViewWndClassName");
}

bool IsExcludedFromSkin(HWND hwnd)
{
    static const bool newSystem = IsWindowsVistaOrGreater();
    if (!newSystem || !SkinIsDark())
        return false;
    for (HWND window = hwnd; window; window = GetAncestor(window, GA_PARENT))
    {
        if (SkinClassOfWindow(window) == SkinClass::Dialog)
            return OptsOutOfSkin(uint32_t(GetWindowLongPtrW(window, GWL_STYLE)));
        if (IsHostOfSystemDialog(window))
            return true;
    }
    return false;
}

static void DressButton(HWND hwnd)
{
    const uint32_t style = uint32_t(GetWindowLongPtrW(hwnd, GWL_STYLE));
    if (!ConvertsButton(style) || IsExcludedFromSkin(hwnd) ||
        HasClass(GetParent(hwnd), L"CtrlNotifySink"))
        return;
    if (!GetWindowLongPtrW(hwnd, GWLP_USERDATA))
        SetWindowLongPtrW(hwnd, GWLP_USERDATA, LONG_PTR(ButtonData(style)));
    SetWindowLongPtrW(hwnd, GWL_STYLE, LONG_PTR(ConvertedStyle(style)));
    InvalidateRect(hwnd, nullptr, TRUE);
}

static void DressListView(HWND hwnd)
{
    SendMessageW(hwnd, LVM_SETBKCOLOR, 0, LPARAM(SkinColor(kSkinWindow)));
    SendMessageW(hwnd, LVM_SETTEXTBKCOLOR, 0, LPARAM(SkinColor(kSkinWindow)));
    SendMessageW(hwnd, LVM_SETTEXTCOLOR, 0, LPARAM(SkinColor(kSkinWindowText)));
}

static void DressTree(HWND hwnd)
{
    if (!(GetWindowLongPtrW(hwnd, GWL_STYLE) & TVS_HASLINES))
        return;
    SendMessageW(hwnd, TVM_SETBKCOLOR, 0, LPARAM(SkinColor(kSkinWindow)));
    SendMessageW(hwnd, TVM_SETLINECOLOR, 0, LPARAM(SkinColor(kSkinWindowText)));
    SendMessageW(hwnd, TVM_SETTEXTCOLOR, 0, LPARAM(SkinColor(kSkinWindowText)));
}

static void DressTab(HWND hwnd)
{
    SetWindowLongPtrW(hwnd, GWL_STYLE, GetWindowLongPtrW(hwnd, GWL_STYLE) | TCS_OWNERDRAWFIXED);
}

static void DressProgress(HWND hwnd)
{
    SendMessageW(hwnd, PBM_SETBKCOLOR, 0,
                 LPARAM(SkinIsDark() ? SkinColor(kSkinWindow) : CLR_DEFAULT));
}

// A themed tooltip would not listen to colours.
static void DressTooltip(HWND hwnd)
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
    void (*dress)(HWND);
} kDressing[] = {
    {SkinClass::Button, DressButton},     {SkinClass::ListView, DressListView},
    {SkinClass::TreeView, DressTree},     {SkinClass::Tab, DressTab},
    {SkinClass::Progress, DressProgress}, {SkinClass::Tooltip, DressTooltip},
};

void DressWindow(HWND hwnd)
{
    const SkinClass kind = SkinClassOfWindow(hwnd);
    if (IsExcludedFromSkin(hwnd))
        return;
    AskForDarkTitle(hwnd);
    for (const auto& row : kDressing)
        if (row.kind == kind)
            row.dress(hwnd);
}

HWND HotWindow()
{
    return g_hot;
}

static bool LightsUp(HWND hwnd)
{
    switch (SkinClassOfWindow(hwnd))
    {
    case SkinClass::Button:
    case SkinClass::ComboBox:
    case SkinClass::Trackbar:
    case SkinClass::ScrollBar: return true;
    default: return false;
    }
}

void SetHotWindow(HWND hwnd)
{
    const HWND before = g_hot;
    g_hot = hwnd && LightsUp(hwnd) ? hwnd : nullptr;
    for (const HWND window : {before, g_hot})
        if (window && IsWindow(window) && before != g_hot)
            InvalidateRect(window, nullptr, FALSE);
}

static bool IsConverted(HWND hwnd)
{
    return SkinClassOfWindow(hwnd) == SkinClass::Button &&
           IsConvertedButton(uint32_t(GetWindowLongPtrW(hwnd, GWL_STYLE)));
}

bool IsConvertedPushLike(HWND hwnd)
{
    return hwnd && IsConverted(hwnd) && IsPushLike(uint32_t(GetWindowLongPtrW(hwnd, GWL_STYLE)));
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
        starts.push_back((GetWindowLongPtrW(hwnd, GWL_STYLE) & WS_GROUP) != 0);
    }
    const auto [first, end] = GroupAround(starts, index);
    for (size_t i = first; i < end; ++i)
        if (IsConvertedPushLike(siblings[i]))
            SetChecked(siblings[i], siblings[i] == button);
}

void OnConvertedClick(HWND button)
{
    const uint64_t data = uint64_t(GetWindowLongPtrW(button, GWLP_USERDATA));
    if (IsRadioData(data))
        CheckInGroup(button);
    else if (IsCheckData(data))
        SetChecked(button, !IsCheckedData(data));
}
