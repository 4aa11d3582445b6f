#include "files/FileReplaceSystem.h"

#include <atomic>
#include <cerrno>
#include <filesystem>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

static const int kMaxLinks = 40; // as many as the system itself follows

// The file that a chain of links ends at; it need not exist. Replacing a link itself would leave
// its owner with a copy beside the file that he meant to change.
static bool FollowLinks(std::filesystem::path* path, int* error)
{
    std::error_code failed;
    for (int i = 0; i < kMaxLinks; ++i)
    {
        if (!std::filesystem::is_symlink(*path, failed))
            return true;
        const std::filesystem::path next = std::filesystem::read_symlink(*path, failed);
        if (failed)
            break;
        *path = path->parent_path() / next;
    }
    *error = failed ? failed.value() : ELOOP;
    return false;
}

// A rename would replace a read-only file without asking. For root access() allows everything, so
// the permission bits are looked at too: a file that nobody may write is meant to stay.
static int WhyNotReplaceable(const char* path, const struct stat& info)
{
    if (S_ISDIR(info.st_mode))
        return EISDIR;
    if (!S_ISREG(info.st_mode))
        return ENOTSUP;
    if ((info.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0)
        return EACCES;
    return access(path, W_OK) == 0 ? 0 : errno;
}

// Every sibling is locked until it has taken the target's place. The lock goes with its process, so
// a sibling that can be locked belongs to nobody any more.
static void RemoveIfAbandoned(const std::filesystem::path& sibling)
{
    const int handle = open(sibling.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (handle < 0)
        return;
    struct stat info = {};
    if (fstat(handle, &info) == 0 && S_ISREG(info.st_mode) && flock(handle, LOCK_EX | LOCK_NB) == 0)
        unlink(sibling.c_str());
    close(handle);
}

static void RemoveAbandonedSiblings(const std::filesystem::path& target)
{
    std::error_code failed;
    const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : ".";
    std::filesystem::directory_iterator entry(folder, failed);
    for (; !failed && entry != std::filesystem::directory_iterator(); entry.increment(failed))
        if (SiblingProcess(entry->path().filename().native()) != 0)
            RemoveIfAbandoned(entry->path());
}

// Somebody who is tidying up may have taken the new file for an abandoned one before it was locked.
static bool LockSibling(int handle)
{
    if (flock(handle, LOCK_EX | LOCK_NB) != 0)
        return errno != EWOULDBLOCK; // file systems without locks: nobody tidies up there
    struct stat info = {};
    return fstat(handle, &info) != 0 || info.st_nlink > 0;
}

// A new file in the folder of the target. Its name does not grow out of the target's, which may be
// as long as names can be already.
static int CreateSibling(ReplacingFile* file)
{
    static std::atomic<unsigned> counter{0};
    for (;;)
    {
        const std::string name =
            ".plenoviz-" + std::to_string(getpid()) + "-" + std::to_string(counter++) + ".tmp";
        file->sibling = file->target.parent_path() / name;
        const int handle = open(file->sibling.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (handle < 0 && errno != EEXIST)
            return handle;
        if (handle >= 0 && LockSibling(handle))
            return handle;
        if (handle >= 0)
            close(handle);
    }
}

bool OpenSibling(ReplacingFile* file, const char* target)
{
    *file = ReplacingFile();
    file->target = target;
    if (!FollowLinks(&file->target, &file->error))
        return false;

    struct stat info = {};
    const bool exists = stat(file->target.c_str(), &info) == 0;
    file->error = exists ? WhyNotReplaceable(file->target.c_str(), info) : 0;
    if (file->error)
        return false;

    RemoveAbandonedSiblings(file->target);
    const int handle = CreateSibling(file);
    if (handle < 0)
    {
        file->error = errno;
        file->sibling.clear();
        return false;
    }
    // The owner first, since a change of owner takes permission bits away. Only root can give files
    // away; for everybody else the result belongs to whoever made it.
    if (exists && fchown(handle, info.st_uid, info.st_gid) != 0)
        errno = 0;
    if (exists && fchmod(handle, info.st_mode & 07777) != 0)
        file->error = errno;
    file->stream = file->error ? nullptr : fdopen(handle, "w+b");
    if (file->stream)
        return true;
    if (!file->error)
        file->error = errno;
    close(handle);
    CancelReplacing(file);
    return false;
}

int SyncToDisk(FILE* stream)
{
    if (std::fflush(stream) != 0)
        return errno;
    if (fsync(fileno(stream)) == 0 || errno == EINVAL || errno == ENOSYS || errno == ENOTSUP)
        return 0; // some file systems cannot be asked
    return errno;
}

int KeepLock(FILE* stream)
{
    return dup(fileno(stream));
}

void DropLock(int lock)
{
    if (lock >= 0)
        close(lock);
}

int MoveOver(const ReplacingFile& file)
{
    return std::rename(file.sibling.c_str(), file.target.c_str()) == 0 ? 0 : errno;
}
