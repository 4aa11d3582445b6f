#include "base/SystemFiles.h"

#include <cerrno>
#include <cstring>

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

FILE* OpenUtf8Path(const char* path)
{
    FILE* file = std::fopen(path, "rbe");
    struct stat info = {};
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
