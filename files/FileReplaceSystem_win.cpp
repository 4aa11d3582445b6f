#include "files/FileReplaceSystem.h"

#include "base/SystemFiles.h"
#include "base/Win.h"

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <io.h>

static int ErrnoOf(DWORD error)
{
    switch (error)
    {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND: return ENOENT;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_WRITE_PROTECT: return EACCES;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL: return ENOSPC;
    }
    return EIO;
}

// Where a link ends. Replacing the link itself would leave its owner with a copy beside the file
// that he meant to change.
static std::wstring EndOfLink(const std::wstring& path)
{
    HANDLE file = CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                              OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return path;
    std::wstring end(32768, L'\0');
    const DWORD count = GetFinalPathNameByHandleW(file, end.data(), DWORD(end.size()), 0);
    CloseHandle(file);
    end.resize(count < end.size() ? count : 0);
    return end.empty() ? path : end;
}

static bool IsRunning(DWORD process)
{
    HANDLE handle = OpenProcess(SYNCHRONIZE, FALSE, process);
    if (!handle)
        return GetLastError() == ERROR_ACCESS_DENIED; // somebody else's
    const bool running = WaitForSingleObject(handle, 0) == WAIT_TIMEOUT;
    CloseHandle(handle);
    return running;
}

// Whoever writes a sibling has it open and lets nobody delete it, on this machine or another. Only
// between closing and moving it is it open to all: then the number of its process protects it.
void RemoveAbandonedSiblings(const std::filesystem::path& target)
{
    const std::filesystem::path folder = target.parent_path();
    const FolderTurn turn(folder, false);
    WIN32_FIND_DATAW entry;
    if (!turn.Taken()) // whoever has it keeps old files under such names
        return;
    HANDLE search = FindFirstFileW((folder / L".plenoviz-*.tmp").c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE)
        return;
    do
    {
        const DWORD process = SiblingProcess(std::wstring(entry.cFileName));
        if (process != 0 && !IsRunning(process))
            DeleteFileW((folder / entry.cFileName).c_str());
    } while (FindNextFileW(search, &entry));
    FindClose(search);
}

static std::filesystem::path NewName(const ReplacingFile& file)
{
    static std::atomic<unsigned> counter{0};
    return file.target.parent_path() / (L".plenoviz-" + std::to_wstring(GetCurrentProcessId()) +
                                        L"-" + std::to_wstring(counter++) + L".tmp");
}

// While it is marked like this, the file goes when its last handle is closed: no end of the
// process, however sudden, leaves it behind.
static bool GoesWhenClosed(HANDLE file, BOOL goes)
{
    FILE_DISPOSITION_INFO info = {};
    info.DeleteFile = BOOLEAN(goes);
    return SetFileInformationByHandle(file, FileDispositionInfo, &info, sizeof info) != 0;
}

// Nobody else writes or deletes it. A drive that cannot mark files leaves one behind if it comes to
// that, and the next process tidies up.
static HANDLE CreateMarked(ReplacingFile* file)
{
    for (;;)
    {
        file->sibling = NewName(*file);
        const HANDLE handle =
            CreateFileW(file->sibling.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE,
                        FILE_SHARE_READ, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle != INVALID_HANDLE_VALUE)
        {
            GoesWhenClosed(handle, TRUE);
            return handle;
        }
        if (GetLastError() != ERROR_FILE_EXISTS)
            return handle;
    }
}

static FILE* CreateSibling(ReplacingFile* file)
{
    const HANDLE handle = CreateMarked(file);
    if (handle == INVALID_HANDLE_VALUE)
    {
        file->error = ErrnoOf(GetLastError());
        file->sibling.clear();
        return nullptr;
    }
    const int number = _open_osfhandle(intptr_t(handle), _O_RDWR | _O_BINARY | _O_NOINHERIT);
    FILE* stream = number < 0 ? nullptr : _fdopen(number, "w+b");
    if (stream)
        return stream;
    file->error = errno;
    number < 0 ? void(CloseHandle(handle)) : void(_close(number));
    CancelReplacing(file);
    return nullptr;
}

