#include "cli/Program.h"

#include "app/Win.h"

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
