#include "files/FileHeaders.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <iterator>
#include <string>

// Number of `count` bytes at `bytes`.
static uint64_t FileNumber(const uint8_t* bytes, int count, bool bigEndian)
{
    uint64_t value = 0;
    for (int i = 0; i < count; ++i)
        value = value << 8 | bytes[bigEndian ? i : count - 1 - i];
    return value;
}

// Bytes of a colour table whose size is coded in the flags of the block before it.
static long ColourTableBytes(uint8_t flags)
{
    return flags & 0x80 ? 3L << ((flags & 7) + 1) : 0;
}

// Extensions: a label, then counted pieces up to an empty one.
static bool SkipExtension(FILE* stream)
{
    int count = std::fgetc(stream) == EOF ? EOF : std::fgetc(stream);
    while (count > 0)
    {
        if (std::fseek(stream, count, SEEK_CUR) != 0)
            return false;
        count = std::fgetc(stream);
    }
    return count == 0;
}

bool GifFrameSize(FILE* stream, int* width, int* height)
{
    uint8_t screen[13]; // signature, version, screen size, flags, background, aspect
    std::rewind(stream);
    if (std::fread(screen, sizeof screen, 1, stream) != 1 ||
        std::fseek(stream, ColourTableBytes(screen[10]), SEEK_CUR) != 0)
        return false;
    for (;;)
    {
        const int kind = std::fgetc(stream);
        if (kind == 0x21)
        {
            if (!SkipExtension(stream))
                return false;
            continue;
        }
        uint8_t frame[8]; // left, top, width, height
        if (kind != 0x2C || std::fread(frame, sizeof frame, 1, stream) != 1)
            return false;
        *width = int(FileNumber(frame + 4, 2, false));
        *height = int(FileNumber(frame + 6, 2, false));
        return true;
    }
}

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
        const auto length = uint32_t(FileNumber(head, 4, true));
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

// Calls chunk(offset, length, type) for each chunk until it returns true.
template <typename ChunkFn>
static void EachPngChunk(FILE* stream, ChunkFn chunkFound)
{
    uint8_t head[8];
    for (int64_t at = 8; at <= INT32_MAX && std::fseek(stream, long(at), SEEK_SET) == 0 &&
                         std::fread(head, sizeof head, 1, stream) == 1;)
    {
        const auto length = int64_t(FileNumber(head, 4, true));
        if (chunkFound(long(at), length, std::string(head + 4, head + 8)))
            return;
        at += 12 + length; // with type and checksum
    }
}

std::vector<MaskedByte> MaskedPngProfiles(FILE* stream)
{
    std::vector<MaskedByte> masked;
    EachPngChunk(stream,
                 [&](long at, int64_t, const std::string& type)
                 {
                     if (type == "iCCP")
                         masked.push_back({at + 4, 'x'}); // an unknown kind of chunk is skipped
                     return type == "IDAT";
                 });
    return masked;
}

bool PngChunksFit(FILE* stream)
{
    std::fseek(stream, 0, SEEK_END);
    const int64_t size = std::ftell(stream);
    bool fit = true;
    EachPngChunk(stream,
                 [&](long at, int64_t length, const std::string& type)
                 {
                     fit = type == "IDAT" || at + 12 + length <= size;
                     return !fit;
                 });
    return fit;
}

// A TIFF file begins with its byte order and the offset of a directory: a count, then entries of
// tag, type, number of values, and value. Files of type 43 have wider offsets and counts.
// Calls entry(offset, tag, first two bytes of the value) for each entry until it returns true.
template <typename EntryFn>
static void EachTiffEntry(FILE* stream, EntryFn entryFound)
{
    uint8_t head[16] = {};
    std::rewind(stream);
    if (std::fread(head, 1, sizeof head, stream) < 8)
        return;
    const bool bigEndian = head[0] == 'M';
    const bool wide = FileNumber(head + 2, 2, bigEndian) == 43;
    const uint64_t offset = FileNumber(head + (wide ? 8 : 4), wide ? 8 : 4, bigEndian);
    const int countBytes = wide ? 8 : 2, entryBytes = wide ? 20 : 12;
    uint8_t entry[20];
    if (offset > uint64_t(LONG_MAX) || std::fseek(stream, long(offset), SEEK_SET) != 0 ||
        std::fread(entry, size_t(countBytes), 1, stream) != 1)
        return;
    long at = long(offset) + countBytes;
    uint64_t left = FileNumber(entry, countBytes, bigEndian);
    for (; left > 0 && std::fread(entry, size_t(entryBytes), 1, stream) == 1; --left)
    {
        const uint8_t* value = entry + entryBytes - (wide ? 8 : 4);
        if (entryFound(at, int(FileNumber(entry, 2, bigEndian)), FileNumber(value, 2, bigEndian)))
            return;
        at += entryBytes;
    }
}

