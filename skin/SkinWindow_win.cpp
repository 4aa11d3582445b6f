// A window is described anew for each message, since its style and state change at any time and
// nothing would tell. That happens only after SkinMayTake has let the message through.

#include "skin/SkinWindow_win.h"

#include "skin/SkinColors_win.h"

#include <versionhelpers.h>

#include <initializer_list>

static HWND g_hot;

constexpr int kClassNameRoom = 32; // longer than all names that the skin compares with

SkinClass SkinClassOfWindow(HWND hwnd)
{
    wchar_t name[kClassNameRoom] = L"";
    return GetClassNameW(hwnd, name, kClassNameRoom) ? SkinClassOf(name) : SkinClass::Other;
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

bool HasClassName(HWND hwnd, const wchar_t* name)
{
    wchar_t own[kClassNameRoom] = L"";
    return GetClassNameW(hwnd, own, kClassNameRoom) && lstrcmpiW(own, name) == 0;
}

// The system's own dialogs of the newer kind draw most of themselves without
// controls; the few controls in them have to look like the rest.
static bool IsHostOfSystemDialog(HWND hwnd)
{
    return HasClassName(hwnd, L"CtrlNotifySink") || HasClassName(hwnd, L"DirectUIHWND") ||
           HasClassName(hwnd, L"DUIViewWndClassName");
}

// The nearest dialog decides. Systems before Vista, and schemes that are not
// dark, exclude nothing.
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
    default: return false; // toolbars and menus know their hot item themselves
    }
}

void SetHotWindow(HWND hwnd)
{
    const HWND before = g_hot;
    g_hot = hwnd && LightsUp(hwnd) ? hwnd : nullptr;
    if (g_hot == before)
        return;
    for (const HWND window : {before, g_hot})
        if (window && IsWindow(window))
            InvalidateRect(window, nullptr, FALSE);
}
