#pragma once

#include "base/Outcome.h"
#include "picture/PicBuf.h"

#include <functional>

// How the makers of exposure series talk to whoever started them. Callbacks may be empty; all are
// called on the thread that makes the series.

struct SeriesProgress
{
    int percent;  // for the text
    int position; // of the bar
    bool newText; // false: the bar moves, but the text stays, since it tells of the cancel
};

struct SeriesControl
{
    std::function<void(const SeriesProgress&)> progress;
    // The two ways to stop: both end the series after the picture being made; only a cancel also
    // ends its texts.
    std::function<bool()> cancelRequested;
    std::function<bool()> stopped;
    unsigned denoiseThreads = 0; // most threads of the denoising filter; 0 = all processors

    bool CancelRequested() const { return cancelRequested && cancelRequested(); }
    bool Ending() const { return CancelRequested() || (stopped && stopped()); }
};

// Takes picture number `number` of a series (in order of making) with its file name. The picture
// is valid during the call only. After anything but Done the series ends.
using SeriesSink = std::function<Outcome(int number, const SBxPicBuf& picture, const char* name)>;
