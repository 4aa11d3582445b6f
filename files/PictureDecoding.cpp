#include "files/PictureDecoding.h"

#include "base/FreeMemory.h"
#include "base/SystemFiles.h"

#include <algorithm>

bool SeekFile(FILE* file, int64_t offset)
{
#ifdef _WIN32
    return _fseeki64(file, offset, SEEK_SET) == 0;
#else
    return fseeko(file, offset, SEEK_SET) == 0;
#endif
}

int64_t TellFile(FILE* file)
{
#ifdef _WIN32
    return _ftelli64(file);
#else
    return ftello(file);
#endif
}

int64_t SizeOfFile(FILE* file)
{
#ifdef _WIN32
    const bool found = _fseeki64(file, 0, SEEK_END) == 0;
#else
    const bool found = fseeko(file, 0, SEEK_END) == 0;
#endif
    const int64_t size = found ? TellFile(file) : -1;
    std::rewind(file);
    return size;
}

bool Refuse(Decoding* decoding, LoadProblem problem, const std::string& detail)
{
    decoding->report.problem = problem;
    decoding->report.detail = detail;
    return false;
}

static int Percent(double share)
{
    return int(std::clamp(share, 0.0, 1.0) * 100.0);
}

std::string EndText(double share)
{
    if (share <= 0.0)
        return "the file ends before the picture begins";
    return share >= 1.0
               ? "the file ends before its end mark"
               : "the file ends after " + std::to_string(Percent(share)) + " % of the picture";
}

void NoteDamage(Decoding* decoding, const std::string& what, double share)
{
    if (!decoding->damage.empty())
        return;
    decoding->damage = what;
    decoding->share = share;
}

static std::string Megabytes(int64_t bytes)
{
    return std::to_string((bytes + (1 << 20) - 1) >> 20) + " MB";
}

// The rest of the program needs some as well.
static int64_t MemoryForPictures()
{
    return std::min(PhysicalMemoryBytes(), AvailableMemoryBytes());
}

static int64_t BytesOf(const PictureClaim& claim)
{
    const int64_t bytes =
        PictureBytes(int(claim.width), int(claim.height), claim.components, claim.bits);
    return bytes + (claim.alpha ? bytes / claim.components : 0) + claim.decoderBytes;
}

bool CheckClaim(Decoding* decoding, const PictureClaim& claim)
{
    const std::string size = std::to_string(claim.width) + " x " + std::to_string(claim.height);
    const int64_t kLongestSide = INT32_MAX;
    if (claim.width < 1 || claim.height < 1 || claim.width > kLongestSide ||
        claim.height > kLongestSide)
        return Refuse(decoding, LoadProblem::Damaged, "the picture is " + size);
    const double megapixels = double(claim.width) * double(claim.height) / 1e6;
    if (megapixels > decoding->options.megapixelLimit)
        return Refuse(decoding, LoadProblem::OverLimit,
                      size + " pixels, the limit is " +
                          std::to_string(decoding->options.megapixelLimit) + " megapixels");
    const int64_t bytes =
        PictureBytes(int(claim.width), int(claim.height), claim.components, claim.bits);
    if (bytes < 0)
        return Refuse(decoding, LoadProblem::TooLarge, size + " pixels");
    if (claim.leastFileBytes > decoding->fileBytes)
    {
        const double share = double(decoding->fileBytes) / double(claim.leastFileBytes);
        NoteDamage(decoding, EndText(std::min(share, 0.99)), share);
        // A tenth of what the pixels need at the very least is a wrong size, not a cut.
        if (!decoding->options.acceptDamaged || share < 0.1)
            return Refuse(decoding, LoadProblem::Damaged, decoding->damage);
    }
    if (BytesOf(claim) > MemoryForPictures())
        return Refuse(decoding, LoadProblem::OutOfMemory,
                      Megabytes(BytesOf(claim)) + " are needed");
    return true;
}

bool MakePicture(Decoding* decoding, const PictureClaim& claim)
{
    if (!CheckClaim(decoding, claim) || decoding->headerOnly)
        return false;
    decoding->picture = Picture(int(claim.width), int(claim.height), claim.components, claim.bits);
    if (claim.alpha)
        decoding->alpha = Picture(int(claim.width), int(claim.height), 1, claim.bits);
    if (decoding->picture.Empty() || (claim.alpha && decoding->alpha.Empty()))
        return Refuse(decoding, LoadProblem::OutOfMemory,
                      Megabytes(BytesOf(claim)) + " are needed");
    return true;
}
