#include "tests/support/ExifFiles.h"

#include <zlib.h>

#include <algorithm>
#include <cmath>

void Put(Bytes* out, uint32_t value, int bytes, bool bigEndian)
{
    for (int i = 0; i < bytes; ++i)
        out->push_back(uint8_t(value >> (8 * (bigEndian ? bytes - 1 - i : i))));
}

size_t Get(const Bytes& bytes, size_t at, int count, bool bigEndian)
{
    size_t value = 0;
    for (int i = 0; i < count; ++i)
    {
        const size_t place = at + size_t(bigEndian ? i : count - 1 - i);
        value = value << 8 | (place < bytes.size() ? bytes[place] : 0);
    }
    return value;
}

static void Add(Bytes* out, const Bytes& more)
{
    out->insert(out->end(), more.begin(), more.end());
}

static Bytes TextBytes(const std::string& text)
{
    return Bytes(text.begin(), text.end());
}

namespace
{

struct Field
{
    int tag, type;
    uint32_t count;
    Bytes value;
};

const int kByte = 1, kText = 2, kShort = 3, kLong = 4, kFraction = 5, kUndefined = 7, kSigned = 10;

// A TIFF structure that grows at its end.
struct Block
{
    Bytes bytes;
    bool big;

    explicit Block(bool bigEndian) : big(bigEndian)
    {
        bytes = big ? Bytes{'M', 'M', 0, 42, 0, 0, 0, 0} : Bytes{'I', 'I', 42, 0, 0, 0, 0, 0};
    }
    Field Number(int tag, int type, uint32_t value) const
    {
        Field field = {tag, type, 1, {}};
        Put(&field.value, value, type == kShort ? 2 : 4, big);
        return field;
    }
    Field Fraction(int tag, int type, int top, int bottom) const
    {
        Field field = {tag, type, 1, {}};
        Put(&field.value, uint32_t(top), 4, big);
        Put(&field.value, uint32_t(bottom), 4, big);
        return field;
    }
    static Field Text(int tag, const std::string& text)
    {
        Field field = {tag, kText, uint32_t(text.size() + 1), TextBytes(text)};
        field.value.push_back(0);
        return field;
    }
    static Field Data(int tag, int type, const Bytes& value)
    {
        return {tag, type, uint32_t(value.size()), value};
    }
    uint32_t Append(const Bytes& more)
    {
        bytes.resize(bytes.size() + bytes.size() % 2);
        Add(&bytes, more);
        return uint32_t(bytes.size() - more.size());
    }
    uint32_t Directory(std::vector<Field> fields, uint32_t next = 0)
    {
        std::sort(fields.begin(), fields.end(),
                  [](const Field& a, const Field& b) { return a.tag < b.tag; });
        Bytes directory;
        Put(&directory, uint32_t(fields.size()), 2, big);
        for (Field& field : fields)
        {
            Put(&directory, uint32_t(field.tag), 2, big);
            Put(&directory, uint32_t(field.type), 2, big);
            Put(&directory, field.count, 4, big);
            if (field.value.size() > 4)
            {
                const uint32_t at = Append(field.value);
                field.value.clear();
                Put(&field.value, at, 4, big);
            }
            field.value.resize(4);
            Add(&directory, field.value);
        }
        Put(&directory, next, 4, big);
        return Append(directory);
    }
};

} // namespace

// All directories but the first, and what that one says of the photograph.
static std::vector<Field> PutPhotograph(Block* block, const PhotoFacts& facts)
{
    std::vector<Field> exif = {
        block->Fraction(0x829A, kFraction, int(facts.exposureTime), 1000),
        Block::Text(0x9003, "2024:05:06 07:08:09"),
        Block::Text(0x9290, "37"),
        block->Number(0xA002, kShort, facts.width),
        block->Number(0xA003, kLong, facts.height),
        Block::Text(0xA430, "Owner of cameras"),
        Block::Text(0xA431, "Serial 12"),
    };
    if (facts.hasBias)
        exif.push_back(block->Fraction(0x9204, kSigned, facts.biasThirds, 3));
    if (facts.notes)
    {
        // Long enough to stand outside of its field, in any case.
        const uint32_t at = block->Append({});
        exif.push_back(Block::Data(0x927C, kUndefined, facts.notes(at)));
        std::rotate(exif.begin(), exif.end() - 1, exif.end());
        const uint32_t placed = block->Append(exif[0].value);
        EXPECT_EQ(placed, at);
        exif[0].value.clear();
        Put(&exif[0].value, at, 4, block->big);
    }
    const uint32_t gps = block->Directory({Block::Text(0x001D, "2024:05:06")});
    const uint32_t exifAt = block->Directory(exif);
    return {
        Block::Text(0x010F, "Maker of cameras"), block->Number(0x0112, kShort, facts.orientation),
        Block::Text(0x0131, "of the camera"),    Block::Text(0x0132, "2024:05:06 07:08:09"),
        Block::Text(0x013B, "Owner of cameras"), block->Number(0x8769, kLong, exifAt),
        block->Number(0x8825, kLong, gps)};
}

