#include "files/ExifRewrite.h"

#include "files/ExifSource.h"
#include "files/TiffDirectory.h"

#include <algorithm>
#include <cstring>

using Bytes = std::vector<uint8_t>;

namespace
{

struct Range
{
    uint64_t start, end;
};

struct Rewrite
{
    Bytes block;
    bool bigEndian = false;
    size_t limit = 0;
    TiffDirectory first, exif, gps, interop;
    std::vector<Range> used;  // by what stays
    std::vector<Range> freed; // by the old thumbnail
};

} // namespace

static TiffStructure StructureOf(const Bytes& block)
{
    TiffStructure tiff = {ByteSource(block)};
    if (!OpenTiff(tiff.source, &tiff) || tiff.wide)
        tiff.first = 0;
    return tiff;
}

static void AddUse(Rewrite* rewrite, const TiffDirectory& directory)
{
    if (directory.fields.empty())
        return;
    rewrite->used.push_back({directory.at, directory.end});
    for (const TiffField& field : directory.fields)
        rewrite->used.push_back({field.valueAt, field.valueAt + field.bytes});
}

static bool Open(Rewrite* rewrite)
{
    const TiffStructure tiff = StructureOf(rewrite->block);
    if (!ReadTiffDirectory(tiff, tiff.first, &rewrite->first))
        return false;
    rewrite->bigEndian = tiff.bigEndian;
    ReadSubDirectory(tiff, rewrite->first, kTagExifDirectory, &rewrite->exif);
    ReadSubDirectory(tiff, rewrite->first, kTagGpsDirectory, &rewrite->gps);
    ReadSubDirectory(tiff, rewrite->exif, kTagInteropDirectory, &rewrite->interop);
    rewrite->used = {{0, 8}};
    for (const TiffDirectory* directory :
         {&rewrite->first, &rewrite->exif, &rewrite->gps, &rewrite->interop})
        AddUse(rewrite, *directory);
    return true;
}

static void Clear(Bytes* block, uint64_t start, uint64_t bytes)
{
    if (start <= block->size() && bytes <= block->size() - start)
        std::fill_n(block->begin() + std::ptrdiff_t(start), bytes, uint8_t(0));
}

// Clears a place that nothing else uses.
static void Free(Rewrite* rewrite, uint64_t start, uint64_t bytes)
{
    const uint64_t end = start + bytes;
    const auto crosses = [&](const Range& range) { return start < range.end && range.start < end; };
    if (end > rewrite->block.size() ||
        std::any_of(rewrite->used.begin(), rewrite->used.end(), crosses))
        return;
    Clear(&rewrite->block, start, bytes);
    rewrite->freed.push_back({start, end});
}

static void FreeThumbnail(Rewrite* rewrite)
{
    const TiffStructure tiff = StructureOf(rewrite->block);
    TiffDirectory second;
    if (!ReadTiffDirectory(tiff, rewrite->first.next, &second))
        return;
    std::vector<Range> parts;
    const auto add = [&](int placeTag, int sizeTag)
    {
        const int64_t place = TiffNumberOf(tiff, second.Find(placeTag));
        const int64_t size = TiffNumberOf(tiff, second.Find(sizeTag));
        if (place > 0 && size > 0 && uint64_t(size) <= rewrite->block.size())
            parts.push_back({uint64_t(place), uint64_t(size)});
    };
    add(kTagThumbnail, kTagThumbnailBytes);
    add(kTagStrips, 279);
    parts.push_back({second.at, second.end - second.at});
    for (const Range& part : parts) // place and size here
        Free(rewrite, part.start, part.end);
}

// The value of a field in the block, of which `bytes` can be written.
static uint8_t* ValueIn(Rewrite* rewrite, const TiffField* field, uint64_t bytes)
{
    const bool fits = field && field->bytes >= bytes && bytes > 0;
    return fits ? rewrite->block.data() + field->valueAt : nullptr;
}

// Sizes stand in the field itself and become numbers of four bytes, which both sizes may be.
static void SetSize(Rewrite* rewrite, const TiffField* field, int size)
{
    if (!field || field->count != 1 || field->bytes > 4)
        return;
    uint8_t* at = rewrite->block.data() + field->at;
    PutNumber(at + 2, kTiffLong, 2, rewrite->bigEndian);
    PutNumber(at + 8, uint64_t(size), 4, rewrite->bigEndian);
}

