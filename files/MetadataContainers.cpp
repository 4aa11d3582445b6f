#include "files/MetadataContainers.h"

#include "files/ExifBlock.h"
#include "files/XmpPacket.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <string>

using Bytes = std::vector<uint8_t>;

// No photograph has more of one thing; whoever claims it wants to fill the memory.
static const uint64_t kMostBytes = 64u << 20;

static bool BeginsWith(const Bytes& bytes, const char* text, size_t size)
{
    return bytes.size() >= size && std::memcmp(bytes.data(), text, size) == 0;
}

static Bytes From(const Bytes& bytes, size_t start)
{
    return Bytes(bytes.begin() + std::ptrdiff_t(std::min(start, bytes.size())), bytes.end());
}

// ---- JPEG: a chain of markers with lengths, until the pixels start ----

// Profiles, captions and long XMP come in pieces.
struct JpegPieces
{
    std::map<int, Bytes> profile; // by their numbers
    int profilePieces = 0;        // how many there should be
    Bytes resources;
    std::map<uint64_t, Bytes> extension; // of XMP, by offset
    std::string extensionName;
    uint64_t extensionBytes = 0;
};

static const char kExifStart[] = "Exif\0";                      // and one more zero
static const char kXmpStart[] = "http://ns.adobe.com/xap/1.0/"; // and a zero, as the others
static const char kXmpMore[] = "http://ns.adobe.com/xmp/extension/";
static const char kProfileStart[] = "ICC_PROFILE";
static const char kResourcesStart[] = "Photoshop 3.0";

static void TakeExtension(const Bytes& segment, JpegPieces* pieces)
{
    const size_t kNameBytes = 32, start = sizeof kXmpMore;
    const size_t data = start + kNameBytes + 8;
    if (segment.size() < data)
        return;
    const std::string name(segment.begin() + std::ptrdiff_t(start),
                           segment.begin() + std::ptrdiff_t(start + kNameBytes));
    if (!pieces->extensionName.empty() && pieces->extensionName != name)
        return;
    pieces->extensionName = name;
    pieces->extensionBytes = NumberAt(&segment[start + kNameBytes], 4, true);
    pieces->extension[NumberAt(&segment[start + kNameBytes + 4], 4, true)] = From(segment, data);
}

static void TakeApplication1(const Bytes& segment, Metadata* metadata, JpegPieces* pieces)
{
    if (BeginsWith(segment, kExifStart, 6) && metadata->exif.empty())
    {
        metadata->exif = From(segment, 6);
        if (!ExifIsSound(metadata->exif))
            metadata->exif.clear();
    }
    else if (BeginsWith(segment, kXmpStart, sizeof kXmpStart) && metadata->xmp.empty())
        metadata->xmp = From(segment, sizeof kXmpStart);
    else if (BeginsWith(segment, kXmpMore, sizeof kXmpMore))
        TakeExtension(segment, pieces);
}

static void TakeJpegSegment(int marker, const Bytes& segment, Metadata* metadata,
                            JpegPieces* pieces)
{
    const size_t profileStart = sizeof kProfileStart; // then: number of the piece, how many
    if (marker == 0xE0 && BeginsWith(segment, "JFIF", 5) && segment.size() >= 12)
    {
        const double unit = segment[7] == 1 ? 1 : segment[7] == 2 ? kInchCentimetres : 0;
        metadata->dotsPerInchX = double(NumberAt(&segment[8], 2, true)) * unit;
        metadata->dotsPerInchY = double(NumberAt(&segment[10], 2, true)) * unit;
    }
    else if (marker == 0xE1)
        TakeApplication1(segment, metadata, pieces);
    else if (marker == 0xE2 && BeginsWith(segment, kProfileStart, profileStart) &&
             segment.size() > profileStart + 2)
    {
        pieces->profilePieces = segment[profileStart + 1];
        pieces->profile.emplace(segment[profileStart], From(segment, profileStart + 2));
    }
    else if (marker == 0xED && BeginsWith(segment, kResourcesStart, sizeof kResourcesStart))
    {
        const Bytes more = From(segment, sizeof kResourcesStart);
        pieces->resources.insert(pieces->resources.end(), more.begin(), more.end());
    }
}

static void JoinJpegPieces(JpegPieces* pieces, Metadata* metadata)
{
    const int count = int(pieces->profile.size());
    if (count > 0 && count == pieces->profilePieces && pieces->profile.begin()->first == 1 &&
        pieces->profile.rbegin()->first == count)
        for (const auto& piece : pieces->profile)
            metadata->profile.insert(metadata->profile.end(), piece.second.begin(),
                                     piece.second.end());
    metadata->iptc = CaptionsInResources(pieces->resources);
    Bytes extension;
    for (const auto& [offset, piece] : pieces->extension)
        if (offset == extension.size())
            extension.insert(extension.end(), piece.begin(), piece.end());
    if (!extension.empty() && extension.size() == pieces->extensionBytes)
        metadata->xmp = WithXmpExtension(metadata->xmp, extension, pieces->extensionName);
}