static uint32_t PutThumbnail(Block* block, const PhotoFacts& facts)
{
    if (facts.thumbnail.empty())
        return 0;
    const uint32_t at = block->Append(facts.thumbnail);
    return block->Directory({block->Number(513, kLong, at),
                             block->Number(514, kLong, uint32_t(facts.thumbnail.size()))});
}

static Bytes Finished(Block* block, const std::vector<Field>& first, uint32_t second)
{
    const uint32_t at = block->Directory(first, second);
    Bytes place;
    Put(&place, at, 4, block->big);
    std::copy(place.begin(), place.end(), block->bytes.begin() + 4);
    return block->bytes;
}

static void AddResolution(const Block& block, int dotsPerInch, std::vector<Field>* fields)
{
    if (dotsPerInch == 0)
        return;
    fields->push_back(block.Fraction(282, kFraction, dotsPerInch, 1));
    fields->push_back(block.Fraction(283, kFraction, dotsPerInch, 1));
    fields->push_back(block.Number(296, kShort, 2));
}

static Bytes PhotoExif(const PhotoFacts& facts, int dotsPerInch)
{
    Block block(facts.bigEndian);
    std::vector<Field> fields = PutPhotograph(&block, facts);
    AddResolution(block, dotsPerInch, &fields);
    const uint32_t second = PutThumbnail(&block, facts);
    return Finished(&block, fields, second);
}

Bytes MakePhotoExif(const PhotoFacts& facts)
{
    return PhotoExif(facts, 0);
}

static Bytes MakePhotoTiff(const PhotoFacts& facts, const SideFacts& side, bool far)
{
    Block block(facts.bigEndian);
    const uint32_t width = 24, height = 16;
    const uint32_t strip = block.Append(Bytes(width * height + (far ? 100000 : 0), 0x33));
    std::vector<Field> fields = PutPhotograph(&block, facts);
    for (const auto& [tag, value] : {std::pair(256, width),
                                     {257, height},
                                     {258, 8u},
                                     {259, 1u},
                                     {262, 1u},
                                     {273, strip},
                                     {277, 1u},
                                     {278, height},
                                     {279, width * height}})
        fields.push_back(block.Number(tag, kLong, value));
    AddResolution(block, side.dotsPerInch, &fields);
    for (const auto& [tag, value] :
         {std::pair(700, side.xmp), {33723, side.iptc}, {34675, side.profile}})
        if (!value.empty())
            fields.push_back(Block::Data(tag, kByte, value));
    return Finished(&block, fields, 0);
}

// A small picture as the program saves it.
static Bytes PlainFile(const std::string& name)
{
    const TempFolder folder;
    EXPECT_TRUE(Save(ScenePicture(24, 16, 3, 8, 0), folder.File(name)).written);
    return ReadBytes(folder.File(name));
}

static void AddSegment(Bytes* out, int marker, const std::string& start, const Bytes& contents)
{
    if (contents.empty())
        return;
    out->insert(out->end(), {0xFF, uint8_t(marker)});
    Put(out, uint32_t(2 + start.size() + contents.size()), 2, true);
    Add(out, TextBytes(start));
    Add(out, contents);
}

static Bytes PieceOf(const Bytes& bytes, size_t at, size_t size)
{
    const size_t start = std::min(at, bytes.size()), end = std::min(start + size, bytes.size());
    return Bytes(bytes.begin() + std::ptrdiff_t(start), bytes.begin() + std::ptrdiff_t(end));
}

static Bytes ResourceOf(const Bytes& iptc)
{
    // Another one before it, with a name.
    Bytes resource = TextBytes(std::string("8BIM\x04\x0C\x03"
                                           "abc\0\0\0\x01x\0",
                                           16));
    resource.insert(resource.end(), {'8', 'B', 'I', 'M', 4, 4, 0, 0});
    Put(&resource, uint32_t(iptc.size()), 4, true);
    Add(&resource, iptc);
    resource.resize(resource.size() + resource.size() % 2);
    return resource;
}

