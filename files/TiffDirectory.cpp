#include "files/TiffDirectory.h"

#include <algorithm>
#include <iterator>

static const uint64_t kFieldBytes = 12, kWideFieldBytes = 20;

const TiffField* TiffDirectory::Find(int tag) const
{
    for (const TiffField& field : fields)
        if (field.tag == tag)
            return &field;
    return nullptr;
}

bool OpenTiff(const ByteSource& source, TiffStructure* tiff)
{
    uint8_t head[16] = {};
    if (!source.Read(0, 8, head) || head[0] != head[1] || (head[0] != 'I' && head[0] != 'M'))
        return false;
    tiff->source = source;
    tiff->bigEndian = head[0] == 'M';
    // 42 and, in raw files of three makers, other numbers.
    const uint64_t kind = NumberAt(head + 2, 2, tiff->bigEndian);
    tiff->wide = kind == 43;
    const bool known = kind == 42 || kind == 43 || kind == 0x4F52 || kind == 0x5352 || kind == 0x55;
    if (!known || (tiff->wide && !source.Read(0, sizeof head, head)))
        return false;
    tiff->first = tiff->wide ? NumberAt(head + 8, 8, tiff->bigEndian)
                             : NumberAt(head + 4, 4, tiff->bigEndian);
    return true;
}

static uint64_t TypeBytes(int type)
{
    static const uint8_t kBytes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8};
    return type < int(std::size(kBytes)) ? kBytes[type] : 0;
}

static TiffField FieldAt(const TiffStructure& tiff, const uint8_t* bytes, uint64_t at)
{
    const int numberBytes = tiff.wide ? 8 : 4;
    TiffField field;
    field.tag = uint16_t(NumberAt(bytes, 2, tiff.bigEndian));
    field.type = uint16_t(NumberAt(bytes + 2, 2, tiff.bigEndian));
    field.count = NumberAt(bytes + 4, numberBytes, tiff.bigEndian);
    field.at = at;
    field.valueAt = at + 4 + uint64_t(numberBytes);
    const uint64_t each = TypeBytes(field.type);
    if (each == 0 || field.count > tiff.source.Size() / each)
        return field;
    field.bytes = each * field.count;
    if (field.bytes > uint64_t(numberBytes))
        field.valueAt = NumberAt(bytes + 4 + numberBytes, numberBytes, tiff.bigEndian);
    const uint64_t size = tiff.source.Size();
    if (field.valueAt > size || field.bytes > size - field.valueAt)
        field.bytes = 0;
    return field;
}

bool ReadTiffDirectory(const TiffStructure& tiff, uint64_t at, TiffDirectory* directory)
{
    *directory = TiffDirectory();
    const int countBytes = tiff.wide ? 8 : 2, nextBytes = tiff.wide ? 8 : 4;
    const uint64_t fieldBytes = tiff.wide ? kWideFieldBytes : kFieldBytes;
    uint8_t number[8];
    if (at < 8 || !tiff.source.Read(at, size_t(countBytes), number))
        return false;
    const uint64_t count = NumberAt(number, countBytes, tiff.bigEndian);
    if (count > 0xFFFF)
        return false;
    const uint64_t start = at + uint64_t(countBytes);
    const std::vector<uint8_t> bytes = tiff.source.Bytes(start, count * fieldBytes);
    if (bytes.size() != count * fieldBytes)
        return false;
    directory->at = at;
    directory->end = start + bytes.size();
    for (uint64_t i = 0; i < count; ++i)
    {
        const uint64_t offset = i * fieldBytes;
        const TiffField field = FieldAt(tiff, bytes.data() + offset, start + offset);
        if (field.bytes > 0)
            directory->fields.push_back(field);
    }
    // Some cameras leave out the offset of the last directory of all.
    if (tiff.source.Read(directory->end, size_t(nextBytes), number))
    {
        directory->next = NumberAt(number, nextBytes, tiff.bigEndian);
        directory->end += uint64_t(nextBytes);
    }
    return true;
}

bool ReadSubDirectory(const TiffStructure& tiff, const TiffDirectory& from, int tag,
                      TiffDirectory* directory)
{
    const int64_t at = TiffNumberOf(tiff, from.Find(tag));
    return at > 0 && ReadTiffDirectory(tiff, uint64_t(at), directory);
}