void ReadJpegMetadata(const ByteSource& source, Metadata* metadata)
{
    const int kPixels = 0xDA, kEnd = 0xD9, kFirstApplication = 0xE0, kLastApplication = 0xEF;
    JpegPieces pieces;
    uint8_t head[4];
    for (uint64_t at = 2; source.Read(at, sizeof head, head) && head[0] == 0xFF;)
    {
        const int marker = head[1];
        if (marker == 0xFF) // padding
        {
            ++at;
            continue;
        }
        if (marker == kPixels || marker == kEnd)
            break;
        const uint64_t length = NumberAt(head + 2, 2, true); // with its own two bytes
        if (length < 2)
            break;
        if (marker >= kFirstApplication && marker <= kLastApplication)
            TakeJpegSegment(marker, source.Bytes(at + 4, length - 2), metadata, &pieces);
        at += 2 + length;
    }
    JoinJpegPieces(&pieces, metadata);
}

Bytes CaptionsInResources(const Bytes& resources)
{
    // Each: a mark, a number, a name with its length before it, the length of the contents, the
    // contents. Name and contents end on even offsets.
    const ByteSource source(resources);
    const uint64_t kCaptions = 0x0404;
    uint8_t head[7], length[4];
    for (uint64_t at = 0; source.Read(at, sizeof head, head) && std::memcmp(head, "8BIM", 4) == 0;)
    {
        const uint64_t lengthAt = at + 6 + (head[6] + 2u) / 2 * 2;
        if (!source.Read(lengthAt, sizeof length, length))
            break;
        const uint64_t bytes = NumberAt(length, 4, true);
        if (NumberAt(head + 4, 2, true) == kCaptions)
            return source.Bytes(lengthAt + 4, bytes);
        at = lengthAt + 4 + bytes + bytes % 2;
    }
    return {};
}

Bytes CaptionsAsResource(const Bytes& captions)
{
    if (captions.empty())
        return {};
    Bytes resource = {'8', 'B', 'I', 'M', 4, 4, 0, 0};
    AppendNumber(&resource, captions.size(), 4, true);
    resource.insert(resource.end(), captions.begin(), captions.end());
    resource.resize(resource.size() + resource.size() % 2);
    return resource;
}

// ---- PNG: chunks of length, type, contents and checksum ----

static Bytes Unpacked(const uint8_t* packed, size_t size)
{
    z_stream stream = {};
    Bytes unpacked;
    if (inflateInit(&stream) != Z_OK)
        return unpacked;
    stream.next_in = const_cast<uint8_t*>(packed);
    stream.avail_in = uInt(size);
    int state = Z_OK;
    uint8_t piece[1 << 14];
    while (state == Z_OK && unpacked.size() <= kMostBytes)
    {
        stream.next_out = piece;
        stream.avail_out = sizeof piece;
        state = inflate(&stream, Z_NO_FLUSH);
        unpacked.insert(unpacked.end(), piece, stream.next_out);
    }
    inflateEnd(&stream);
    if (state != Z_STREAM_END)
        unpacked.clear();
    return unpacked;
}

// Where the text behind a name begins, 0 when the name does not end.
static size_t BehindName(const Bytes& chunk, size_t start = 0)
{
    const auto from = chunk.begin() + std::ptrdiff_t(std::min(start, chunk.size()));
    const auto zero = std::find(from, chunk.end(), uint8_t(0));
    return zero == chunk.end() ? 0 : size_t(zero - chunk.begin()) + 1;
}

static Bytes UnpackedFrom(const Bytes& chunk, size_t start)
{
    return start < chunk.size() ? Unpacked(&chunk[start], chunk.size() - start) : Bytes();
}

// International text: name, whether it is packed, how, language, translated name, text.
static void TakePngXmp(const Bytes& chunk, Metadata* metadata)
{
    const char kName[] = "XML:com.adobe.xmp";
    if (!BeginsWith(chunk, kName, sizeof kName) || chunk.size() < sizeof kName + 4)
        return;
    const bool packed = chunk[sizeof kName] != 0;
    size_t start = BehindName(chunk, sizeof kName + 2);
    start = start ? BehindName(chunk, start) : 0;
    if (start)
        metadata->xmp = packed ? UnpackedFrom(chunk, start) : From(chunk, start);
}

