#pragma once

#include "cli/CommandLine.h"

// The line that says on a terminal how far the work is, and the wish to stop.
struct Progress
{
    std::ostream* err; // null: say nothing
    int length;        // of the line that stands there
};

Progress StartProgress(const CliOptions& options, const CliStreams& streams);
void ShowProgress(Progress* progress, const std::string& line);
void EndProgress(Progress* progress); // wipes the line

// Ctrl+C asks for a stop; commands look between two steps and before they write. That way no
// half-written file stays behind. RequestStop may be called from a signal handler.
void RequestStop();
bool StopRequested();