int64_t TiffNumberOf(const TiffStructure& tiff, const TiffField* field, int index)
{
    if (!field || uint64_t(index) >= field->count)
        return -1;
    int bytes = int(TypeBytes(field->type));
    const uint64_t at = field->valueAt + uint64_t(bytes) * uint64_t(index);
    if (field->type == kTiffRational || field->type == kTiffSignedRational)
        bytes = 4;
    uint8_t number[8];
    if (bytes == 0 || !tiff.source.Read(at, size_t(bytes), number))
        return -1;
    const uint64_t value = NumberAt(number, bytes, tiff.bigEndian);
    return value > uint64_t(INT64_MAX) ? -1 : int64_t(value);
}

double TiffFraction(const TiffStructure& tiff, const TiffField* field)
{
    uint8_t both[8];
    if (!field || field->bytes < sizeof both || !tiff.source.Read(field->valueAt, 8, both))
        return 0;
    const auto top = uint32_t(NumberAt(both, 4, tiff.bigEndian));
    const auto bottom = uint32_t(NumberAt(both + 4, 4, tiff.bigEndian));
    if (bottom == 0)
        return 0;
    return field->type == kTiffSignedRational ? double(int32_t(top)) / double(int32_t(bottom))
                                              : double(top) / double(bottom);
}

NewTiffField TiffNumberField(int tag, int type, uint32_t value, bool bigEndian)
{
    NewTiffField field = {uint16_t(tag), uint16_t(type), 1, {}};
    AppendNumber(&field.value, value, type == kTiffShort ? 2 : 4, bigEndian);
    return field;
}

NewTiffField TiffBytesField(int tag, int type, std::vector<uint8_t> bytes)
{
    const auto count = uint32_t(bytes.size());
    return {uint16_t(tag), uint16_t(type), count, std::move(bytes)};
}

NewTiffField TiffTextField(int tag, const std::vector<uint8_t>& textWithZero)
{
    return TiffBytesField(tag, kTiffText, textWithZero);
}

NewTiffField TiffRationalField(int tag, uint32_t numerator, uint32_t denominator, bool bigEndian)
{
    NewTiffField field = {uint16_t(tag), kTiffRational, 1, {}};
    AppendNumber(&field.value, numerator, 4, bigEndian);
    AppendNumber(&field.value, denominator, 4, bigEndian);
    return field;
}

NewTiffField SameTiffField(const TiffStructure& tiff, const TiffField& field)
{
    return {field.tag, field.type, uint32_t(field.count), tiff.source.Bytes(field.at + 8, 4)};
}

static bool TagBefore(const NewTiffField& field, int tag)
{
    return field.tag < tag;
}

void SetTiffField(std::vector<NewTiffField>* fields, NewTiffField field)
{
    const auto place = std::lower_bound(fields->begin(), fields->end(), field.tag, TagBefore);
    if (place != fields->end() && place->tag == field.tag)
        *place = std::move(field);
    else
        fields->insert(place, std::move(field));
}

void DropTiffField(std::vector<NewTiffField>* fields, int tag)
{
    fields->erase(std::remove_if(fields->begin(), fields->end(),
                                 [tag](const NewTiffField& field) { return field.tag == tag; }),
                  fields->end());
}

std::vector<uint8_t> TiffDirectoryBytes(const std::vector<NewTiffField>& fields, uint32_t at,
                                        uint32_t next, bool bigEndian)
{
    const uint32_t valuesAt = at + 2 + uint32_t(kFieldBytes * fields.size()) + 4;
    std::vector<uint8_t> bytes, values;
    AppendNumber(&bytes, fields.size(), 2, bigEndian);
    for (const NewTiffField& field : fields)
    {
        AppendNumber(&bytes, field.tag, 2, bigEndian);
        AppendNumber(&bytes, field.type, 2, bigEndian);
        AppendNumber(&bytes, field.count, 4, bigEndian);
        std::vector<uint8_t> value = field.value;
        if (value.size() > 4)
        {
            value.clear();
            AppendNumber(&value, valuesAt + values.size(), 4, bigEndian);
            values.insert(values.end(), field.value.begin(), field.value.end());
            values.resize(values.size() + values.size() % 2); // values start on even offsets
        }
        value.resize(4);
        bytes.insert(bytes.end(), value.begin(), value.end());
    }
    AppendNumber(&bytes, next, 4, bigEndian);
    bytes.insert(bytes.end(), values.begin(), values.end());
    return bytes;
}
