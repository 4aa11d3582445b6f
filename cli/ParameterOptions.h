#pragma once

#include "cli/CommandLine.h"

// Options made from the tools' table of numbers (tools/Parameters.h).

// One for each slider, check box and list of a tool; several sliders may share one.
std::vector<OptionRow> ParameterOptions(Tool tool);

// What its value is called in the help; empty for one without.
std::string ParameterArgument(const ParameterRow& row);

// Words about range and default that follow the help line.
std::string ParameterRangeHelp(const ParameterRow& row);

// What it takes, as the message about a wrong value says it.
std::string ParameterTakes(const ParameterRow& row);

// Stores the value of an option; false when it makes no sense.
bool StoreParameter(ToolNumbers* numbers, const ParameterRow& row, const std::string& value);
