#include "app/AppWindows_win.h"

HINSTANCE g_hInst;
HWND g_hwndMain;
HWND g_hwndToolbar;
HWND g_hwndStatus;
HWND g_hwndZoomCombo;
HWND g_hwndDocker;
HWND g_hwndActiveTool;
