#pragma once

#include "app/Win.h"

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

// The row's handler, or null.
template <int N>
auto FindHandler(const MessageRow (&rows)[N], UINT message)
{
    for (const MessageRow& row : rows)
        if (row.message == message)
            return row.handler;
    return static_cast<decltype(rows[0].handler)>(nullptr);
}
