#pragma once

#include "cli/CommandLine.h"

// Writes the one line of a failure (file may be empty) and gives the exit code that goes with it.
int Fail(const CliStreams& streams, const std::string& file, const std::string& reason);

// The same for a command line whose parts do not go together.
int FailUsage(const CliStreams& streams, const char* command, const std::string& reason);
