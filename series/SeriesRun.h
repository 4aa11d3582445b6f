#pragma once

#include "series/DaylightSeries.h"
#include "series/ExposureSeries.h"

#include <string>
#include <vector>

// One photograph as a series of files for the fusion dialogs: made, written and put into order.

enum class SeriesKind
{
    Single,       // eleven exposures
    DaylightUp,   // 39 variants
    DaylightDown, // 39 variants
};

// What the progress panel's bar runs over, and where it starts.
struct SeriesBar
{
    int length, start;
};
SeriesBar SeriesBarOf(SeriesKind kind);

struct SeriesRun
{
    // Set before the run.
    SeriesKind kind = SeriesKind::Single;
    SBxPicBuf source = {};   // a header over the photograph, which must stay as it is meanwhile
    unsigned noiseLevel = 0; // single series only
    std::string folder;      // UTF-8, with the separator at its end
    SeriesControl control;

    // What the run leaves behind: names of the files that count, in the order of fusion. A file
    // that could not be written is there all the same; whoever reads it finds out and says so.
    // Empty when memory was short.
    std::vector<std::string> files;
};

void MakeSeriesFiles(SeriesRun* run);
