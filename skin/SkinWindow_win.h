#pragma once

#include "base/Win.h"
#include "skin/SkinRules.h"

// What the skin knows of a real window. Window thread only, as everything in
// skin/ that has to do with windows.

// A message on its way to a window, with what the rules ask about the window.
struct SkinCall
{
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    SkinWindow window;
};

SkinClass SkinClassOfWindow(HWND hwnd);
SkinWindow DescribeWindow(HWND hwnd);
bool HasClassName(HWND hwnd, const wchar_t* name);

// Whether the window, or the dialog it stands in, keeps the system's look.
bool IsExcludedFromSkin(HWND hwnd);

// The control under the mouse, which lights up; null for none, and for windows
// that do not light up. Setting it has both the old and the new one painted
// again.
HWND HotWindow();
void SetHotWindow(HWND hwnd);
