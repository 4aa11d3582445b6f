#pragma once

#include "cli/CommandLine.h"

// Renders the sample scene as a series of files; gives the exit code.
int RunSample(const CliOptions& options, const CliStreams& streams);
