#pragma once

#include <string>
#include <vector>

// The program around RunCommandLine: standard streams and Ctrl+C. `arguments` are those after the
// program's name, as UTF-8.
int RunProgram(const std::vector<std::string>& arguments, bool errIsTerminal);
