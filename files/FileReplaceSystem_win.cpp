#include "files/FileReplaceSystem.h"

#include "base/SystemFiles.h"
#include "base/Win.h"

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>

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
static void RemoveAbandonedSiblings(const std::filesystem::path& folder)
{
    WIN32_FIND_DATAW entry;
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

static FILE* CreateSibling(ReplacingFile* file)
{
    static std::atomic<unsigned> counter{0};
    int handle = -1;
    for (errno_t error = EEXIST; error != 0;)
    {
        const std::wstring name = L".plenoviz-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                                  std::to_wstring(counter++) + L".tmp";
        file->sibling = file->target.parent_path() / name;
        error = _wsopen_s(&handle, file->sibling.c_str(),
                          _O_RDWR | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT, _SH_DENYWR,
                          _S_IREAD | _S_IWRITE);
        if (error == 0 || error == EEXIST)
            continue;
        file->error = error;
        file->sibling.clear();
        return nullptr;
    }
    FILE* stream = _fdopen(handle, "w+b");
    if (stream)
        return stream;
    file->error = errno;
    _close(handle);
    CancelReplacing(file);
    return nullptr;
}

bool OpenSibling(ReplacingFile* file, const char* target)
{
    *file = ReplacingFile();
    std::wstring path = WideFromSavePath(target);
    DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT))
    {
        path = EndOfLink(path);
        attributes = GetFileAttributesW(path.c_str());
    }
    if (attributes != INVALID_FILE_ATTRIBUTES)
    {
        if (attributes & FILE_ATTRIBUTE_DIRECTORY)
            file->error = EISDIR;
        else if (attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_SYSTEM))
            file->error = EACCES;
        if (file->error)
            return false;
    }
    file->target = path;
    RemoveAbandonedSiblings(file->target.parent_path());
    file->stream = CreateSibling(file);
    return file->stream != nullptr;
}

int SyncToDisk(FILE* stream)
{
    return std::fflush(stream) == 0 && _commit(_fileno(stream)) == 0 ? 0 : errno;
}

// The number of the running process protects a closed sibling.
int KeepLock(FILE*)
{
    return -1;
}

void DropLock(int) {}

int MoveOver(const ReplacingFile& file)
{
    const DWORD error = MoveOverFile(file.sibling.wstring(), file.target.wstring());
    return error ? ErrnoOf(error) : 0;
}
