#pragma once

#include "base/Win.h"

// The mouse on the view: pan, compare, fit and zoom, also while a tool's dialog has the focus.

LRESULT OnSetCursor(HWND frame, WPARAM wParam, LPARAM lParam);
LRESULT OnLeftDown(HWND frame, WPARAM wParam, LPARAM lParam);
LRESULT OnMouseMove(HWND frame, WPARAM wParam, LPARAM lParam);
LRESULT OnLeftUp(HWND frame, WPARAM wParam, LPARAM lParam);
LRESULT OnCaptureLost(HWND frame, WPARAM wParam, LPARAM lParam);
LRESULT OnDoubleClick(HWND frame, WPARAM wParam, LPARAM lParam);
LRESULT OnRightDown(HWND frame, WPARAM wParam, LPARAM lParam);
LRESULT OnRightUp(HWND frame, WPARAM wParam, LPARAM lParam);
LRESULT OnWheel(HWND frame, WPARAM wParam, LPARAM lParam);
