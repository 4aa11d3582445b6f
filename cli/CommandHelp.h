#pragma once

#include "cli/CommandLine.h"

// What --help says: of the whole program and of one command, at most 80 columns wide.
std::string ProgramHelp(const CommandTable& table);
std::string CommandHelp(const CommandRow& command);
