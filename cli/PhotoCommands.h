#pragma once

#include "cli/CommandLine.h"

// What makes a better one of each photograph; all give the exit code.
int RunSingle(const CliOptions& options, const CliStreams& streams);
int RunDaylightUp(const CliOptions& options, const CliStreams& streams);
int RunDaylightDown(const CliOptions& options, const CliStreams& streams);
int RunToneMap(const CliOptions& options, const CliStreams& streams);
int RunSmartContrast(const CliOptions& options, const CliStreams& streams);
