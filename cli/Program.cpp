#include "cli/Program.h"

#include "cli/Commands.h"
#include "cli/Interrupts.h"

#include <iostream>

int RunProgram(const std::vector<std::string>& arguments, bool errIsTerminal)
{
    WatchInterrupts();
    return RunCommandLine(arguments, {std::cout, std::cerr, errIsTerminal});
}
