#pragma once

#include "series/SeriesRun.h"
#include "text/Strings.h"
#include "tools/ToolHost_win.h"

// Making a series in the background, with the progress panel in the docker. The worker reads the
// source picture, writes files and posts messages; everything else happens on the window thread.

// Starts the worker. The frame gets WM_COMMAND with the number of the dialog to open when the
// series is ready, or WM_APP_SERIES_CANCELLED.
void StartSeries(const ToolHost& host, SeriesKind kind, unsigned noiseLevel);

// Abort was pressed and the worker's end has not been dealt with yet.
bool SeriesWasAborted();

// The worker has ended, and the frame has been told so: the panel goes, the document is idle again.
// With `ready`, the series of files becomes the document's.
void EndSeries(bool ready);

// Number of the text that names the series made last, for the Power dialog.
TextId SeriesTitle();
