#include "tools/SeriesFolder_win.h"

#include "base/Format_win.h"
#include "base/Win.h"
#include "text/ProfileStore.h"

#include <shlobj.h>

#include <cwchar>

static std::wstring ProductFolder()
{
    wchar_t appData[MAX_PATH] = L"";
    SHGetFolderPathW(nullptr, CSIDL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, appData);
    const std::wstring product = VcFormatText(L"%s\\%S\\", appData, g_productName);
    CreateDirectoryW(product.c_str(), nullptr);
    return product;
}

// What another instance has made is still being fused there. A file beside the folder says that it
// is taken: open as long as the program runs, gone with it however it ends.
struct FolderClaim
{
    std::wstring folder;
    HANDLE file = INVALID_HANDLE_VALUE;
};
static FolderClaim g_claim; // of the thread that makes series

void ForgetSeriesFolder()
{
    if (g_claim.file != INVALID_HANDLE_VALUE)
        CloseHandle(g_claim.file);
    g_claim = {};
}

static bool TryClaim(const std::wstring& folder)
{
    if (g_claim.folder == folder)
        return true;
    const HANDLE file = CreateFileW((folder + L".lock").c_str(), GENERIC_WRITE | DELETE, 0, nullptr,
                                    OPEN_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (file == INVALID_HANDLE_VALUE && GetLastError() == ERROR_SHARING_VIOLATION)
        return false;
    ForgetSeriesFolder();
    g_claim = {folder, file}; // where no file can be made, the folder is used without it
    return true;
}

static std::wstring SeriesFolder()
{
    const int kMostInstances = 9;
    const std::wstring first = ProductFolder() + L"tmpfolder";
    for (int i = 1; i <= kMostInstances; ++i)
    {
        const std::wstring folder = i == 1 ? first : first + std::to_wstring(i);
        if (TryClaim(folder))
            return folder;
    }
    return first;
}

// A read-only file would stay.
static void DeleteEntry(const std::wstring& folder, const WIN32_FIND_DATAW& entry)
{
    if (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)
        return;
    const std::wstring path = folder + L"/" + entry.cFileName;
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    DeleteFileW(path.c_str());
}

Outcome PrepareSeriesFolder(std::wstring* folder)
{
    const std::wstring path = SeriesFolder();
    *folder = path + L"/";
    CreateDirectoryW(path.c_str(), nullptr);
    WIN32_FIND_DATAW entry;
    const HANDLE search = FindFirstFileW((path + L"\\*.*").c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE)
        return Outcome::Failed;
    do
        DeleteEntry(path, entry);
    while (FindNextFileW(search, &entry));
    FindClose(search);
    return Outcome::Done;
}
