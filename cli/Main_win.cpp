#include "cli/Program.h"

#include "base/Win.h"

#include <cstdio>
#include <io.h>

// Windows hands over arguments as UTF-16 and shows console text in a code page; the program
// speaks UTF-8 inside.

static std::string Utf8(const wchar_t* text)
{
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string result(size_t(size > 0 ? size : 1), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, result.data(), size, nullptr, nullptr);
    result.pop_back(); // the final zero
    return result;
}

// The shell of Windows leaves * and ? to programs. With this the start-up code replaces them,
// unless they are in quotes; a pattern without a match stays as it is.
extern "C" int _dowildcard; // NOLINT: the name is the start-up code's
int _dowildcard = -1;

extern "C" int wmain(int argc, wchar_t** argv); // no system header declares it

extern "C" int wmain(int argc, wchar_t** argv)
{
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; i++)
        arguments.push_back(Utf8(argv[i]));

    const UINT consoleCodePage = GetConsoleOutputCP();
    SetConsoleOutputCP(CP_UTF8);
    const int code = RunProgram(arguments, _isatty(_fileno(stderr)) != 0);
    if (consoleCodePage != 0)
        SetConsoleOutputCP(consoleCodePage);
    return code;
}
