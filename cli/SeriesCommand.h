#pragma once

#include "cli/CommandLine.h"

// Writes the exposures that other commands blend; gives the exit code.
int RunSeries(const CliOptions& options, const CliStreams& streams);
