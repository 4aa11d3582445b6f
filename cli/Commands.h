#pragma once

#include "cli/CommandLine.h"

// The commands of plenoviz-cli, one row each.
const CommandTable& Commands();

// Parses, does what is asked and gives the exit code. Errors are one line on streams.err.
int RunCommandLine(const std::vector<std::string>& arguments, const CliStreams& streams);