static void SetExposureFacts(Rewrite* rewrite, const ResultFacts& facts)
{
    const TiffDirectory& exif = rewrite->exif;
    SetSize(rewrite, exif.Find(kTagPixelWidth), facts.width);
    SetSize(rewrite, exif.Find(kTagPixelHeight), facts.height);
    // The fraction of the second is not known: blanks say so.
    const TiffField* fraction = exif.Find(kTagSubSecTime);
    if (uint8_t* text = ValueIn(rewrite, fraction, 1))
        std::fill_n(text, fraction->bytes - 1, uint8_t(' '));
    if (uint8_t* text = ValueIn(rewrite, exif.Find(kTagOffsetTime), facts.zone.size()))
        std::copy(facts.zone.begin(), facts.zone.end(), text);
}

static bool IsPersonal(int tag)
{
    static const int kPersonal[] = {
        kTagArtist, 316,    0x9C9D, 0xC62F,        // author, computer; serial number
        0x927C,     0xA420, 0xA430, 0xA431, 0xA435 // maker's notes, number of the picture, owner,
    };                                             // serial numbers of camera and lens
    return std::find(std::begin(kPersonal), std::end(kPersonal), tag) != std::end(kPersonal);
}

// Clears the values of the personal fields, or of all of them.
static void ClearFields(Rewrite* rewrite, const TiffDirectory& directory, bool all)
{
    for (const TiffField& field : directory.fields)
        if (all || IsPersonal(field.tag))
            Clear(&rewrite->block, field.valueAt, field.bytes);
}

// The directory closes up over the personal fields, and stays where it is.
static void RemovePersonal(Rewrite* rewrite)
{
    ClearFields(rewrite, rewrite->first, false);
    ClearFields(rewrite, rewrite->exif, false);
    ClearFields(rewrite, rewrite->gps, true);
    if (!rewrite->gps.fields.empty())
        Clear(&rewrite->block, rewrite->gps.at, rewrite->gps.end - rewrite->gps.at);
    const TiffDirectory& exif = rewrite->exif;
    if (exif.fields.empty())
        return;
    Bytes kept;
    const auto at = [&](uint64_t offset)
    { return rewrite->block.begin() + std::ptrdiff_t(offset); };
    uint64_t count = 0;
    for (const TiffField& field : exif.fields)
        if (!IsPersonal(field.tag))
        {
            kept.insert(kept.end(), at(field.at), at(field.at + 12));
            ++count;
        }
    Clear(&rewrite->block, exif.at, exif.end - exif.at);
    PutNumber(&*at(exif.at), count, 2, rewrite->bigEndian);
    std::copy(kept.begin(), kept.end(), at(exif.at + 2));
}

static Bytes WithZero(const std::string& text)
{
    Bytes bytes(text.begin(), text.end());
    bytes.push_back(0);
    return bytes;
}

static std::vector<NewTiffField> FirstFields(const Rewrite& rewrite, const ResultFacts& facts)
{
    const TiffStructure tiff = StructureOf(rewrite.block);
    const bool bigEndian = rewrite.bigEndian, discreet = facts.choice == MetadataChoice::Private;
    std::vector<NewTiffField> fields;
    for (const TiffField& field : rewrite.first.fields)
    {
        const bool personal = IsPersonal(field.tag) || field.tag == kTagGpsDirectory;
        const bool linked = field.tag == kTagExifDirectory || field.tag == kTagGpsDirectory;
        // How the samples of a JPEG source were to be read; those of a result are read so, too.
        const bool samples = field.tag == 529 || field.tag == 531 || field.tag == 532;
        if ((linked || samples || IsAboutPhotograph(field.tag)) && !(discreet && personal))
            SetTiffField(&fields, SameTiffField(tiff, field));
        else if (field.tag == kTagWidth || field.tag == kTagHeight)
            SetTiffField(&fields, TiffNumberField(
                                      field.tag, kTiffLong,
                                      uint32_t(field.tag == kTagWidth ? facts.width : facts.height),
                                      bigEndian));
    }
    SetTiffField(&fields, TiffNumberField(kTagOrientation, kTiffShort, 1, bigEndian));
    SetTiffField(&fields, TiffTextField(kTagSoftware, WithZero(facts.software)));
    SetTiffField(&fields, TiffTextField(kTagDateTime, WithZero(facts.dateTime)));
    return fields;
}

