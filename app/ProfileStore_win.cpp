#include "app/ProfileStore.h"

#include "app/Format_win.h"
#include "app/Win.h"

#include <shlobj.h>

constexpr int kPathChars = 1024;
constexpr int kValueChars = 1024; // longer values are cut, final zero included

// What the profile functions return for a missing key. They strip trailing blanks from a default
// ("Progress: " would come back without its blank), so texts never go through them as defaults.
constexpr wchar_t kMissing[] = L"\x7f";

static std::wstring SettingsPath()
{
    wchar_t appData[MAX_PATH] = L"";
    SHGetFolderPathW(nullptr, CSIDL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, appData);
    wchar_t path[kPathChars];
    VcFormat(path, kPathChars, L"%s\\%S", appData, g_productName);
    CreateDirectoryW(path, nullptr);
    VcFormat(path, kPathChars, L"%s\\%S\\%S.txt", appData, g_productName, g_productName);
    return path;
}

std::wstring ProgramFolder()
{
    wchar_t program[kPathChars] = L"";
    GetModuleFileNameW(nullptr, program, kPathChars);
    const std::wstring whole = program;
    const size_t end = whole.rfind(L'\\');
    return end == std::wstring::npos ? L"" : whole.substr(0, end);
}

static std::wstring LocalizationPath()
{
    return ProgramFolder() + L"/Plenoviz_loc.ini";
}

static bool ReadProfile(const std::wstring& path, const std::wstring& section,
                        const std::wstring& key, std::wstring* value)
{
    wchar_t text[kValueChars];
    GetPrivateProfileStringW(section.c_str(), key.c_str(), kMissing, text, kValueChars,
                             path.c_str());
    *value = text;
    return *value != kMissing;
}

// The system may keep the file in memory; letting go of it makes the next read see what really
// arrived.
static bool WriteProfile(const std::wstring& path, const std::wstring& section,
                         const std::wstring& key, const std::wstring& value)
{
    const BOOL written =
        WritePrivateProfileStringW(section.c_str(), key.c_str(), value.c_str(), path.c_str());
    WritePrivateProfileStringW(nullptr, nullptr, nullptr, path.c_str());
    return written != FALSE;
}

static ProfileStore ProfileFile(std::wstring (*path)())
{
    using Text = std::wstring;
    return {[path](const Text& section, const Text& key, Text* value)
            { return ReadProfile(path(), section, key, value); },
            [path](const Text& section, const Text& key, const Text& value)
            { return WriteProfile(path(), section, key, value); }};
}

ProfileStore UserSettingsFile()
{
    return ProfileFile(SettingsPath);
}

ProfileStore LocalizationFile()
{
    return ProfileFile(LocalizationPath);
}
