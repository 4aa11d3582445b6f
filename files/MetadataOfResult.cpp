#include "files/MetadataOfResult.h"

#include "files/ExifRewrite.h"
#include "files/ExifSource.h"
#include "files/JpegWriter.h"
#include "files/PngWriter.h"
#include "files/XmpPacket.h"

#include <algorithm>
#include <cstring>

// A profile that speaks of other colour channels than the picture has is worse than none: a CMYK
// photograph arrives here as RGB, still with the profile of its inks.
static bool ProfileFits(const std::vector<uint8_t>& profile, const SBxPicBuf& picture)
{
    const size_t kSpaceOffset = 16; // four letters naming the colour space
    if (profile.size() < kSpaceOffset + 4)
        return true;
    const std::string space(profile.begin() + kSpaceOffset, profile.begin() + kSpaceOffset + 4);
    return space != "CMYK" && space != (picture.components == 1 ? "RGB " : "GRAY");
}

// The mean of the samples from `start` to `end` in both directions, in 8 bits.
template <typename T>
static uint8_t MeanOf(const SBxPicBuf& picture, const int start[2], const int end[2], int component)
{
    uint64_t sum = 0;
    for (int y = start[1]; y < end[1]; ++y)
    {
        const T* row = PicRow<T>(picture, y) + component;
        for (int x = start[0]; x < end[0]; ++x)
            sum += row[x * picture.components];
    }
    const uint64_t count = uint64_t(end[0] - start[0]) * uint64_t(end[1] - start[1]);
    const uint64_t steps = sizeof(T) == 2 ? 257 : 1;
    return uint8_t((sum + count * steps / 2) / (count * steps));
}

Picture ThumbnailOf(const SBxPicBuf& picture)
{
    const int kSide = 160, longer = std::max(picture.width, picture.height);
    const auto shorter = [&](int side)
    { return longer <= kSide ? side : int(std::max<int64_t>(1, int64_t(side) * kSide / longer)); };
    Picture small(shorter(picture.width), shorter(picture.height), picture.components, 8);
    if (!small->data)
        return small;
    const auto edge = [](int i, int count, int whole) { return int(int64_t(i) * whole / count); };
    for (int y = 0; y < small->height; ++y)
        for (int x = 0; x < small->width; ++x)
        {
            const int start[] = {edge(x, small->width, picture.width),
                                 edge(y, small->height, picture.height)};
            const int end[] = {edge(x + 1, small->width, picture.width),
                               edge(y + 1, small->height, picture.height)};
            for (int c = 0; c < picture.components; ++c)
                PicRow<uint8_t>(small, y)[x * picture.components + c] =
                    picture.bitsPerComponent == 16 ? MeanOf<uint16_t>(picture, start, end, c)
                                                   : MeanOf<uint8_t>(picture, start, end, c);
        }
    return small;
}

static std::vector<uint8_t> ThumbnailFile(const SBxPicBuf& picture)
{
    const Picture small = ThumbnailOf(picture);
    return small->data ? SmallJpeg(small) : std::vector<uint8_t>();
}

// One that is too long for the format is packed closer first, which moves the maker's notes.
static std::vector<uint8_t> ExifFor(const std::vector<uint8_t>& block, const SBxPicBuf& picture,
                                    const ResultFacts& facts, FormatId format)
{
    // A TIFF file with a thumbnail would be one of two pages to many readers.
    const std::vector<uint8_t> thumbnail =
        format == kFormatTiff ? std::vector<uint8_t>() : ThumbnailFile(picture);
    const size_t kMostElsewhere = 16u << 20;
    const size_t limit = format == kFormatJpeg ? kMostJpegExif : kMostElsewhere;
    std::vector<uint8_t> exif = ExifOfResult(block, facts, thumbnail, limit);
    TiffStructure tiff = {ByteSource(block)};
    if (!exif.empty() || !OpenTiff(tiff.source, &tiff))
        return exif;
    return ExifOfResult(ExifOfTiff(tiff, 0), facts, thumbnail, limit);
}

// Records of captions: a mark, a group, a number, the length, the text. Those of the second group
// are what people enter.
static std::vector<uint8_t> WithoutPersonal(const std::vector<uint8_t>& captions)
{
    static const uint8_t kPersonal[] = {26, 27, 80, 85, 90, 92, 95, 100, 101, 118, 122};
    std::vector<uint8_t> kept;
    for (size_t at = 0; at + 5 <= captions.size() && captions[at] == 0x1C;)
    {
        const size_t length = NumberAt(&captions[at + 3], 2, true), end = at + 5 + length;
        if (length >= 0x8000 || end > captions.size())
            break;
        const bool personal =
            captions[at + 1] == 2 &&
            std::count(std::begin(kPersonal), std::end(kPersonal), captions[at + 2]) > 0;
        if (!personal)
            kept.insert(kept.end(), captions.begin() + std::ptrdiff_t(at),
                        captions.begin() + std::ptrdiff_t(end));
        at = end;
    }
    return kept;
}

Metadata MetadataOfResult(const Metadata& source, const SBxPicBuf& picture, const FormatRow& format,
                          MetadataChoice choice, MetadataLosses* losses)
{
    const ResultFacts facts = FactsOfResult(picture.width, picture.height, choice);
    const bool wanted = choice != MetadataChoice::None;
    Metadata result;
    result.dotsPerInchX = source.dotsPerInchX;
    result.dotsPerInchY = source.dotsPerInchY;
    if (ProfileFits(source.profile, picture))
        result.profile = source.profile;
    const size_t kMostJpegProfile = 255 * 65000;
    const bool profileHeld = format.id == kFormatPng    ? ProfileIsSound(result.profile)
                             : format.id == kFormatJpeg ? result.profile.size() <= kMostJpegProfile
                                                        : true;
    losses->profile =
        !result.profile.empty() && !(profileHeld && (format.carries & kCarriesProfile));
    if (losses->profile)
        result.profile.clear();
    if (wanted && (format.carries & kCarriesExif) && !source.exif.empty())
        result.exif = ExifFor(source.exif, picture, facts, format.id);
    losses->exif = wanted && result.exif.empty() && !source.exif.empty();
    if (wanted && (format.carries & kCarriesXmp))
        result.xmp = XmpOfResult(source.xmp, facts);
    losses->xmp = wanted && result.xmp.empty() && !source.xmp.empty();
    if (wanted && (format.carries & kCarriesCaptions))
        result.iptc =
            choice == MetadataChoice::Private ? WithoutPersonal(source.iptc) : source.iptc;
    losses->captions = wanted && !(format.carries & kCarriesCaptions) && !source.iptc.empty();
    return result;
}
