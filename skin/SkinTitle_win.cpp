#include "skin/SkinTitle_win.h"

#include "skin/SkinColors_win.h"

#include <cstring>

using SetAttribute = HRESULT(WINAPI*)(HWND, DWORD, const void*, DWORD);

// The number of the attribute "dark frame", since Windows 10 of 2020 and in the
// two years before.
constexpr DWORD kDarkFrame = 20, kEarlyDarkFrame = 19;

// Looked up while the program runs, which also starts on systems without the
// function.
static SetAttribute FindSetAttribute()
{
    const HMODULE library = LoadLibraryExW(L"dwmapi.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    const FARPROC found = library ? GetProcAddress(library, "DwmSetWindowAttribute") : nullptr;
    SetAttribute function = nullptr;
    static_assert(sizeof function == sizeof found);
    std::memcpy(&function, &found, sizeof function);
    return function;
}

void AskForDarkTitle(HWND hwnd)
{
    static const SetAttribute setAttribute = FindSetAttribute();
    // Children have no title bar, and neither has a popup without a caption.
    const LONG_PTR style = GetWindowLongPtrW(hwnd, GWL_STYLE);
    if (!setAttribute || (style & WS_CHILD) || (style & WS_CAPTION) != WS_CAPTION)
        return;
    const BOOL dark = SkinIsDark();
    if (FAILED(setAttribute(hwnd, kDarkFrame, &dark, sizeof dark)))
        setAttribute(hwnd, kEarlyDarkFrame, &dark, sizeof dark);
}
