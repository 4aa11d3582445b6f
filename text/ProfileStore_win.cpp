#include "text/ProfileStore.h"

#include "base/Format_win.h"
#include "base/SystemFiles.h"
#include "base/Win.h"

#include <shlobj.h>

#include <algorithm>

constexpr int kPathChars = 1024;
constexpr int kValueChars = 1024; // longer values are cut, final zero included

constexpr DWORD kSectionChars = 65536;

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

// The pieces that the profile functions return in a row, each with its end.
static std::vector<std::wstring> Pieces(const wchar_t* text)
{
    std::vector<std::wstring> pieces;
    for (; *text; text += pieces.back().size() + 1)
        pieces.emplace_back(text);
    return pieces;
}

// Whether a line is one of these keys. They ignore case.
static bool IsLineOf(const std::wstring& line, const std::vector<ProfileValue>& values)
{
    const std::wstring key = line.substr(0, line.find(L'='));
    return std::any_of(values.begin(), values.end(),
                       [&](const ProfileValue& value)
                       { return lstrcmpiW(key.c_str(), value.key.c_str()) == 0; });
}

// All that a file says but these keys of that section.
static std::vector<std::wstring> EverythingBut(const std::wstring& path,
                                               const std::wstring& section,
                                               const std::vector<ProfileValue>& values)
{
    std::vector<std::wstring> all;
    std::vector<wchar_t> names(kSectionChars), lines(kSectionChars);
    GetPrivateProfileSectionNamesW(names.data(), kSectionChars, path.c_str());
    for (const std::wstring& name : Pieces(names.data()))
    {
        const bool changed = lstrcmpiW(name.c_str(), section.c_str()) == 0;
        GetPrivateProfileSectionW(name.c_str(), lines.data(), kSectionChars, path.c_str());
        for (const std::wstring& line : Pieces(lines.data()))
            if (!changed || !IsLineOf(line, values))
                all.emplace_back(name).append(L"\n").append(line);
    }
    return all;
}

// The profile functions may say yes to what a full disk has cut.
static bool HasArrived(const std::wstring& written, const std::wstring& before,
                       const std::wstring& section, const std::vector<ProfileValue>& values)
{
    std::wstring stored;
    for (const ProfileValue& value : values)
        if (!ReadProfile(written, section, value.key, &stored) || stored != value.value)
            return false;
    return EverythingBut(written, section, values) == EverythingBut(before, section, values);
}

static bool ToDisk(const std::wstring& path)
{
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    const bool flushed = FlushFileBuffers(file) != FALSE;
    const DWORD error = GetLastError();
    CloseHandle(file);
    SetLastError(error);
    return flushed;
}

// A copy gets the values and takes the file's place when all of it is there: whatever happens
// meanwhile, the name holds the old values or the new ones. A copy that was left behind by force
// is overwritten by the next.
static bool ReplaceProfile(const std::wstring& path, const std::wstring& section,
                           const std::vector<ProfileValue>& values)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    const bool exists = attributes != INVALID_FILE_ATTRIBUTES;
    if (exists && (attributes & FILE_ATTRIBUTE_READONLY))
    {
        SetLastError(ERROR_ACCESS_DENIED);
        return false;
    }
    const std::wstring copy = path + L".new";
    if (exists ? !CopyFileW(path.c_str(), copy.c_str(), FALSE)
               : !DeleteFileW(copy.c_str()) && GetLastError() != ERROR_FILE_NOT_FOUND)
        return false;
    for (const ProfileValue& value : values)
        if (!WritePrivateProfileStringW(section.c_str(), value.key.c_str(), value.value.c_str(),
                                        copy.c_str()))
            return false;
    // The system may keep the file in memory; letting go of it makes the reads see what really
    // arrived.
    WritePrivateProfileStringW(nullptr, nullptr, nullptr, copy.c_str());
    if (!HasArrived(copy, path, section, values))
    {
        SetLastError(ERROR_DISK_FULL);
        return false;
    }
    if (!ToDisk(copy))
        return false;
    const DWORD error = MoveOverFile(copy, path);
    SetLastError(error);
    return error == 0;
}

static ProfileFailure g_lastFailure;

const ProfileFailure& LastProfileFailure()
{
    return g_lastFailure;
}

// One program at a time, or one would lose what the other writes. Waiting has an end: the system
// may be shutting down.
static bool WriteProfile(const std::wstring& path, const std::wstring& section,
                         const std::vector<ProfileValue>& values)
{
    const DWORD kPatienceMs = 2000;
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, L"Plenoviz.Profile");
    if (mutex)
        WaitForSingleObject(mutex, kPatienceMs);
    const bool written = ReplaceProfile(path, section, values);
    if (!written)
    {
        g_lastFailure = {path, GetLastError()};
        DeleteFileW((path + L".new").c_str());
    }
    if (mutex)
    {
        ReleaseMutex(mutex);
        CloseHandle(mutex);
    }
    return written;
}

static ProfileStore ProfileFile(std::wstring (*path)())
{
    using Text = std::wstring;
    return {[path](const Text& section, const Text& key, Text* value)
            { return ReadProfile(path(), section, key, value); },
            [path](const Text& section, const std::vector<ProfileValue>& values)
            { return WriteProfile(path(), section, values); }};
}

ProfileStore UserSettingsFile()
{
    return ProfileFile(SettingsPath);
}

ProfileStore LocalizationFile()
{
    return ProfileFile(LocalizationPath);
}