int TiffNumber(FILE* stream, int wanted)
{
    int number = -1;
    EachTiffEntry(stream,
                  [&](long, int tag, uint64_t value)
                  {
                      number = tag == wanted ? int(value) : -1;
                      return tag == wanted;
                  });
    return number;
}

std::vector<MaskedByte> MaskedBmpHeader(FILE* stream)
{
    const long kLength = 14;
    const uint8_t kFirstKind = 40;
    uint8_t head[kLength + kFirstKind];
    std::rewind(stream);
    if (std::fread(head, sizeof head, 1, stream) != 1)
        return {};
    const auto length = long(FileNumber(head + kLength, 4, false));
    if (length != 52 && length != 56 && length != 108 && length != 124)
        return {};
    std::vector<MaskedByte> masked = {{kLength, kFirstKind}};
    const uint64_t bits = FileNumber(head + 28, 2, false);
    if (bits > 8)
        return masked;
    uint64_t colours = FileNumber(head + 46, 4, false);
    if (colours == 0 || colours > 1u << bits)
        colours = 1u << bits;
    std::vector<uint8_t> palette(size_t(colours) * 4);
    std::fseek(stream, kLength + length, SEEK_SET);
    palette.resize(std::fread(palette.data(), 1, palette.size(), stream));
    for (size_t i = 0; i < palette.size(); ++i)
        masked.push_back({long(sizeof head + i), palette[i]});
    return masked;
}

std::vector<MaskedByte> MaskedTiffEntries(FILE* stream)
{
    // Sizes, kinds and places of pixels, what their packing needs, resolution, XMP and profile.
    static const int kNeeded[] = {
        254, 255, 256, 257, 258, 259, 262, 266, 273, 277, 278, 279, 280, 281,   282,  283, 284,
        292, 293, 296, 317, 320, 322, 323, 324, 325, 332, 334, 338, 339, 340,   341,  347, 512,
        513, 514, 515, 517, 518, 519, 520, 521, 529, 530, 531, 532, 700, 34675, 37439};
    std::vector<MaskedByte> masked;
    EachTiffEntry(stream,
                  [&](long at, int tag, uint64_t)
                  {
                      // No entry has the tag 0, so nobody asks for it.
                      if (!std::binary_search(std::begin(kNeeded), std::end(kNeeded), tag))
                          masked.insert(masked.end(), {{at, 0}, {at + 1, 0}});
                      return false;
                  });
    return masked;
}

bool LooksLikeRaw(FILE* stream)
{
    struct Signature
    {
        int offset, length;
        const char* bytes;
    };
    static const Signature kSignatures[] = {
        {0, 4, "II*\0"}, {0, 4, "MM\0*"}, {0, 4, "IIRO"},     {0, 4, "IIRS"},
        {0, 4, "MMOR"},  {0, 4, "IIU\0"}, {0, 8, "FUJIFILM"}, {6, 8, "HEAPCCDR"},
        {0, 4, "\0MRM"}, {0, 4, "FOVb"},  {4, 7, "ftypcrx"},
    };
    char head[16] = {};
    std::rewind(stream);
    const size_t count = std::fread(head, 1, sizeof head, stream);
    return count == sizeof head &&
           std::any_of(std::begin(kSignatures), std::end(kSignatures),
                       [&](const Signature& s)
                       { return std::memcmp(head + s.offset, s.bytes, size_t(s.length)) == 0; });
}

static const size_t kTiff = 6; // "Exif" and two zeros; offsets count from here

// Whether the first directory of an EXIF block, with the offset behind it, lies inside the block.
static bool ExifIsSound(const std::vector<uint8_t>& block)
{
    if (block.size() < kTiff + 8)
        return false;
    const bool bigEndian = block[kTiff] == 'M';
    const uint64_t directory = kTiff + FileNumber(&block[kTiff + 4], 4, bigEndian);
    if (directory + 2 > block.size())
        return false;
    const uint64_t entries = FileNumber(&block[size_t(directory)], 2, bigEndian);
    return directory + 2 + 12 * entries + 4 <= block.size();
}

static const uint8_t kExifStart[6] = {'E', 'x', 'i', 'f', 0, 0};

