#include "files/FileReplaceSystem.h"

#include "base/SystemFiles.h"

#include <atomic>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
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

static std::filesystem::path FolderOf(const std::filesystem::path& target)
{
    return target.has_parent_path() ? target.parent_path() : ".";
}

void RemoveAbandonedSiblings(const std::filesystem::path& target)
{
    const std::filesystem::path folder = FolderOf(target);
    const FolderTurn turn(folder, false);
    if (!turn.Taken()) // whoever has it keeps old files under such names
        return;
    std::error_code failed;
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

static std::filesystem::path NewName(const ReplacingFile& file)
{
    static std::atomic<unsigned> counter{0};
    const std::string name =
        ".plenoviz-" + std::to_string(getpid()) + "-" + std::to_string(counter++) + ".tmp";
    return file.target.parent_path() / name;
}

// What a signal handler can read: the names of siblings, in memory that nobody frees. A name that
// finds no room here stays behind when the process is ended, and the next one tidies up.
struct Mark
{
    std::atomic<bool> taken{false}, readable{false};
    char path[kMaxSavePathBytes + 64];
};
static Mark g_marks[64];

static int MarkSibling(const std::filesystem::path& sibling)
{
    for (Mark& mark : g_marks)
    {
        if (sibling.native().size() >= sizeof mark.path || mark.taken.exchange(true))
            continue;
        std::memcpy(mark.path, sibling.c_str(), sibling.native().size() + 1);
        mark.readable = true;
        return int(&mark - g_marks);
    }
    return -1;
}

static void Unmark(ReplacingFile* file)
{
    if (file->mark < 0)
        return;
    g_marks[file->mark].readable = false;
    g_marks[file->mark].taken = false;
    file->mark = -1;
}

void RemoveOwnSiblings()
{
    for (Mark& mark : g_marks)
        if (mark.readable)
            unlink(mark.path);
}

// A new file in the folder of the target. Its name does not grow out of the target's, which may be
// as long as names can be already.
static int CreateSibling(ReplacingFile* file)
{
    for (;;)
    {
        file->sibling = NewName(*file);
        const int handle = open(file->sibling.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (handle < 0 && errno != EEXIST)
            return handle;
        if (handle >= 0 && LockSibling(handle))
        {
            file->mark = MarkSibling(file->sibling);
            return handle;
        }
        if (handle >= 0)
            close(handle);
    }
}

// Labels and rights that people and programs have put on a file. What the system reckons from the
// contents, and what this user may not set, stays away.
static void CopyAttributes(int handle, const char* target)
{
    char names[64 << 10], value[64 << 10]; // as much as there can be
    const ssize_t bytes = listxattr(target, names, sizeof names);
    for (ssize_t at = 0; at < bytes; at += ssize_t(std::strlen(names + at)) + 1)
    {
        const char* name = names + at;
        const ssize_t size = getxattr(target, name, value, sizeof value);
        const bool reckoned =
            std::strcmp(name, "security.ima") == 0 || std::strcmp(name, "security.evm") == 0;
        if (size >= 0 && !reckoned && fsetxattr(handle, name, value, size_t(size), 0) != 0)
            errno = 0;
    }
}

// The owner first, since a change of owner takes permission bits away. Only root can give files
// away; for everybody else the result belongs to whoever made it.
static int TakeAfter(int handle, const char* target, const struct stat& info)
{
    if (fchown(handle, info.st_uid, info.st_gid) != 0)
        errno = 0;
    if (fchmod(handle, info.st_mode & 07777) != 0)
        return errno;
    CopyAttributes(handle, target); // lists of rights among them, which the bits above are part of
    return 0;
}

void FindTarget(ReplacingFile* file, const char* target)
{
    file->target = target;
    struct stat info = {};
    if (!FollowLinks(&file->target, &file->error) || stat(file->target.c_str(), &info) != 0)
        return;
    file->error = WhyNotReplaceable(file->target.c_str(), info);
    file->otherNames = int(info.st_nlink) - 1;
}

int CheckFolder(const std::filesystem::path& target)
{
    const std::filesystem::path folder = FolderOf(target);
    struct stat info = {};
    if (stat(folder.c_str(), &info) != 0)
        return errno;
    if (!S_ISDIR(info.st_mode))
        return ENOTDIR;
    return access(folder.c_str(), W_OK | X_OK) == 0 ? 0 : errno;
}

bool OpenSibling(ReplacingFile* file)
{
    const int handle = CreateSibling(file);
    if (handle < 0)
    {
        file->error = errno;
        file->sibling.clear();
        return false;
    }
    struct stat info = {};
    if (stat(file->target.c_str(), &info) == 0)
        file->error = TakeAfter(handle, file->target.c_str(), info);
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

void DropLock(ReplacingFile* file)
{
    if (file->lock >= 0)
        close(file->lock);
    file->lock = -1;
    Unmark(file);
}

int MoveOver(const ReplacingFile& file)
{
    return std::rename(file.sibling.c_str(), file.target.c_str()) == 0 ? 0 : errno;
}

int KeepOld(std::filesystem::path* old, const ReplacingFile& file)
{
    struct stat info = {};
    if (stat(file.target.c_str(), &info) != 0)
        return 0;
    if (const int reason = WhyNotReplaceable(file.target.c_str(), info))
        return reason; // since it was looked at first
    for (;;)
    {
        *old = NewName(file);
        if (link(file.target.c_str(), old->c_str()) == 0)
            return 0;
        if (errno == EEXIST)
            continue;
        // Not every file system knows second names: then the old file has no other for a moment.
        if (std::rename(file.target.c_str(), old->c_str()) == 0)
            return 0;
        const int error = errno;
        old->clear();
        return error;
    }
}

FolderTurn::FolderTurn(const std::filesystem::path& folder, bool wait)
{
    const int opened =
        open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (opened < 0)
        return;
    handle = opened;
    while (flock(opened, wait ? LOCK_EX : LOCK_EX | LOCK_NB) != 0)
        if (errno != EINTR)
        {
            taken = errno != EWOULDBLOCK; // file systems without locks
            return;
        }
}

FolderTurn::~FolderTurn()
{
    if (handle >= 0)
        close(int(handle));
}
