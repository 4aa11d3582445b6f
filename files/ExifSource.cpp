#include "files/ExifSource.h"

#include <algorithm>
#include <iterator>

using Bytes = std::vector<uint8_t>;

bool IsAboutPhotograph(int tag)
{
    // Pixels and their packing; pictures elsewhere in the file; directories, which are added when
    // they are known; what goes other ways: XMP, captions, profile, editors' resources and layers.
    static const struct
    {
        int first, last;
    } kOthers[] = {{0, 269},       {273, 273},     {277, 281},     {284, 284},     {288, 293},
                   {297, 297},     {301, 301},     {317, 317},     {320, 347},     {400, 406},
                   {512, 532},     {559, 560},     {700, 700},     {32781, 32781}, {32932, 32998},
                   {33421, 33422}, {33723, 33723}, {34377, 34377}, {34665, 34665}, {34675, 34675},
                   {34853, 34853}, {37393, 37393}, {37398, 37399}, {37500, 37500}, {37724, 37724},
                   {40960, 41985}, {50215, 50280}, {50674, 50733}, {50735, 50735}, {50737, 51177},
                   {52525, 52560}, {65000, 65535}};
    const int kSerialNumber = 50735; // of the camera
    return tag == kSerialNumber || std::none_of(std::begin(kOthers), std::end(kOthers),
                                                [tag](const auto& range) {
                                                    return tag >= range.first && tag <= range.last;
                                                });
}

namespace
{

// Everything but the notes has to fit into a JPEG file beside them.
const uint64_t kMostValueBytes = 1u << 14;

struct Gathered
{
    std::vector<NewTiffField> first, exif, gps, interop;
    TiffField notes; // their place in the source; without bytes = there are none
    Bytes notesBytes;
};

} // namespace

static std::vector<NewTiffField> FieldsOf(const TiffStructure& tiff, const TiffDirectory& directory,
                                          bool (*wanted)(int tag))
{
    std::vector<NewTiffField> fields;
    for (const TiffField& field : directory.fields)
        if (wanted(field.tag) && field.bytes <= kMostValueBytes)
            SetTiffField(&fields, {field.tag, field.type, uint32_t(field.count),
                                   tiff.source.Bytes(field.valueAt, field.bytes)});
    return fields;
}

static bool GatherAll(const TiffStructure& tiff, Gathered* all)
{
    TiffDirectory first, exif, gps, interop;
    if (!ReadTiffDirectory(tiff, tiff.first, &first))
        return false;
    ReadSubDirectory(tiff, first, kTagExifDirectory, &exif);
    ReadSubDirectory(tiff, first, kTagGpsDirectory, &gps);
    ReadSubDirectory(tiff, exif, kTagInteropDirectory, &interop);
    all->first = FieldsOf(tiff, first, IsAboutPhotograph);
    const auto every = [](int) { return true; };
    all->exif = FieldsOf(
        tiff, exif, [](int tag) { return tag != kTagMakerNote && tag != kTagInteropDirectory; });
    all->gps = FieldsOf(tiff, gps, every);
    all->interop = FieldsOf(tiff, interop, every);
    const uint64_t kMostNotes = 1u << 22;
    const TiffField* notes = exif.Find(kTagMakerNote);
    if (notes && notes->bytes <= kMostNotes)
    {
        all->notes = *notes;
        all->notesBytes = tiff.source.Bytes(notes->valueAt, notes->bytes);
    }
    return true;
}

// Offsets in the notes count from the first byte of the file or of the notes; makers do as they
// like. Where all those of a directory that begins behind a short name point into the notes when
// they are taken from the file's first byte, they do count from there.
static bool MoveOffsets(Bytes* notes, size_t start, uint64_t from, uint64_t to, bool bigEndian)
{
    const ByteSource source(*notes);
    const size_t kFieldBytes = 12;
    uint8_t count[2];
    if (!source.Read(start, 2, count))
        return false;
    const size_t fields = size_t(NumberAt(count, 2, bigEndian));
    if (fields == 0 || start + 2 + fields * kFieldBytes > notes->size())
        return false;
    static const uint8_t kTypeBytes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4};
    std::vector<size_t> places;
    for (size_t i = 0; i < fields; ++i)
    {
        const size_t at = start + 2 + i * kFieldBytes;
        const uint64_t type = NumberAt(&(*notes)[at + 2], 2, bigEndian);
        if (type == 0 || type >= sizeof kTypeBytes)
            return false;
        const uint64_t bytes = NumberAt(&(*notes)[at + 4], 4, bigEndian) * kTypeBytes[type];
        if (bytes <= 4)
            continue;
        const uint64_t offset = NumberAt(&(*notes)[at + 8], 4, bigEndian);
        if (offset < from || bytes > notes->size() || offset - from > notes->size() - bytes)
            return false;
        places.push_back(at + 8);
    }
    for (const size_t place : places)
        PutNumber(&(*notes)[place], NumberAt(&(*notes)[place], 4, bigEndian) - from + to, 4,
                  bigEndian);
    return true;
}

