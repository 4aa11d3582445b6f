#pragma once

#include "series/SeriesRun.h"
#include "tools/ToolHost_win.h"

#include <atomic>

// The panel in the docker that shows how far a series is and lets the user abort it: that sets
// `aborted`. Window thread only, except for the report, which any thread may send.

HWND OpenProgressPanel(const ToolHost& host, SeriesKind kind, std::atomic<bool>* aborted);
void ReportToPanel(HWND panel, const SeriesProgress& progress);
void CloseProgressPanel(HWND panel); // by the panel's own OK; null is fine
