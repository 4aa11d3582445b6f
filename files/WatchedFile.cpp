#include "files/WatchedFile.h"

#include <cerrno>

void WriteWatched(WatchedFile* file, const void* bytes, size_t count)
{
    errno = 0;
    if (!file->error && count > 0 && std::fwrite(bytes, count, 1, file->stream) != 1)
        file->error = errno ? errno : EIO;
}
