#include "cli/Program.h"

#include "cli/Commands.h"
#include "cli/Progress.h"

#include <csignal>
#include <iostream>

// The first Ctrl+C asks the command to stop at the next step; a second one ends it at once.
static void OnInterrupt(int signal)
{
    RequestStop();
    std::signal(signal, SIG_DFL);
}

int RunProgram(const std::vector<std::string>& arguments, bool errIsTerminal)
{
    std::signal(SIGINT, OnInterrupt);
    return RunCommandLine(arguments, {std::cout, std::cerr, errIsTerminal});
}