static Bytes SecondDirectory(const Rewrite& rewrite, uint32_t at, uint32_t thumbnailAt,
                             uint32_t thumbnailBytes)
{
    const bool bigEndian = rewrite.bigEndian;
    const uint32_t kJpeg = 6, kInches = 2, kDots = 72;
    const std::vector<NewTiffField> fields = {
        TiffNumberField(259, kTiffShort, kJpeg, bigEndian),
        TiffRationalField(kTagXResolution, kDots, 1, bigEndian),
        TiffRationalField(kTagYResolution, kDots, 1, bigEndian),
        TiffNumberField(kTagResolutionUnit, kTiffShort, kInches, bigEndian),
        TiffNumberField(kTagThumbnail, kTiffLong, thumbnailAt, bigEndian),
        TiffNumberField(kTagThumbnailBytes, kTiffLong, thumbnailBytes, bigEndian),
    };
    return TiffDirectoryBytes(fields, at, 0, bigEndian);
}

// Puts bytes behind the block, or where the old thumbnail was when that would be too far. 0 when
// there is no room.
static uint32_t Place(Rewrite* rewrite, const Bytes& bytes)
{
    Bytes* block = &rewrite->block;
    block->resize(block->size() + block->size() % 2);
    uint64_t at = block->size();
    if (at + bytes.size() <= rewrite->limit)
        block->resize(block->size() + bytes.size());
    else
    {
        at = 0;
        for (Range& range : rewrite->freed)
        {
            range.start += range.start % 2;
            if (at == 0 && range.start + bytes.size() <= range.end)
            {
                at = range.start;
                range.start += bytes.size();
            }
        }
    }
    if (at > 0)
        std::copy(bytes.begin(), bytes.end(), block->begin() + std::ptrdiff_t(at));
    return uint32_t(at);
}

Bytes ExifOfResult(const Bytes& block, const ResultFacts& facts, const Bytes& thumbnail,
                   size_t limit)
{
    Rewrite rewrite;
    rewrite.block = block;
    rewrite.limit = limit;
    if (facts.choice == MetadataChoice::None || block.size() > limit || !Open(&rewrite))
        return {};
    FreeThumbnail(&rewrite);
    SetExposureFacts(&rewrite, facts);
    const std::vector<NewTiffField> fields = FirstFields(rewrite, facts);
    if (facts.choice == MetadataChoice::Private)
        RemovePersonal(&rewrite);

    // Its place decides the offsets within, so it is made twice.
    const uint32_t first = Place(&rewrite, TiffDirectoryBytes(fields, 0, 0, rewrite.bigEndian));
    if (first == 0)
        return {};
    uint32_t second = 0;
    const size_t secondBytes = SecondDirectory(rewrite, 0, 0, 0).size();
    if (!thumbnail.empty())
        second = Place(&rewrite, Bytes(secondBytes, 0));
    const uint32_t picture = second ? Place(&rewrite, thumbnail) : 0;
    if (second && !picture)
    {
        if (second + secondBytes == rewrite.block.size())
            rewrite.block.resize(second);
        second = 0;
    }
    const auto put = [&](const Bytes& bytes, uint32_t at)
    { std::copy(bytes.begin(), bytes.end(), rewrite.block.begin() + std::ptrdiff_t(at)); };
    put(TiffDirectoryBytes(fields, first, second, rewrite.bigEndian), first);
    if (second)
        put(SecondDirectory(rewrite, second, picture, uint32_t(thumbnail.size())), second);
    PutNumber(rewrite.block.data() + 4, first, 4, rewrite.bigEndian);
    PutNumber(rewrite.block.data() + 2, 42, 2, rewrite.bigEndian); // raw files have other numbers
    return rewrite.block;
}
