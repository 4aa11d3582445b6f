#include "files/Metadata.h"

#include "base/SystemFiles.h"
#include "files/ByteSource.h"
#include "files/MetadataContainers.h"
#include "files/MetadataTiff.h"
#include "files/TiffDirectory.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

// Raw files of one maker hold a JPEG file, those of another one a TIFF structure among blocks.
static bool ReadOddRaw(const ByteSource& source, const uint8_t* head, Metadata* metadata)
{
    uint8_t place[8];
    if (std::memcmp(head, "FUJIFILM", 8) == 0 && source.Read(84, sizeof place, place))
    {
        ReadJpegMetadata(source.Part(NumberAt(place, 4, true), NumberAt(place + 4, 4, true)),
                         metadata);
        return true;
    }
    if (std::memcmp(head, "\0MRM", 4) != 0)
        return false;
    for (uint64_t at = 8; source.Read(at, sizeof place, place);)
    {
        const uint64_t bytes = NumberAt(place + 4, 4, true);
        if (std::memcmp(place, "\0TTW", 4) == 0)
        {
            ReadTiffMetadata(source.Part(at + 8, bytes), metadata);
            break;
        }
        at += 8 + bytes;
    }
    return true;
}

// Resolutions stand in the EXIF block of most files, and mostly nowhere else.
static void TakeResolution(Metadata* metadata)
{
    const ByteSource source(metadata->exif);
    TiffStructure tiff = {source};
    TiffDirectory first;
    if (metadata->dotsPerInchX > 0 || !OpenTiff(source, &tiff) ||
        !ReadTiffDirectory(tiff, tiff.first, &first))
        return;
    const double unit =
        TiffNumberOf(tiff, first.Find(kTagResolutionUnit)) == 3 ? kInchCentimetres : 1;
    metadata->dotsPerInchX = TiffFraction(tiff, first.Find(kTagXResolution)) * unit;
    metadata->dotsPerInchY = TiffFraction(tiff, first.Find(kTagYResolution)) * unit;
}

Metadata ReadMetadata(FILE* stream)
{
    Metadata metadata;
    const ByteSource source(stream);
    uint8_t head[12];
    if (!source.Read(0, sizeof head, head))
        return metadata;
    if (head[0] == 0xFF && head[1] == 0xD8)
        ReadJpegMetadata(source, &metadata);
    else if (std::memcmp(head, "\x89PNG\r\n\x1A\n", 8) == 0)
        ReadPngMetadata(source, &metadata);
    else if (std::memcmp(head, "RIFF", 4) == 0 && std::memcmp(head + 8, "WEBP", 4) == 0)
        ReadWebpMetadata(source, &metadata);
    else if (!ReadOddRaw(source, head, &metadata))
        ReadTiffMetadata(source, &metadata);
    TakeResolution(&metadata);
    return metadata;
}

Metadata ReadMetadataFile(const char* path)
{
    const std::unique_ptr<FILE, int (*)(FILE*)> stream(OpenUtf8Path(path), std::fclose);
    return stream ? ReadMetadata(stream.get()) : Metadata();
}

ExposureFacts ExposureOf(const Metadata& metadata)
{
    const ByteSource source(metadata.exif);
    TiffStructure tiff = {source};
    TiffDirectory first, exif;
    ExposureFacts facts;
    if (!OpenTiff(source, &tiff) || !ReadTiffDirectory(tiff, tiff.first, &first))
        return facts;
    ReadSubDirectory(tiff, first, kTagExifDirectory, &exif);
    const auto find = [&](int tag) { return exif.Find(tag) ? exif.Find(tag) : first.Find(tag); };
    facts.biasKnown = find(kTagExposureBias) != nullptr;
    facts.bias = TiffFraction(tiff, find(kTagExposureBias));
    const double aperture = TiffFraction(tiff, find(kTagFNumber));
    const int64_t iso = TiffNumberOf(tiff, find(kTagIso));
    facts.light = TiffFraction(tiff, find(kTagExposureTime)) * double(iso > 0 ? iso : 100) /
                  (aperture > 0 ? aperture * aperture : 1);
    return facts;
}

size_t ReferenceFrame(const std::vector<Metadata>& frames)
{
    std::vector<ExposureFacts> facts;
    for (const Metadata& frame : frames)
        facts.push_back(ExposureOf(frame));
    const auto all = [&](auto what) { return std::all_of(facts.begin(), facts.end(), what); };
    if (facts.empty())
        return 0;
    // A bracket made by hand has biases of zero throughout, which say nothing.
    const bool differ = !all([&](const ExposureFacts& f) { return f.bias == facts[0].bias; });
    if (differ && all([](const ExposureFacts& f) { return f.biasKnown; }))
        return size_t(std::min_element(facts.begin(), facts.end(),
                                       [](const ExposureFacts& a, const ExposureFacts& b)
                                       { return std::fabs(a.bias) < std::fabs(b.bias); }) -
                      facts.begin());
    const bool lit = all([](const ExposureFacts& f) { return f.light > 0; });
    if (!lit || all([&](const ExposureFacts& f) { return f.light == facts[0].light; }))
        return 0;
    std::vector<size_t> order(facts.size());
    for (size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::stable_sort(order.begin(), order.end(),
                     [&](size_t a, size_t b) { return facts[a].light < facts[b].light; });
    return order[(order.size() - 1) / 2];
}
