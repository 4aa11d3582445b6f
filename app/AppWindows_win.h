#pragma once

#include "base/Win.h"

// Window handles of the application; null until the window exists. Window thread only.
extern HINSTANCE g_hInst;
extern HWND g_hwndMain;
extern HWND g_hwndToolbar;
extern HWND g_hwndStatus;
extern HWND g_hwndZoomCombo;
extern HWND g_hwndDocker;
extern HWND g_hwndActiveTool; // the modeless tool dialog that is open

// A row of a window procedure's table of messages.
struct MessageRow
{
    UINT message;
    LRESULT (*handler)(HWND hwnd, WPARAM wParam, LPARAM lParam);
};

// The window procedure of a table.
template <const auto& Rows>
LRESULT CALLBACK TableProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    for (const MessageRow& row : Rows)
        if (row.message == message)
            return row.handler(hwnd, wParam, lParam);
    return DefWindowProcW(hwnd, message, wParam, lParam);
}
