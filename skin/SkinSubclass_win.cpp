// The table of replaced procedures. What a window's own procedure is has to be kept outside of the
// window: its user data and properties are other people's.

#include "skin/SkinSubclass_win.h"

#include <map>

struct SkinnedWindow
{
    WNDPROC previous;
    WNDPROC ours;
    int count;
    bool unicode; // a window stays what it is, or its texts would arrive in the
                  // wrong form
};

static std::map<HWND, SkinnedWindow> g_windows;

static WNDPROC ReplaceProcedure(HWND hwnd, WNDPROC procedure, bool unicode)
{
    const auto value = reinterpret_cast<LONG_PTR>(procedure);
    return reinterpret_cast<WNDPROC>(unicode ? SetWindowLongPtrW(hwnd, GWLP_WNDPROC, value)
                                             : SetWindowLongPtrA(hwnd, GWLP_WNDPROC, value));
}

static WNDPROC CurrentProcedure(HWND hwnd, bool unicode)
{
    return reinterpret_cast<WNDPROC>(unicode ? GetWindowLongPtrW(hwnd, GWLP_WNDPROC)
                                             : GetWindowLongPtrA(hwnd, GWLP_WNDPROC));
}

void SubclassWindowForSkin(HWND hwnd, WNDPROC procedure)
{
    const auto found = g_windows.find(hwnd);
    if (found != g_windows.end())
    {
        ++found->second.count;
        return;
    }
    const bool unicode = IsWindowUnicode(hwnd) != FALSE;
    if (const WNDPROC previous = ReplaceProcedure(hwnd, procedure, unicode))
        g_windows[hwnd] = {previous, procedure, 1, unicode};
}

void UnsubclassWindowForSkin(HWND hwnd)
{
    const auto found = g_windows.find(hwnd);
    if (found == g_windows.end() || --found->second.count > 0)
        return;
    const SkinnedWindow window = found->second;
    // Somebody has put a procedure over ours meanwhile, and calls it: it stays,
    // and passes on.
    if (IsWindow(hwnd) && CurrentProcedure(hwnd, window.unicode) != window.ours)
        return;
    ReplaceProcedure(hwnd, window.previous, window.unicode);
    g_windows.erase(hwnd);
}

void ForgetSkinnedWindow(HWND hwnd)
{
    g_windows.erase(hwnd);
}

LRESULT CallPrevious(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    const auto found = g_windows.find(hwnd);
    if (found == g_windows.end())
        return DefWindowProcW(hwnd, message, wParam, lParam);
    const SkinnedWindow window = found->second;
    return window.unicode ? CallWindowProcW(window.previous, hwnd, message, wParam, lParam)
                          : CallWindowProcA(window.previous, hwnd, message, wParam, lParam);
}