// A JPEG file is a chain of markers with lengths, until the pixels start.
std::vector<uint8_t> SoundJpegExif(FILE* stream)
{
    const int kPixels = 0xDA, kApplication1 = 0xE1;
    uint8_t marker[4];
    for (long at = 2; std::fseek(stream, at, SEEK_SET) == 0 &&
                      std::fread(marker, sizeof marker, 1, stream) == 1 && marker[0] == 0xFF;)
    {
        if (marker[1] == 0xFF) // padding
        {
            ++at;
            continue;
        }
        if (marker[1] == kPixels)
            break;
        const auto length = long(FileNumber(marker + 2, 2, true)); // with its own two bytes
        std::vector<uint8_t> block(size_t(std::max(length - 2, 0L)));
        if (marker[1] == kApplication1 && block.size() >= sizeof kExifStart &&
            std::fread(block.data(), block.size(), 1, stream) == 1 &&
            std::memcmp(block.data(), kExifStart, sizeof kExifStart) == 0 && ExifIsSound(block))
            return block;
        at += 2 + std::max(length, 2L);
    }
    return {};
}

// Decoders find the block in different ways, some skip rubbish on the way to it. So these letters
// are masked wherever they stand; by chance they do so in one file out of millions.
std::vector<MaskedByte> MaskedExif(FILE* stream)
{
    std::vector<MaskedByte> masked;
    std::vector<uint8_t> piece(1 << 16);
    const size_t overlap = sizeof kExifStart - 1;
    std::rewind(stream);
    size_t kept = 0; // bytes of the piece before
    for (long at = 0;;)
    {
        const size_t read = std::fread(piece.data() + kept, 1, piece.size() - kept, stream);
        const auto end = piece.begin() + std::ptrdiff_t(kept + read);
        for (auto found = piece.begin();; ++found)
        {
            found = std::search(found, end, std::begin(kExifStart), std::end(kExifStart));
            if (found == end)
                break;
            masked.push_back({at + long(found - piece.begin()), 'x'});
        }
        if (read == 0 || kept + read < overlap || at > INT32_MAX)
            return masked;
        std::copy(end - std::ptrdiff_t(overlap), end, piece.begin());
        at += long(kept + read - overlap);
        kept = overlap;
    }
}

// The number of the orientation in a block whose first directory is sound, or null.
static uint8_t* OrientationIn(uint8_t* block)
{
    const bool bigEndian = block[kTiff] == 'M';
    uint8_t* entry = block + kTiff + FileNumber(block + kTiff + 4, 4, bigEndian);
    uint64_t left = FileNumber(entry, 2, bigEndian);
    for (entry += 2; left > 0; --left, entry += 12)
        if (FileNumber(entry, 2, bigEndian) == uint64_t(kTiffOrientation))
            return entry + 8;
    return nullptr;
}

static int OrientationOf(std::vector<uint8_t> sound)
{
    const uint8_t* number = sound.empty() ? nullptr : OrientationIn(sound.data());
    return number ? int(FileNumber(number, 2, sound[kTiff] == 'M')) : 1;
}

int JpegOrientation(FILE* stream)
{
    return OrientationOf(SoundJpegExif(stream));
}

int ExifOrientation(const uint8_t* bytes, size_t count)
{
    std::vector<uint8_t> block(bytes, bytes + count);
    if (count < sizeof kExifStart || std::memcmp(bytes, kExifStart, sizeof kExifStart) != 0)
        block.insert(block.begin(), std::begin(kExifStart), std::end(kExifStart));
    return ExifIsSound(block) ? OrientationOf(block) : 1;
}

int XmpOrientation(const std::string& xmp)
{
    for (const std::string name :
         {"tiff:Orientation=\"", "tiff:Orientation='", "tiff:Orientation>"})
    {
        const size_t found = xmp.find(name);
        const size_t place = found == xmp.npos ? xmp.size() : found + name.size();
        if (place < xmp.size() && xmp[place] >= '2' && xmp[place] <= '8')
            return xmp[place] - '0';
    }
    return 1;
}

void SetExifUpright(std::vector<uint8_t>* sound)
{
    uint8_t* block = sound->data();
    const bool bigEndian = block[kTiff] == 'M';
    uint8_t* number = OrientationIn(block);
    if (!number || FileNumber(number, 2, bigEndian) < 2)
        return;
    number[0] = bigEndian ? 0 : 1;
    number[1] = bigEndian ? 1 : 0;
    // The offset of the preview's directory stands behind the first one.
    uint8_t* directory = block + kTiff + FileNumber(block + kTiff + 4, 4, bigEndian);
    std::memset(directory + 2 + 12 * FileNumber(directory, 2, bigEndian), 0, 4);
}