static Bytes MakePhotoJpeg(const Bytes& exif, const SideFacts& side)
{
    const Bytes plain = PlainFile("a.jpg");
    Bytes out = PieceOf(plain, 0, 20); // with the segment of the resolution
    if (side.dotsPerInch)
        out[14] = out[16] = uint8_t(side.dotsPerInch >> 8),
        out[15] = out[17] = uint8_t(side.dotsPerInch);
    AddSegment(&out, 0xE1, std::string("Exif\0\0", 6), exif);
    const std::string kXmp("http://ns.adobe.com/xap/1.0/\0", 29);
    const std::string kMore("http://ns.adobe.com/xmp/extension/\0", 35), name(32, 'A');
    const bool split = side.xmp.size() > 60000;
    const Bytes asking = TextBytes("<rdf:RDF><rdf:Description note:HasExtendedXMP='" + name +
                                   "'></rdf:Description></rdf:RDF>");
    AddSegment(&out, 0xE1, kXmp, split ? asking : side.xmp);
    const size_t kPiece = 50000;
    for (size_t at = 0; split && at < side.xmp.size(); at += kPiece)
    {
        Bytes numbers;
        Put(&numbers, uint32_t(side.xmp.size()), 4, true);
        Put(&numbers, uint32_t(at), 4, true);
        AddSegment(&out, 0xE1, kMore + name + std::string(numbers.begin(), numbers.end()),
                   PieceOf(side.xmp, at, kPiece));
    }
    if (!side.iptc.empty())
        AddSegment(&out, 0xED, std::string("Photoshop 3.0\0", 14), ResourceOf(side.iptc));
    // The later piece first, as nobody forbids.
    const uint8_t pieces = uint8_t((side.profile.size() + kPiece - 1) / kPiece);
    for (uint8_t i = pieces; i > 0; --i)
        AddSegment(&out, 0xE2, std::string("ICC_PROFILE\0", 12) + char(i) + char(pieces),
                   PieceOf(side.profile, (i - 1u) * kPiece, kPiece));
    Add(&out, PieceOf(plain, 20, plain.size()));
    return out;
}

static void AddPngChunk(Bytes* out, const std::string& type, const Bytes& contents)
{
    if (contents.empty())
        return;
    Put(out, uint32_t(contents.size()), 4, true);
    const size_t start = out->size();
    Add(out, TextBytes(type));
    Add(out, contents);
    Put(out, uint32_t(crc32(0, &(*out)[start], uInt(out->size() - start))), 4, true);
}

static Bytes Packed(const std::string& name, const Bytes& contents)
{
    Bytes out = TextBytes(name);
    out.insert(out.end(), {0, 0});
    Bytes packed(compressBound(uLong(contents.size())));
    uLongf size = uLongf(packed.size());
    compress(packed.data(), &size, contents.data(), uLong(contents.size()));
    packed.resize(size);
    Add(&out, packed);
    return out;
}

static Bytes MakePhotoPng(const Bytes& exif, const SideFacts& side)
{
    const Bytes plain = PlainFile("a.png");
    const size_t kHeader = 8 + 25, kResolution = 12 + 9;
    Bytes out = PieceOf(plain, 0, kHeader);
    if (!side.profile.empty())
        AddPngChunk(&out, "iCCP", Packed("a name", side.profile));
    AddPngChunk(&out, "eXIf", exif);
    if (side.dotsPerInch)
    {
        Bytes numbers;
        for (int i = 0; i < 2; ++i)
            Put(&numbers, uint32_t(std::lround(side.dotsPerInch / 0.0254)), 4, true);
        numbers.push_back(1);
        AddPngChunk(&out, "pHYs", numbers);
    }
    Bytes text = TextBytes(std::string("XML:com.adobe.xmp\0\1\0en\0\0", 24)); // packed
    const Bytes packed = Packed("", side.xmp);
    text.insert(text.end(), packed.begin() + 2, packed.end());
    if (!side.xmp.empty())
        AddPngChunk(&out, "iTXt", text);
    if (!side.iptc.empty())
    {
        const Bytes resource = ResourceOf(side.iptc);
        std::string hex = "\niptc\n      " + std::to_string(resource.size()) + "\n";
        for (const uint8_t byte : resource)
            for (const int digit : {byte >> 4, byte & 15})
                hex += "0123456789abcdef"[digit];
        AddPngChunk(&out, "tEXt", TextBytes(std::string("Raw profile type iptc\0", 22) + hex));
    }
    Add(&out, PieceOf(plain, kHeader + kResolution, plain.size()));
    return out;
}

static void AddRiffChunk(Bytes* out, const std::string& type, const Bytes& contents)
{
    if (contents.empty())
        return;
    Add(out, TextBytes(type));
    Put(out, uint32_t(contents.size()), 4, false);
    Add(out, contents);
    out->resize(out->size() + out->size() % 2);
}

