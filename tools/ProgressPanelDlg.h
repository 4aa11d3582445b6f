#pragma once

#include "base/Win.h"
#include "series/SeriesRun.h"

// The panel in the docker that shows how far a series is and lets the user abort it. Window thread
// only, except for the report, which any thread may send.

HWND OpenProgressPanel(SeriesKind kind);
void ReportToPanel(HWND panel, const SeriesProgress& progress);
void CloseProgressPanel(HWND panel); // by the panel's own OK; null is fine
