#include "fuzz/FuzzTarget.h"

#include "base/SystemFiles.h"
#include "files/ImageFile.h"
#include "picture/Picture.h"

#include <sys/mman.h>
#include <unistd.h>

#include <numeric>
#include <string>
#include <vector>

// A picture file of any kind: loaded as the program loads it, and then taken as the source of
// colour profile and metadata of another picture. The file is one in memory.

// With the memory of this machine a header of a few bytes may rightly ask for gigabytes. The linker
// puts this in the place of the system's function.
extern "C" long __real_sysconf(int name);
extern "C" long __wrap_sysconf(int name);

long __wrap_sysconf(int name)
{
    const long kMemoryBytes = 96L << 20;
    return name == _SC_PHYS_PAGES ? kMemoryBytes / __real_sysconf(_SC_PAGESIZE)
                                  : __real_sysconf(name);
}

// Every sample is read, so that one that nobody wrote or owns is noticed.
static unsigned SumOf(const SBxPicBuf& picture)
{
    return std::accumulate(picture.data, picture.data + picture.size, 0u);
}

static void CheckPair(const SBxPicBuf& picture, const SBxPicBuf& alpha, bool failed)
{
    Promise(failed == !picture.data);
    Promise(!failed || !alpha.data);
    if (failed)
        return;
    Promise(PictureBytes(picture.width, picture.height, picture.components,
                         picture.bitsPerComponent) == picture.size);
    volatile unsigned sum = SumOf(picture);
    if (alpha.data)
    {
        Promise(alpha.width == picture.width && alpha.height == picture.height);
        sum = SumOf(alpha);
    }
    (void)sum;
}

static void Load(const std::string& path)
{
    Picture picture, alpha;
    LoadReport report;
    const bool failed = LoadPicturePair(path.c_str(), picture.Record(), alpha.Record(), &report);
    Promise(failed == (report.problem != LoadProblem::None));
    CheckPair(picture, alpha, failed);
}

static void SaveWithSource(const std::string& source, FormatId format)
{
    static const std::string target = "/dev/shm/plenoviz-fuzz-" + std::to_string(getpid());
    Picture picture(9, 7, 3, 8), alpha;
    CBxPicBufAPI::SetConst(picture.Record(), 77);
    SaveReport report;
    bool thrown = false;
    try
    {
        SavePicturePair(picture, alpha, target.c_str(), source.c_str(), format, &report);
    }
    catch (const std::runtime_error&) // the two of ImageFile.h; any other is a finding
    {
        thrown = true;
    }
    Promise(report.written == (report.problem == SaveProblem::None));
    Promise(thrown == (report.problem == SaveProblem::SourceFormat ||
                       report.problem == SaveProblem::SourceUnreadable));
    if (report.written)
        Promise(!LoadPicturePair(target.c_str(), picture.Record(), alpha.Record()) &&
                picture->width == 9);
    unlink(target.c_str());
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const int file = memfd_create("picture", MFD_CLOEXEC);
    Promise(file >= 0 && write(file, data, size) == ssize_t(size));
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    Load(path);
    // The same with the name of a camera raw file, which chooses another decoder.
    static const std::string raw = "/dev/shm/plenoviz-fuzz-" + std::to_string(getpid()) + ".dng";
    if (size > 2 && data[0] == data[1] && symlink(path.c_str(), raw.c_str()) == 0)
    {
        Load(raw);
        unlink(raw.c_str());
    }
    const std::vector<const FormatRow*> formats = SaveFormats();
    SaveWithSource(path, formats[size % formats.size()]->id);
    close(file);
    return 0;
}
