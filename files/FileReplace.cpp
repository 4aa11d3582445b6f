#include "files/FileReplace.h"

#include "files/FileReplaceSystem.h"

#include <atomic>
#include <cerrno>
#include <mutex>
#include <set>

namespace fs = std::filesystem;

// Several files at once: each old file gets a second name before the new one takes its place, so
// that the way back is a rename, too. Only a process that is killed between two of these renames, a
// few microseconds apart, leaves a mixture.

// Whether this process has not tidied that folder up yet; asking counts as doing it. Looking
// through a folder with a hundred thousand files at every save would take longer than the save.
static bool IsFirstVisit(const fs::path& folder)
{
    static std::mutex guard;
    static std::set<fs::path> visited;
    const std::lock_guard<std::mutex> turn(guard);
    return visited.insert(folder).second;
}

int CheckTarget(const char* target)
{
    ReplacingFile file;
    FindTarget(&file, target);
    return file.error ? file.error : CheckFolder(file.target);
}

bool BeginReplacing(ReplacingFile* file, const char* target)
{
    *file = ReplacingFile();
    FindTarget(file, target);
    if (file->error)
        return false;
    if (IsFirstVisit(file->target.parent_path()))
        RemoveAbandonedSiblings(file->target);
    return OpenSibling(file);
}

void CancelReplacing(ReplacingFile* file)
{
    if (file->stream)
        std::fclose(file->stream);
    file->stream = nullptr;
    std::error_code ignored;
    if (!file->sibling.empty())
        fs::remove(file->sibling, ignored);
    file->sibling.clear();
    DropLock(file);
}

bool CompleteReplacing(ReplacingFile* file, bool toDisk)
{
    if (!file->error && toDisk)
        file->error = SyncToDisk(file->stream);
    file->lock = KeepLock(file->stream);
    if (std::fclose(file->stream) != 0 && !file->error)
        file->error = errno;
    file->stream = nullptr;
    if (!file->error && file->stopped && file->stopped())
        file->error = ECANCELED;
    if (!file->error)
        return true;
    CancelReplacing(file);
    return false;
}

// The sibling's name is nobody's any more.
static void Settle(ReplacingFile* file)
{
    file->sibling.clear();
    DropLock(file);
}

bool FinishReplacing(ReplacingFile* file, bool toDisk)
{
    if (!CompleteReplacing(file, toDisk))
        return false;
    file->error = MoveOver(*file);
    if (!file->error)
        Settle(file);
    else
        CancelReplacing(file);
    return !file->error;
}

static std::atomic<int> g_moving{0}; // runs of FinishTogether

bool AbandonReplacing()
{
    if (g_moving != 0)
        return false;
    RemoveOwnSiblings();
    return true;
}

static void TakeBack(const ReplacingFile& file, const fs::path& old)
{
    std::error_code ignored;
    if (old.empty())
        fs::remove(file.target, ignored);
    else
        fs::rename(old, file.target, ignored);
}

int FinishTogether(std::vector<ReplacingFile>* files)
{
    if (files->empty())
        return -1;
    const FolderTurn turn(files->front().target.parent_path(), true);
    ++g_moving;
    std::vector<fs::path> olds(files->size());
    size_t moved = 0;
    for (; moved < files->size(); ++moved)
    {
        ReplacingFile& file = (*files)[moved];
        file.error = file.stopped && file.stopped() ? ECANCELED : KeepOld(&olds[moved], file);
        if (!file.error)
            file.error = MoveOver(file);
        if (file.error)
            break;
    }
    const bool failed = moved < files->size();
    if (failed && !olds[moved].empty()) // the old file may have nothing but its second name
        TakeBack((*files)[moved], olds[moved]);
    for (size_t i = moved; failed && i-- > 0;)
        TakeBack((*files)[i], olds[i]);
    std::error_code ignored;
    for (const fs::path& old : olds)
        if (!old.empty())
            fs::remove(old, ignored);
    for (ReplacingFile& file : *files)
        failed ? CancelReplacing(&file) : Settle(&file);
    --g_moving;
    return failed ? int(moved) : -1;
}
