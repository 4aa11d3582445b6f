#include "base/SystemFiles.h"

#include "base/Win.h"

#include <algorithm>
#include <cerrno>

static std::wstring Wide(UINT codePage, DWORD flags, const char* text)
{
    const int count = MultiByteToWideChar(codePage, flags, text, -1, nullptr, 0);
    if (count <= 1)
        return {};
    std::wstring wide(size_t(count), L'\0');
    MultiByteToWideChar(codePage, flags, text, -1, wide.data(), count);
    wide.pop_back(); // the final zero
    return wide;
}

std::wstring WideFromUtf8(const char* text)
{
    return Wide(CP_UTF8, MB_ERR_INVALID_CHARS, text);
}

std::wstring WideFromSavePath(const char* savePath)
{
    return Wide(CP_ACP, 0, savePath);
}

// False when the code page lacks a letter or the result is too long. UTF-8 has every letter and
// does not take the flags that the other code pages need to own up to a substitution.
static bool ToCodePage(std::string* text, const std::wstring& wide)
{
    const bool utf8 = GetACP() == CP_UTF8;
    const DWORD flags = utf8 ? WC_ERR_INVALID_CHARS : WC_NO_BEST_FIT_CHARS;
    BOOL substituted = FALSE;
    char buffer[kMaxSavePathBytes + 1];
    const int count = WideCharToMultiByte(CP_ACP, flags, wide.c_str(), -1, buffer, sizeof buffer,
                                          nullptr, utf8 ? nullptr : &substituted);
    if (count <= 1 || substituted)
        return false;
    *text = buffer;
    return true;
}

// The path in 8.3 names, empty when there is no such file or the drive keeps no short names.
static std::wstring ShortPath(const std::wstring& path)
{
    const DWORD size = GetShortPathNameW(path.c_str(), nullptr, 0);
    std::wstring result(size, L'\0');
    const DWORD count = size ? GetShortPathNameW(path.c_str(), result.data(), size) : 0;
    result.resize(count < size ? count : 0);
    return result;
}

Outcome SavePathFromWide(std::string* savePath, const wchar_t* path, PathUse use)
{
    savePath->clear();
    const std::wstring whole = path;
    if (whole.empty())
        return Outcome::Failed;
    if (ToCodePage(savePath, whole))
        return Outcome::Done;
    if (use == PathUse::Source)
    {
        const std::wstring shortPath = ShortPath(whole);
        return FailedIf(shortPath.empty() || !ToCodePage(savePath, shortPath));
    }
    // A new file gets the name that was asked for or none: only its folder may be written short.
    const size_t split = whole.find_last_of(L"\\/");
    if (split == std::wstring::npos)
        return Outcome::Failed;
    const std::wstring folder = ShortPath(whole.substr(0, split + 1));
    return FailedIf(folder.empty() || !ToCodePage(savePath, folder + whole.substr(split + 1)));
}

Outcome SavePathFromUtf8(std::string* savePath, const char* path, PathUse use)
{
    return SavePathFromWide(savePath, WideFromUtf8(path).c_str(), use);
}

bool operator<(const FileIdentity& a, const FileIdentity& b)
{
    return a.volume != b.volume ? a.volume < b.volume : a.number < b.number;
}

bool IdentifyFile(FileIdentity* identity, const char* path)
{
    HANDLE file = CreateFileW(WideFromUtf8(path).c_str(), 0,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    BY_HANDLE_FILE_INFORMATION info = {};
    if (file == INVALID_HANDLE_VALUE)
        return false;
    const bool known = GetFileInformationByHandle(file, &info) != 0;
    CloseHandle(file);
    *identity = {info.dwVolumeSerialNumber,
                 uint64_t(info.nFileIndexHigh) << 32 | info.nFileIndexLow};
    return known;
}

std::string PathKey(const std::string& path)
{
    std::wstring wide = WideFromUtf8(path.c_str());
    CharUpperBuffW(wide.data(), DWORD(wide.size()));
    std::replace(wide.begin(), wide.end(), L'/', L'\\');
    return std::string(reinterpret_cast<const char*>(wide.data()), wide.size() * sizeof(wchar_t));
}

static FILE* OpenWide(const std::wstring& path)
{
    if (!path.empty())
        return _wfopen(path.c_str(), L"rbN"); // N: not for child processes
    errno = ENOENT;
    return nullptr;
}

FILE* OpenUtf8Path(const char* path)
{
    return OpenWide(WideFromUtf8(path));
}

FILE* OpenSavePath(const char* savePath)
{
    return OpenWide(WideFromSavePath(savePath));
}

int64_t PhysicalMemoryBytes()
{
    MEMORYSTATUSEX status = {};
    status.dwLength = sizeof status;
    return GlobalMemoryStatusEx(&status) ? int64_t(status.ullTotalPhys) : INT64_MAX;
}

unsigned long MoveOverFile(const std::wstring& from, const std::wstring& to)
{
    const int kAttempts = 10;
    const DWORD kPauseMs = 50;
    for (int attempt = 1;; ++attempt)
    {
        if (MoveFileExW(from.c_str(), to.c_str(),
                        MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
            return 0;
        const DWORD error = GetLastError();
        const bool mayPass = error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION ||
                             error == ERROR_LOCK_VIOLATION || error == ERROR_WRITE_PROTECT;
        if (!mayPass || attempt == kAttempts)
            return error;
        Sleep(kPauseMs);
    }
}
