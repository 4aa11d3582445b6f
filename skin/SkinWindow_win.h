#pragma once

#include "base/Win.h"
#include "skin/SkinRules.h"

// A message on its way to a window, with what the rules ask about the window.
struct SkinCall
{
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    SkinWindow window;
};

// Paints, or answers. False leaves the message to the previous procedure.
using SkinHandler = bool (*)(const SkinCall& call, LRESULT* answer);

SkinClass SkinClassOfWindow(HWND hwnd);
SkinWindow DescribeWindow(HWND hwnd);

// Whether the window, or the dialog it stands in, keeps the system's look.
bool IsExcludedFromSkin(HWND hwnd);

// The procedure that stands before a control's own.
LRESULT CALLBACK SkinProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

// The window after its creation: colours, styles, conversion of buttons.
void DressWindow(HWND hwnd);

// The control under the mouse, for the light that goes with it; null for none, and for windows that
// do not light up.
HWND HotWindow();
void SetHotWindow(HWND hwnd);

// A converted button that looks like a push button was pressed: its check, and its group's.
void OnConvertedClick(HWND button);
bool IsConvertedPushLike(HWND hwnd);
