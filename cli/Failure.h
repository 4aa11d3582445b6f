#pragma once

#include "cli/CommandLine.h"

#include "files/ImageFile.h"

// Writes the one line of a failure (file may be empty) and gives the exit code that goes with it.
int Fail(const CliStreams& streams, const std::string& file, const std::string& reason);

// What the user should know of an input that was read: a line a note. Only damage is told to those
// who want to hear of errors only.
void TellNotes(const CliStreams& streams, const CliOptions& options, const std::string& file,
               const LoadReport& report);

// How inputs are to be read.
LoadOptions LoadOptionsOf(const CliOptions& options);

// The same as Fail for a command line whose parts do not go together.
int FailUsage(const CliStreams& streams, const char* command, const std::string& reason);
