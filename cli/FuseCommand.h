#pragma once

#include "cli/CommandLine.h"

// Blends the photographs of a series; gives the exit code.
int RunFuse(const CliOptions& options, const CliStreams& streams);
