#include "files/FileReplace.h"

#include "files/FileReplaceSystem.h"

#include <cerrno>

bool BeginReplacing(ReplacingFile* file, const char* target)
{
    return OpenSibling(file, target);
}

void CancelReplacing(ReplacingFile* file)
{
    if (file->stream)
        std::fclose(file->stream);
    file->stream = nullptr;
    std::error_code ignored;
    if (!file->sibling.empty())
        std::filesystem::remove(file->sibling, ignored);
    file->sibling.clear();
}

bool FinishReplacing(ReplacingFile* file, bool toDisk)
{
    if (!file->error && toDisk)
        file->error = SyncToDisk(file->stream);
    const int lock = KeepLock(file->stream);
    if (std::fclose(file->stream) != 0 && !file->error)
        file->error = errno;
    file->stream = nullptr;
    if (!file->error)
        file->error = MoveOver(*file);
    DropLock(lock);
    if (!file->error)
        return true;
    CancelReplacing(file);
    return false;
}
