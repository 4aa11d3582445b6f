#include "files/MetadataTiff.h"

#include "files/ExifSource.h"
#include "files/MetadataContainers.h"
#include "files/TiffDirectory.h"

#include <algorithm>

// TIFF files keep everything under tags of their first directory, and so do most raw files.

static const uint64_t kMostBytes = 64u << 20;

static std::vector<uint8_t> ValueOf(const TiffStructure& tiff, const TiffDirectory& directory,
                                    int tag)
{
    const TiffField* field = directory.Find(tag);
    if (!field || field->bytes > kMostBytes)
        return {};
    return tiff.source.Bytes(field->valueAt, field->bytes);
}

// Captions are bytes, but many files count them in numbers of four, and those with the other byte
// order then hold them turned round.
static void PutCaptionsRight(std::vector<uint8_t>* captions)
{
    const uint8_t kMark = 0x1C;
    if (captions->size() < 4 || (*captions)[0] == kMark || (*captions)[3] != kMark)
        return;
    for (size_t i = 0; i + 4 <= captions->size(); i += 4)
        std::reverse(captions->begin() + std::ptrdiff_t(i),
                     captions->begin() + std::ptrdiff_t(i + 4));
}

void ReadTiffMetadata(const ByteSource& source, Metadata* metadata)
{
    const int kResources = 34377;
    // A JPEG file holds up to 64 kB, with a new first directory and a thumbnail on top.
    const uint32_t kNotesEnd = 52000;
    TiffStructure tiff = {source};
    TiffDirectory first;
    if (!OpenTiff(source, &tiff) || !ReadTiffDirectory(tiff, tiff.first, &first))
        return;
    metadata->xmp = ValueOf(tiff, first, kTagXmp);
    metadata->profile = ValueOf(tiff, first, kTagProfile);
    metadata->iptc = ValueOf(tiff, first, kTagIptc);
    if (metadata->iptc.empty())
        metadata->iptc = CaptionsInResources(ValueOf(tiff, first, kResources));
    PutCaptionsRight(&metadata->iptc);
    metadata->exif = ExifOfTiff(tiff, kNotesEnd);
}
