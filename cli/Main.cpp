#include "cli/Program.h"

#include <unistd.h>

int main(int argc, char** argv)
{
    return RunProgram({argv + (argc > 0 ? 1 : 0), argv + argc}, isatty(STDERR_FILENO) != 0);
}
