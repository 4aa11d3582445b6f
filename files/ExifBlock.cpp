#include "files/ExifBlock.h"

#include "files/TiffDirectory.h"

#include <cstddef>

// A TIFF header, the directory of the camera and behind it the directory of the exposure. Each
// directory is a count, twelve bytes per entry in ascending order of tags, an offset to the next
// one (none), and then the values that do not fit into the four bytes of an entry. Offsets count
// from the TIFF header.

enum class ExifType : uint16_t
{
    Ascii = 2,
    Short = 3,
    Long = 4,
    Rational = 5,
    Undefined = 7,
    SignedRational = 10,
};

struct ExifEntry
{
    uint16_t tag;
    ExifType type;
    uint32_t count;
    std::vector<uint8_t> value; // little-endian
};

static const size_t kEntryBytes = 12;
static const size_t kInlineBytes = 4; // values up to this size sit in the entry itself

static void Put(std::vector<uint8_t>* out, uint32_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        out->push_back(uint8_t(value >> (8 * i)));
}

static ExifEntry NumberEntry(uint16_t tag, ExifType type, uint32_t value)
{
    ExifEntry entry = {tag, type, 1, {}};
    Put(&entry.value, value, type == ExifType::Short ? 2 : 4);
    return entry;
}

static void AddText(std::vector<ExifEntry>* entries, uint16_t tag, const std::string& text)
{
    if (text.empty())
        return;
    ExifEntry entry = {tag, ExifType::Ascii, uint32_t(text.size() + 1), {}};
    entry.value.assign(text.begin(), text.end());
    entry.value.push_back(0);
    entries->push_back(entry);
}

static void AddRational(std::vector<ExifEntry>* entries, uint16_t tag, ExifType type,
                        uint32_t numerator, uint32_t denominator)
{
    if (denominator == 0)
        return;
    ExifEntry entry = {tag, type, 1, {}};
    Put(&entry.value, numerator, 4);
    Put(&entry.value, denominator, 4);
    entries->push_back(entry);
}

static size_t DirectoryBytes(const std::vector<ExifEntry>& entries)
{
    size_t bytes = 2 + kEntryBytes * entries.size() + 4;
    for (const ExifEntry& entry : entries)
        if (entry.value.size() > kInlineBytes)
            bytes += entry.value.size() + entry.value.size() % 2; // values start on even offsets
    return bytes;
}

static void PutDirectory(std::vector<uint8_t>* out, const std::vector<ExifEntry>& entries,
                         size_t offset)
{
    size_t valueOffset = offset + 2 + kEntryBytes * entries.size() + 4;
    std::vector<uint8_t> values;
    Put(out, uint32_t(entries.size()), 2);
    for (const ExifEntry& entry : entries)
    {
        Put(out, entry.tag, 2);
        Put(out, uint32_t(entry.type), 2);
        Put(out, entry.count, 4);
        std::vector<uint8_t> field = entry.value;
        if (field.size() > kInlineBytes)
        {
            field.clear();
            Put(&field, uint32_t(valueOffset + values.size()), 4);
            values.insert(values.end(), entry.value.begin(), entry.value.end());
            values.resize(values.size() + values.size() % 2);
        }
        field.resize(kInlineBytes);
        out->insert(out->end(), field.begin(), field.end());
    }
    Put(out, 0, 4);
    out->insert(out->end(), values.begin(), values.end());
}

static std::vector<ExifEntry> CameraEntries(const ExifFields& fields, size_t* exposureLink)
{
    std::vector<ExifEntry> entries;
    AddText(&entries, 0x010F, fields.make);
    AddText(&entries, 0x0110, fields.model);
    AddRational(&entries, 0x011A, ExifType::Rational, 72, 1); // dots per inch, as good as unknown
    AddRational(&entries, 0x011B, ExifType::Rational, 72, 1);
    entries.push_back(NumberEntry(0x0128, ExifType::Short, 2)); // inches
    AddText(&entries, 0x0131, fields.software);
    AddText(&entries, 0x0132, fields.dateTime);
    entries.push_back(NumberEntry(0x0213, ExifType::Short, 1)); // chroma samples are centred
    *exposureLink = entries.size();
    entries.push_back(NumberEntry(0x8769, ExifType::Long, 0)); // offset of the exposure directory
    return entries;
}

static std::vector<ExifEntry> ExposureEntries(const ExifFields& fields)
{
    std::vector<ExifEntry> entries;
    AddRational(&entries, 0x829A, ExifType::Rational, fields.exposureTime.numerator,
                fields.exposureTime.denominator);
    AddRational(&entries, 0x829D, ExifType::Rational, fields.fNumber.numerator,
                fields.fNumber.denominator);
    if (fields.iso)
        entries.push_back(NumberEntry(0x8827, ExifType::Short, fields.iso));
    entries.push_back({0x9000, ExifType::Undefined, 4, {'0', '2', '3', '2'}}); // EXIF version
    AddText(&entries, 0x9003, fields.dateTime); // when it was taken, as against changed
    entries.push_back({0x9101, ExifType::Undefined, 4, {1, 2, 3, 0}}); // Y, Cb, Cr
    AddRational(&entries, 0x9204, ExifType::SignedRational, uint32_t(fields.biasNumerator),
                uint32_t(fields.biasDenominator));
    entries.push_back({0xA000, ExifType::Undefined, 4, {'0', '1', '0', '0'}});
    entries.push_back(NumberEntry(0xA001, ExifType::Short, 1)); // sRGB
    if (fields.width && fields.height)
    {
        entries.push_back(NumberEntry(0xA002, ExifType::Long, fields.width));
        entries.push_back(NumberEntry(0xA003, ExifType::Long, fields.height));
    }
    return entries;
}

std::vector<uint8_t> MakeExifBlock(const ExifFields& fields)
{
    const size_t kCameraOffset = 8; // right behind the TIFF header
    size_t exposureLink = 0;
    std::vector<ExifEntry> camera = CameraEntries(fields, &exposureLink);
    const std::vector<ExifEntry> exposure = ExposureEntries(fields);
    const size_t exposureOffset = kCameraOffset + DirectoryBytes(camera);
    camera[exposureLink] = NumberEntry(0x8769, ExifType::Long, uint32_t(exposureOffset));

    std::vector<uint8_t> block = {'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0};
    Put(&block, uint32_t(kCameraOffset), 4);
    PutDirectory(&block, camera, kCameraOffset);
    PutDirectory(&block, exposure, exposureOffset);
    return block;
}

bool ExifIsSound(const std::vector<uint8_t>& block)
{
    TiffStructure tiff = {ByteSource(block)};
    TiffDirectory first;
    return OpenTiff(tiff.source, &tiff) && !tiff.wide &&
           ReadTiffDirectory(tiff, tiff.first, &first);
}