static int NamesOf(const std::wstring& path)
{
    HANDLE file =
        CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    BY_HANDLE_FILE_INFORMATION info = {};
    if (file == INVALID_HANDLE_VALUE)
        return 1;
    const bool known = GetFileInformationByHandle(file, &info) != 0;
    CloseHandle(file);
    return known ? int(info.nNumberOfLinks) : 1;
}

void FindTarget(ReplacingFile* file, const char* target)
{
    std::wstring path = WideFromSavePath(target);
    DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT))
    {
        path = EndOfLink(path);
        attributes = GetFileAttributesW(path.c_str());
    }
    file->target = path;
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return;
    if (attributes & FILE_ATTRIBUTE_DIRECTORY)
        file->error = EISDIR;
    else if (attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_SYSTEM))
        file->error = EACCES;
    else
        file->otherNames = NamesOf(path) - 1;
}

static std::filesystem::path FolderOf(const std::filesystem::path& target)
{
    return target.has_parent_path() ? target.parent_path() : L".";
}

int CheckFolder(const std::filesystem::path& target)
{
    const std::filesystem::path path = FolderOf(target);
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return ErrnoOf(GetLastError());
    if (!(attributes & FILE_ATTRIBUTE_DIRECTORY))
        return ENOTDIR;
    HANDLE folder = CreateFileW(path.c_str(), FILE_ADD_FILE,
                                FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (folder == INVALID_HANDLE_VALUE)
        return ErrnoOf(GetLastError());
    CloseHandle(folder);
    return 0;
}

bool OpenSibling(ReplacingFile* file)
{
    file->stream = CreateSibling(file);
    return file->stream != nullptr;
}

// The system removes them: see GoesWhenClosed.
void RemoveOwnSiblings() {}

int SyncToDisk(FILE* stream)
{
    return std::fflush(stream) == 0 && _commit(_fileno(stream)) == 0 ? 0 : errno;
}

// From here on the number of the running process protects the sibling. Whoever gives it up removes
// it by its name.
int KeepLock(FILE* stream)
{
    GoesWhenClosed(HANDLE(_get_osfhandle(_fileno(stream))), FALSE);
    return -1;
}

void DropLock(ReplacingFile*) {}

int MoveOver(const ReplacingFile& file)
{
    const DWORD error = MoveOverFile(file.sibling.wstring(), file.target.wstring());
    return error ? ErrnoOf(error) : 0;
}

int KeepOld(std::filesystem::path* old, const ReplacingFile& file)
{
    const DWORD attributes = GetFileAttributesW(file.target.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return 0;
    if (attributes & FILE_ATTRIBUTE_DIRECTORY) // since it was looked at first
        return EISDIR;
    *old = NewName(file);
    if (CreateHardLinkW(old->c_str(), file.target.c_str(), nullptr))
        return 0;
    // Not every drive knows second names: then the old file has no other for a moment.
    const DWORD error = MoveOverFile(file.target.wstring(), old->wstring());
    if (error)
        old->clear();
    return error ? ErrnoOf(error) : 0;
}

// A mutex named after the folder, whatever way leads to it; processes of one session see it.
FolderTurn::FolderTurn(const std::filesystem::path& folder, bool wait)
{
    HANDLE opened = CreateFileW(folder.empty() ? L"." : folder.c_str(), 0,
                                FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    BY_HANDLE_FILE_INFORMATION info = {};
    if (opened == INVALID_HANDLE_VALUE)
        return;
    GetFileInformationByHandle(opened, &info);
    CloseHandle(opened);
    const std::wstring name = L"Local\\plenoviz-" + std::to_wstring(info.dwVolumeSerialNumber) +
                              L"-" + std::to_wstring(info.nFileIndexHigh) + L"-" +
                              std::to_wstring(info.nFileIndexLow);
    HANDLE mutex = CreateMutexW(nullptr, FALSE, name.c_str());
    if (!mutex)
        return;
    handle = intptr_t(mutex);
    const DWORD end = WaitForSingleObject(mutex, wait ? INFINITE : 0);
    taken = end == WAIT_OBJECT_0 || end == WAIT_ABANDONED;
}

FolderTurn::~FolderTurn()
{
    if (handle == -1)
        return;
    if (taken)
        ReleaseMutex(HANDLE(handle));
    CloseHandle(HANDLE(handle));
}