// Appends a directory and gives its place.
static uint32_t AppendDirectory(Bytes* block, const std::vector<NewTiffField>& fields,
                                bool bigEndian)
{
    block->resize(block->size() + block->size() % 2);
    const auto at = uint32_t(block->size());
    const Bytes bytes = TiffDirectoryBytes(fields, at, 0, bigEndian);
    block->insert(block->end(), bytes.begin(), bytes.end());
    return at;
}

// Everything from the end of the block on, with notes that stand at that place.
static void AppendAll(Bytes* block, Gathered all, uint64_t notesAt, bool bigEndian)
{
    const auto link =
        [&](std::vector<NewTiffField>* from, int tag, const std::vector<NewTiffField>& to)
    {
        if (!to.empty())
            SetTiffField(from, TiffNumberField(tag, kTiffLong,
                                               AppendDirectory(block, to, bigEndian), bigEndian));
    };
    link(&all.exif, kTagInteropDirectory, all.interop);
    if (!all.notesBytes.empty())
    {
        NewTiffField notes = {kTagMakerNote, all.notes.type, uint32_t(all.notes.count), {}};
        AppendNumber(&notes.value, notesAt, 4, bigEndian);
        if (all.notesBytes.size() <= 4)
            notes.value = all.notesBytes;
        SetTiffField(&all.exif, notes);
    }
    link(&all.first, kTagExifDirectory, all.exif);
    link(&all.first, kTagGpsDirectory, all.gps);
    const uint32_t first = AppendDirectory(block, all.first, bigEndian);
    PutNumber(block->data() + 4, first, 4, bigEndian);
}

// Orientation and resolution alone are no knowledge: every TIFF file has them.
static bool KnowsNothing(const Gathered& all)
{
    const auto usual = [](const NewTiffField& field)
    {
        return field.tag == kTagOrientation || field.tag == kTagXResolution ||
               field.tag == kTagYResolution || field.tag == kTagResolutionUnit;
    };
    return std::all_of(all.first.begin(), all.first.end(), usual) && all.exif.empty() &&
           all.gps.empty() && all.notesBytes.empty();
}

Bytes ExifOfTiff(const TiffStructure& tiff, uint32_t limit)
{
    Gathered all;
    if (!GatherAll(tiff, &all) || KnowsNothing(all))
        return {};
    const bool bigEndian = tiff.bigEndian;
    Bytes block = {'I', 'I'};
    if (bigEndian)
        block = {'M', 'M'};
    AppendNumber(&block, 42, 2, bigEndian);
    AppendNumber(&block, 0, 4, bigEndian);
    const Bytes head = block;
    AppendAll(&block, all, 0, bigEndian);
    block.resize(block.size() + block.size() % 2);
    const uint64_t size = all.notesBytes.size(), from = all.notes.valueAt;
    if (size <= 4)
        return block;
    // The rest goes before the notes where there is room, else behind them.
    const bool stays = from >= head.size() && from + size <= limit;
    if (stays && from < block.size())
    {
        block = head;
        block.resize(size_t(from));
        block.insert(block.end(), all.notesBytes.begin(), all.notesBytes.end());
        AppendAll(&block, all, from, bigEndian);
        return block;
    }
    const uint64_t to = stays ? from : block.size();
    if (!stays)
        for (const size_t start : {0, 6, 8, 10, 12, 14, 16, 18})
            if (MoveOffsets(&all.notesBytes, start, from, to, bigEndian))
                break;
    block = head;
    AppendAll(&block, all, to, bigEndian);
    block.resize(size_t(to));
    block.insert(block.end(), all.notesBytes.begin(), all.notesBytes.end());
    return block;
}