static Bytes MakePhotoWebp(const Bytes& exif, const SideFacts& side)
{
    const Bytes plain = PlainFile("a.webp");
    Bytes body = TextBytes("WEBP");
    const uint8_t flags = uint8_t((side.profile.empty() ? 0 : 32) | 8 | (side.xmp.empty() ? 0 : 4));
    AddRiffChunk(&body, "VP8X", {flags, 0, 0, 0, 23, 0, 0, 15, 0, 0});
    AddRiffChunk(&body, "ICCP", side.profile);
    Add(&body, PieceOf(plain, 12, plain.size()));
    AddRiffChunk(&body, "EXIF", exif);
    AddRiffChunk(&body, "XMP ", side.xmp);
    Bytes out;
    AddRiffChunk(&out, "RIFF", body);
    return out;
}

Bytes MakePhotoFile(const std::string& name, const PhotoFacts& facts, const SideFacts& side)
{
    if (name.find(".tif") != name.npos)
        return MakePhotoTiff(facts, side, name == "far.tif");
    const Bytes exif = PhotoExif(facts, side.dotsPerInch);
    if (name.find(".png") != name.npos)
        return MakePhotoPng(exif, side);
    return name.find(".webp") != name.npos ? MakePhotoWebp(exif, side) : MakePhotoJpeg(exif, side);
}

static Bytes BlockOf(const Bytes& file)
{
    const auto from = [&](const std::string& mark, size_t back, int sizeBytes, bool big, int less)
    {
        const auto found = std::search(file.begin(), file.end(), mark.begin(), mark.end());
        if (found == file.end())
            return Bytes();
        const size_t at = size_t(found - file.begin());
        const size_t size = Get(file, at - back, sizeBytes, big) - size_t(less);
        return PieceOf(file, at + mark.size() + (back ? 0 : 4), size);
    };
    if (file.size() < 8 || file[0] == 'I' || file[0] == 'M')
        return file;
    if (file[0] == 0xFF)
        return from(std::string("Exif\0\0", 6), 2, 2, true, 8);
    if (file[0] == 0x89)
        return from("eXIf", 4, 4, true, 0);
    const auto found = TextBytes("EXIF");
    const auto chunk = std::search(file.begin(), file.end(), found.begin(), found.end());
    const size_t at = size_t(chunk - file.begin());
    return PieceOf(file, at + 8, Get(file, at + 4, 4, false));
}

PlainExif::PlainExif(const Bytes& file) : block(BlockOf(file))
{
    bigEndian = !block.empty() && block[0] == 'M';
    const size_t next = ReadDirectory("first", Get(block, 4, 4, bigEndian));
    ReadDirectory("second", next);
    ReadDirectory("exif", Number("first", 0x8769));
    ReadDirectory("gps", Number("first", 0x8825));
}

size_t PlainExif::ReadDirectory(const std::string& name, size_t at)
{
    if (at < 8 || at + 2 > block.size())
        return 0;
    const size_t count = Get(block, at, 2, bigEndian);
    int last = -1;
    for (size_t i = 0; i < count; ++i)
    {
        const size_t place = at + 2 + 12 * i;
        const int tag = int(Get(block, place, 2, bigEndian));
        sorted = sorted && tag > last;
        last = tag;
        directories[name][tag] = {uint32_t(Get(block, place + 2, 2, bigEndian)),
                                  uint32_t(Get(block, place + 4, 4, bigEndian)), place + 8};
    }
    return Get(block, at + 2 + 12 * count, 4, bigEndian);
}

bool PlainExif::Has(const std::string& directory, int tag) const
{
    const auto found = directories.find(directory);
    return found != directories.end() && found->second.count(tag) > 0;
}

uint32_t PlainExif::Number(const std::string& directory, int tag) const
{
    if (!Has(directory, tag))
        return 0;
    const Entry& entry = directories.at(directory).at(tag);
    return uint32_t(Get(block, entry.at, entry.type == kShort ? 2 : 4, bigEndian));
}

size_t PlainExif::Offset(const std::string& directory, int tag) const
{
    return Has(directory, tag) ? Get(block, directories.at(directory).at(tag).at, 4, bigEndian) : 0;
}

std::string PlainExif::Text(const std::string& directory, int tag) const
{
    if (!Has(directory, tag))
        return "nothing";
    const Entry& entry = directories.at(directory).at(tag);
    const size_t at = entry.count > 4 ? Offset(directory, tag) : entry.at;
    const Bytes text = PieceOf(block, at, entry.count - 1);
    return std::string(text.begin(), text.end());
}

Bytes PlainExif::Value(const std::string& directory, int tag, size_t size) const
{
    return PieceOf(block, Offset(directory, tag), size);
}

double MeanDifference(const TestPicture& a, const TestPicture& b)
{
    if (a->width != b->width || a->height != b->height || a->components != b->components)
        return 255;
    double sum = 0;
    for (int32_t i = 0; i < a->size; ++i)
        sum += std::abs(a->data[i] - b->data[i]);
    return sum / a->size;
}
