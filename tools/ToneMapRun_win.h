#pragma once

#include "base/Outcome.h"
#include "base/Win.h"
#include "picture/Picture.h"
#include "tonemap/ToneMapParams.h"

#include <atomic>
#include <memory>

// The final run of tone mapping: the filter over the whole photograph, on a thread of its own.

// What the dialog hears of it, posted. The last two end the run.
constexpr UINT WM_TONE_ADVANCED = WM_APP + 1;  // wParam: steps of the progress bar
constexpr UINT WM_TONE_FINISHED = WM_APP + 2;  // the output is there
constexpr UINT WM_TONE_CANCELLED = WM_APP + 3; // wParam: 1 = memory was short, 0 = a wish to stop

// Sent to the dialog: the frame's answer to WM_APP_START_WORKER.
constexpr UINT WM_TONE_START = WM_APP + 4;

// While the thread is at work, all of it is the thread's, except for the wish to stop.
struct ToneMapRun
{
    SBxPicBuf input = {}; // a header over the photograph, which stays as it is meanwhile
    Picture output;       // of its geometry
    ToneMapNumbers numbers = {};
    HWND dialog = nullptr;
    std::atomic<bool> stop{false};
};

// The dialog is told of the end, unless there is no thread to be had: then the answer is false.
Outcome StartToneMapThread(const std::shared_ptr<ToneMapRun>& run);
