#include "base/SystemFiles.h"

#include <cerrno>
#include <cstring>
#include <map>
#include <mutex>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

Outcome SavePathFromUtf8(std::string* savePath, const char* path, PathUse)
{
    savePath->clear();
    if (!*path || std::strlen(path) > size_t(kMaxSavePathBytes))
        return Outcome::Failed;
    *savePath = path;
    return Outcome::Done;
}

bool operator<(const FileIdentity& a, const FileIdentity& b)
{
    return a.volume != b.volume ? a.volume < b.volume : a.number < b.number;
}

bool IdentifyFile(FileIdentity* identity, const char* path)
{
    struct stat info = {};
    if (stat(path, &info) != 0)
        return false;
    *identity = {uint64_t(info.st_dev), uint64_t(info.st_ino)};
    return true;
}

std::string PathKey(const std::string& path)
{
    return path;
}

// No picture is larger than this many bytes, however badly it is packed.
static const int64_t kMostPipeBytes = int64_t(4) << 30;

// 0 or an errno. A wish to stop wakes whoever waits for a pipe that nobody fills.
static int CopyPipe(FILE* to, const char* path)
{
    const int pipe = open(path, O_RDONLY | O_CLOEXEC);
    int error = pipe < 0 ? errno : 0;
    char bytes[16 << 10];
    for (int64_t sum = 0; !error;)
    {
        const ssize_t count = read(pipe, bytes, sizeof bytes);
        if (count == 0)
            break;
        sum += count;
        if (count < 0 ||
            (sum <= kMostPipeBytes && std::fwrite(bytes, 1, size_t(count), to) != size_t(count)))
            error = errno;
        else if (sum > kMostPipeBytes)
            error = EFBIG;
    }
    if (pipe >= 0)
        close(pipe);
    return !error && std::fflush(to) != 0 ? errno : error;
}

static FILE* OpenPipe(const char* path, const FileIdentity& identity)
{
    static std::mutex guard;
    static std::map<FileIdentity, FILE*> kept; // until the program ends
    const std::lock_guard<std::mutex> turn(guard);
    FILE*& copy = kept[identity];
    if (!copy)
    {
        FILE* file = std::tmpfile();
        const int error = file ? CopyPipe(file, path) : errno;
        if (error)
        {
            if (file)
                std::fclose(file);
            errno = error;
            return nullptr;
        }
        copy = file;
    }
    // A number duplicated would share its place in the file with all others.
    return std::fopen(("/proc/self/fd/" + std::to_string(fileno(copy))).c_str(), "rbe");
}

FILE* OpenUtf8Path(const char* path)
{
    struct stat info = {};
    if (stat(path, &info) == 0 && S_ISFIFO(info.st_mode))
        return OpenPipe(path, {uint64_t(info.st_dev), uint64_t(info.st_ino)});
    FILE* file = std::fopen(path, "rbe");
    if (!file || fstat(fileno(file), &info) != 0 || !S_ISDIR(info.st_mode))
        return file;
    std::fclose(file);
    errno = EISDIR;
    return nullptr;
}

FILE* OpenSavePath(const char* savePath)
{
    return OpenUtf8Path(savePath);
}

int64_t PhysicalMemoryBytes()
{
    return int64_t(sysconf(_SC_PHYS_PAGES)) * sysconf(_SC_PAGESIZE);
}
