#include "picture/PngProfile.h"

#include <algorithm>
#include <cstring>

static const uint32_t kMaxPackedBytes = 16u << 20; // real profiles have a few megabytes at most
static const size_t kMaxNameBytes = 80;            // the profile's name with its final zero

static bool SplitChunk(std::vector<uint8_t>* chunk)
{
    const auto limit = chunk->begin() + std::ptrdiff_t(std::min(kMaxNameBytes, chunk->size()));
    const auto zero = std::find(chunk->begin(), limit, uint8_t(0));
    // Behind the name: one byte for the packing method, of which only number 0 exists.
    if (zero == limit || chunk->end() - zero < 3 || zero[1] != 0)
        return false;
    chunk->erase(chunk->begin(), zero + 2);
    return true;
}

// A PNG file is a signature and a chain of chunks: length, type, contents, checksum. The profile
// comes before the pixels.
bool FindPngProfile(FILE* stream, std::vector<uint8_t>* packed)
{
    const long kSignatureBytes = 8;
    if (std::fseek(stream, kSignatureBytes, SEEK_SET) != 0)
        return false;
    uint8_t head[8];
    while (std::fread(head, sizeof head, 1, stream) == 1)
    {
        const uint32_t length =
            uint32_t(head[0]) << 24 | uint32_t(head[1]) << 16 | uint32_t(head[2]) << 8 | head[3];
        if (length > kMaxPackedBytes || std::memcmp(head + 4, "IDAT", 4) == 0)
            return false;
        if (std::memcmp(head + 4, "iCCP", 4) == 0)
        {
            packed->resize(length);
            return length > 0 && std::fread(packed->data(), length, 1, stream) == 1 &&
                   SplitChunk(packed);
        }
        const long kChecksumBytes = 4;
        if (std::fseek(stream, long(length) + kChecksumBytes, SEEK_CUR) != 0)
            return false;
    }
    return false;
}
