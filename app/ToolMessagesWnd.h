#pragma once

#include "base/Win.h"

// What tools, their workers and the zoom box tell the frame. Numbers and meanings: Messages.h. Run
// on the window thread, also when a worker sends them.

// The frame is to close as soon as the worker that runs has ended.
extern bool g_closeWanted;

// The worker of a series has ended: the dialog over its files opens, which the command id names.
LRESULT OnSeriesReady(int id);
// Back to the photograph as it was opened.
LRESULT OnSeriesCancelled(HWND frame, WPARAM wParam, LPARAM lParam);

LRESULT OnPreviewReady(HWND frame, WPARAM wParam, LPARAM lParam);
LRESULT OnShowResult(HWND frame, WPARAM wParam, LPARAM lParam);
LRESULT OnShowResultFit(HWND frame, WPARAM wParam, LPARAM lParam);
LRESULT OnResultCreated(HWND frame, WPARAM wParam, LPARAM lParam);
LRESULT OnCursorWait(HWND frame, WPARAM wParam, LPARAM lParam);
LRESULT OnCursorArrow(HWND frame, WPARAM wParam, LPARAM lParam);
LRESULT OnCursorMove(HWND frame, WPARAM wParam, LPARAM lParam);
LRESULT OnToolDone(HWND frame, WPARAM wParam, LPARAM lParam);
LRESULT OnToolCancelled(HWND frame, WPARAM wParam, LPARAM lParam);
LRESULT OnStartWorker(HWND frame, WPARAM wParam, LPARAM lParam);
LRESULT OnZoomText(HWND frame, WPARAM wParam, LPARAM lParam);
LRESULT OnZoomTextRestore(HWND frame, WPARAM wParam, LPARAM lParam);
LRESULT OnViewRefresh(HWND frame, WPARAM wParam, LPARAM lParam);