static int HexDigit(uint8_t letter)
{
    if (letter >= '0' && letter <= '9')
        return letter - '0';
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

// A line break, the name, a line break, the length in letters, and the bytes in hexadecimals.
static Bytes FromHexText(const Bytes& text)
{
    auto at = text.begin();
    for (int lines = 0; lines < 3 && at != text.end(); ++lines)
        at = std::find(at, text.end(), uint8_t('\n')) + (lines < 2 ? 1 : 0);
    Bytes bytes;
    int high = -1;
    for (; at < text.end(); ++at)
    {
        const int digit = HexDigit(*at);
        if (digit < 0)
            continue;
        if (high >= 0)
            bytes.push_back(uint8_t(high << 4 | digit));
        high = high >= 0 ? -1 : digit;
    }
    return bytes;
}

// Texts by which widespread programs keep what PNG has had no chunk for.
static void TakePngRawText(const Bytes& chunk, bool packed, Metadata* metadata)
{
    const size_t start = BehindName(chunk);
    const std::string name(chunk.begin(), chunk.begin() + std::ptrdiff_t(start ? start - 1 : 0));
    const std::string kRaw = "Raw profile type ";
    if (name.compare(0, kRaw.size(), kRaw) != 0)
        return;
    const std::string kind = name.substr(kRaw.size());
    const bool wanted = kind == "iptc" || kind == "exif" || kind == "APP1" || kind == "xmp";
    if (!wanted)
        return;
    const Bytes bytes = FromHexText(packed ? UnpackedFrom(chunk, start + 1) : From(chunk, start));
    if (kind == "iptc" && metadata->iptc.empty())
    {
        const Bytes captions = CaptionsInResources(bytes);
        metadata->iptc = captions.empty() && BeginsWith(bytes, "\x1C", 1) ? bytes : captions;
    }
    JpegPieces none;
    if (kind == "xmp" && metadata->xmp.empty())
        metadata->xmp = bytes;
    else if (kind != "iptc")
        TakeApplication1(bytes, metadata, &none);
}

static void TakePngChunk(const std::string& type, const Bytes& chunk, Metadata* metadata)
{
    if (type == "eXIf" && ExifIsSound(chunk))
        metadata->exif = chunk;
    else if (type == "iCCP" && BehindName(chunk))
        metadata->profile = UnpackedFrom(chunk, BehindName(chunk) + 1);
    else if (type == "iTXt")
        TakePngXmp(chunk, metadata);
    else if (type == "zTXt" || type == "tEXt")
        TakePngRawText(chunk, type == "zTXt", metadata);
    else if (type == "pHYs" && chunk.size() == 9 && chunk[8] == 1) // per metre
    {
        metadata->dotsPerInchX = double(NumberAt(&chunk[0], 4, true)) * kInchMetres;
        metadata->dotsPerInchY = double(NumberAt(&chunk[4], 4, true)) * kInchMetres;
    }
}

void ReadPngMetadata(const ByteSource& source, Metadata* metadata)
{
    static const char* const kTypes[] = {"eXIf", "iCCP", "iTXt", "zTXt", "tEXt", "pHYs"};
    uint8_t head[8];
    uint64_t taken = 0;
    for (uint64_t at = 8; source.Read(at, sizeof head, head);)
    {
        const uint64_t length = NumberAt(head, 4, true);
        const std::string type(head + 4, head + 8);
        const bool known =
            std::find(std::begin(kTypes), std::end(kTypes), type) != std::end(kTypes);
        if (known && (taken += length) <= kMostBytes)
            TakePngChunk(type, source.Bytes(at + 8, length), metadata);
        at += 12 + length;
    }
}

// ---- WebP: chunks of type, length and contents ----

void ReadWebpMetadata(const ByteSource& source, Metadata* metadata)
{
    uint8_t head[8];
    for (uint64_t at = 12; source.Read(at, sizeof head, head);)
    {
        const uint64_t length = NumberAt(head + 4, 4, false);
        const std::string type(head, head + 4);
        const bool fits = length <= kMostBytes;
        if (type == "ICCP" && fits)
            metadata->profile = source.Bytes(at + 8, length);
        else if (type == "XMP " && fits)
            metadata->xmp = source.Bytes(at + 8, length);
        else if (type == "EXIF" && fits)
        {
            Bytes block = source.Bytes(at + 8, length);
            if (BeginsWith(block, kExifStart, 6)) // as in JPEG files, where it has to
                block = From(block, 6);
            if (ExifIsSound(block))
                metadata->exif = block;
        }
        at += 8 + length + length % 2;
    }
}
