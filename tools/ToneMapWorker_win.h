#pragma once

#include "base/Win.h"

// The final run of tone mapping: the filter over the whole photograph, on a thread of its own.

// What the dialog hears of it, posted. The last two end the run.
constexpr UINT WM_TONE_ADVANCED = WM_APP + 1;  // wParam: steps of the progress bar
constexpr UINT WM_TONE_FINISHED = WM_APP + 2;  // the result picture is there
constexpr UINT WM_TONE_CANCELLED = WM_APP + 3; // wParam: 1 = memory was short, 0 = a wish to stop

// The settings belong to the window thread, except that the worker takes its numbers from them
// when it starts. The dialog writes between these two. Lock answers false when the worker still
// held them after a second.
bool LockToneMapSettings();
void UnlockToneMapSettings();

// The frame's answer to WM_APP_START_WORKER: makes the preview picture a copy of the source and
// filters that into the result, with the numbers in g_settings. The dialog is told of the end in
// any case, also when nothing could be started. Window thread.
void StartToneMapWorker(HWND dialog);
