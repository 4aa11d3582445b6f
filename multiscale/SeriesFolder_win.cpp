#include "multiscale/SeriesFolder_win.h"

#include "app/Format_win.h"
#include "app/ProfileStore.h"
#include "app/Win.h"

#include <shlobj.h>

#include <cwchar>

static std::wstring SeriesFolder()
{
    wchar_t appData[MAX_PATH] = L"";
    SHGetFolderPathW(nullptr, CSIDL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, appData);
    const std::wstring product = VcFormatText(L"%s\\%S\\", appData, g_productName);
    CreateDirectoryW(product.c_str(), nullptr);
    return product + L"tmpfolder";
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

bool PrepareSeriesFolder(std::wstring* folder)
{
    const std::wstring path = SeriesFolder();
    *folder = path + L"/";
    CreateDirectoryW(path.c_str(), nullptr);
    WIN32_FIND_DATAW entry;
    const HANDLE search = FindFirstFileW((path + L"\\*.*").c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE)
        return false;
    do
        DeleteEntry(path, entry);
    while (FindNextFileW(search, &entry));
    FindClose(search);
    return true;
}
