#pragma once

#include "base/Outcome.h"

#include <functional>
#include <string>
#include <vector>

struct ProfileValue
{
    std::wstring key, value;
};

// One INI file, seen as two calls. The program works on the files of ProfileStore_win.cpp, tests
// on a map in memory. Sections and keys ignore case, as the profile functions do.
struct ProfileStore
{
    using Text = std::wstring;

    // False when the section or the key is missing. A key with nothing behind it is found, and its
    // value is empty.
    std::function<bool(const Text& section, const Text& key, Text* value)> read;
    // All of the values or, with false, none of them.
    std::function<bool(const Text& section, const std::vector<ProfileValue>& values)> write;
};

// The per-user settings: application data, folder and file named after the product. The path is
// built and the folder made at each access. Windows only.
ProfileStore UserSettingsFile();

// Plenoviz_loc.ini beside the program. Windows only.
ProfileStore LocalizationFile();

// The write that failed last, for telling the user. Windows only.
struct ProfileFailure
{
    std::wstring path;
    unsigned long error; // the system's number
};
const ProfileFailure& LastProfileFailure();

std::wstring ProgramFolder(); // where Plenoviz.exe lies; no backslash at the end. Windows only.

// Name of the settings folder and file. Tests put their own here to stay away from the user's.
extern const char* g_productName;

// Section of the settings file, and of the localization file's own keys.
extern const wchar_t kGeneralSection[];

std::wstring ReadText(const ProfileStore& store, const std::wstring& section,
                      const std::wstring& key, const wchar_t* missing);
int ReadNumber(const ProfileStore& store, const std::wstring& section, const std::wstring& key,
               int missing);
Outcome WriteNumber(const ProfileStore& store, const std::wstring& section, const std::wstring& key,
                    int number);

// A sign and the digits that follow it at once: "-1" is -1, "12px" is 12, "x" and "" are 0. Stays
// at the ends of the int range.
int DecimalNumber(const std::wstring& text);
