#include "files/ImageFile.h"

#include "base/ShortMemory.h"
#include "base/SystemFiles.h"
#include "files/ImageReader.h"
#include "picture/Orientation.h"

#include <algorithm>
#include <cerrno>
#include <string>

int g_jpegQuality = 0;
static const int kDefaultJpegQuality = 95;

// 32-bit BMP files mostly have an unused fourth byte, and zero in it. Taken for alpha, it would
// make the whole picture invisible once it is saved as PNG.
static void DropUnusedAlpha(SBxPicBuf* alpha)
{
    if (alpha->data && std::all_of(alpha->data, alpha->data + alpha->size,
                                   [](uint8_t sample) { return sample == 0; }))
        CBxPicBufAPI::DoneHeap(alpha);
}

static void InvertSixteenBits(SBxPicBuf* picture)
{
    uint16_t* samples = PicRow<uint16_t>(*picture, 0); // rows are packed
    for (int64_t i = 0; i < int64_t(picture->size) / 2; ++i)
        samples[i] = uint16_t(~samples[i]);
}

static int OrientationOf(FREE_IMAGE_FORMAT format, FILE* file)
{
    if (format == FIF_JPEG)
        return JpegOrientation(file);
    return format == FIF_TIFF ? TiffNumber(file, kTiffOrientation) : 1;
}

static LoadProblem LoadPair(const char* path, SBxPicBuf* picture, SBxPicBuf* alpha)
{
    FileOwner file;
    ImageStream stream;
    FREE_IMAGE_FORMAT format = FIF_UNKNOWN;
    LoadProblem problem = OpenPicture(path, &file, &stream, &format);
    if (problem != LoadProblem::None)
        return problem;
    const BitmapOwner bitmap = LoadWhole(format, &stream, &problem);
    if (!bitmap)
        return problem;
    if (PictureFromBitmap(bitmap.get(), picture, alpha))
    {
        problem = ProblemOf(FitOfBitmap(bitmap.get()));
        return problem == LoadProblem::None ? LoadProblem::OutOfMemory : problem;
    }
    if (format == FIF_BMP)
        DropUnusedAlpha(alpha);
    if (format == FIF_TIFF && FreeImage_GetImageType(bitmap.get()) == FIT_UINT16 &&
        FreeImage_GetColorType(bitmap.get()) == FIC_MINISBLACK &&
        TiffNumber(file.get(), kTiffPhotometric) == 0)
        InvertSixteenBits(picture);
    const int orientation = OrientationOf(format, file.get());
    if (MakeUpright(picture, orientation) == Outcome::Done &&
        MakeUpright(alpha, orientation) == Outcome::Done)
        return LoadProblem::None;
    CBxPicBufAPI::DoneHeap(picture);
    CBxPicBufAPI::DoneHeap(alpha);
    return LoadProblem::OutOfMemory;
}

bool LoadPicturePair(const char* path, SBxPicBuf* picture, SBxPicBuf* alpha, LoadReport* report)
{
    InitImageLibrary();
    CBxPicBufAPI::DoneHeap(picture);
    CBxPicBufAPI::DoneHeap(alpha);
    LoadProblem problem = LoadProblem::OutOfMemory;
    const auto load = [&]
    {
        problem = LoadPair(path, picture, alpha);
        return FailedIf(problem != LoadProblem::None);
    };
    const bool failed = FailWithoutMemory(load) != Outcome::Done;
    if (failed)
    {
        CBxPicBufAPI::DoneHeap(picture);
        CBxPicBufAPI::DoneHeap(alpha);
    }
    if (report)
        report->problem = problem;
    return failed;
}

LoadProblem CheckPictureFile(const char* path)
{
    InitImageLibrary();
    FileOwner file;
    ImageStream stream;
    FREE_IMAGE_FORMAT format = FIF_UNKNOWN;
    const LoadProblem problem = OpenPicture(path, &file, &stream, &format);
    return problem == LoadProblem::None ? CheckHeader(format, &stream) : problem;
}

// Gives the source the profile that stands in its file. The size is not known before it is
// unpacked; a profile states it in its first four bytes, which also tells whether it is complete.
static void AttachPngProfile(FIBITMAP* source, FILE* stream)
{
    std::vector<uint8_t> packed, profile;
    if (!FindPngProfile(stream, &packed))
        return;
    const size_t kMaxProfileBytes = 64u << 20;
    for (size_t size = 4096; size <= kMaxProfileBytes; size *= 4)
    {
        profile.resize(size);
        const DWORD bytes = FreeImage_ZLibUncompress(profile.data(), DWORD(size), packed.data(),
                                                     DWORD(packed.size()));
        if (bytes == 0)
            continue; // damaged, or larger than that
        const uint32_t stated = uint32_t(profile[0]) << 24 | uint32_t(profile[1]) << 16 |
                                uint32_t(profile[2]) << 8 | profile[3];
        if (stated == bytes)
            FreeImage_CreateICCProfile(source, profile.data(), long(bytes));
        return;
    }
}

// A profile that speaks of other colour channels than the picture has is worse than none: a CMYK
// photograph arrives here as RGB, still with the profile of its inks.
static bool ProfileFits(const FIICCPROFILE* profile, const SBxPicBuf& picture)
{
    const size_t kSpaceOffset = 16; // four letters naming the colour space
    if (profile->size < kSpaceOffset + 4)
        return true;
    const char* data = static_cast<const char*>(profile->data);
    const std::string space(data + kSpaceOffset, 4);
    return space != "CMYK" && space != (picture.components == 1 ? "RGB " : "GRAY");
}

// The picture was turned upright when it was loaded: what travels along must not turn it again.
static void SayUpright(FIBITMAP* bitmap)
{
    FITAG* tag = nullptr;
    if (!FreeImage_GetMetadata(FIMD_XMP, bitmap, "XMLPacket", &tag))
        return;
    char* xmp = static_cast<char*>(const_cast<void*>(FreeImage_GetTagValue(tag)));
    const size_t size = FreeImage_GetTagLength(tag);
    for (const std::string name : {"tiff:Orientation=\"", "tiff:Orientation>"})
    {
        char* found = std::search(xmp, xmp + size, name.begin(), name.end());
        if (found + name.size() < xmp + size && found[name.size()] >= '2' &&
            found[name.size()] <= '8')
            found[name.size()] = '1';
    }
}

static void TakeProfileAndMetadata(FIBITMAP* bitmap, const FormatRow& format, FIBITMAP* source,
                                   const SBxPicBuf& picture)
{
    FreeImage_CloneMetadata(bitmap, source);
    SayUpright(bitmap);
    // The samples count from black to white, whatever those of the source did.
    FreeImage_SetMetadata(FIMD_EXIF_MAIN, bitmap, "PhotometricInterpretation", nullptr);
    if (!(format.carries & kCarriesCaptions))
        FreeImage_SetMetadata(FIMD_IPTC, bitmap, nullptr, nullptr);
    const FIICCPROFILE* profile = FreeImage_GetICCProfile(source);
    if (profile && profile->data && profile->size && ProfileFits(profile, picture))
        FreeImage_CreateICCProfile(bitmap, profile->data, long(profile->size));
}

static void SetExif(FIBITMAP* bitmap, const std::vector<uint8_t>& exif)
{
    FITAG* tag = FreeImage_CreateTag();
    if (!tag)
        return;
    FreeImage_SetTagKey(tag, "ExifRaw");
    FreeImage_SetTagType(tag, FIDT_BYTE);
    FreeImage_SetTagLength(tag, DWORD(exif.size()));
    FreeImage_SetTagCount(tag, DWORD(exif.size()));
    FreeImage_SetTagValue(tag, exif.data());
    FreeImage_SetMetadata(FIMD_EXIF_RAW, bitmap, "ExifRaw", tag);
    FreeImage_DeleteTag(tag);
}

static void TakeFromSource(FIBITMAP* bitmap, const FormatRow& targetFormat, const char* path,
                           const SBxPicBuf& picture, SaveReport* report)
{
    const FileOwner file(OpenSavePath(path));
    ImageStream stream;
    stream.file = file.get();
    FREE_IMAGE_FORMAT format = CodeFromFileName(path);
    if (file && FindReadableFormat(&format, &stream, path) != LoadProblem::None)
        format = FIF_UNKNOWN;
    if (format == FIF_UNKNOWN || format == FIF_GIF)
    {
        report->problem = SaveProblem::SourceFormat;
        throw UnsupportedImageFormat();
    }
    LoadProblem problem = LoadProblem::None;
    const BitmapOwner source = file ? LoadWhole(format, &stream, &problem) : nullptr;
    if (!source)
    {
        report->problem = SaveProblem::SourceUnreadable;
        throw ImageReadError();
    }
    if (format == FIF_PNG && !FreeImage_GetICCProfile(source.get())->data)
        AttachPngProfile(source.get(), file.get());
    TakeProfileAndMetadata(bitmap, targetFormat, source.get(), picture);
    std::vector<uint8_t> exif;
    if (format == FIF_JPEG && (targetFormat.carries & kCarriesExif))
        exif = SoundJpegExif(file.get());
    if (exif.empty())
        return;
    SetExifUpright(&exif);
    SetExif(bitmap, exif);
}

static bool Encode(FREE_IMAGE_FORMAT format, FIBITMAP* bitmap, FreeImageIO* io, ImageStream* stream,
                   int flags)
{
    try // short memory
    {
        return FreeImage_SaveToHandle(format, bitmap, io, stream, flags);
    }
    catch (...)
    {
        return false;
    }
}

// Encoders return success for some files that they gave up on; such a file has no readable header.
static bool HeaderMatches(ImageStream* stream, FREE_IMAGE_FORMAT format, FIBITMAP* bitmap)
{
    if (!stream->error && std::fflush(stream->file) != 0)
        stream->error = errno;
    if (stream->error || !FreeImage_FIFSupportsNoPixels(format))
        return !stream->error;
    const BitmapOwner header = Decode(format, stream, FIF_LOAD_NOPIXELS);
    return header && FreeImage_GetWidth(header.get()) == FreeImage_GetWidth(bitmap) &&
           FreeImage_GetHeight(header.get()) == FreeImage_GetHeight(bitmap);
}

// The new file takes the target's place, or waits for others that do so with it.
static bool Finish(ReplacingFile* file, const SaveExtras& extras)
{
    file->stopped = extras.stopped;
    if (!extras.held)
        return FinishReplacing(file, !extras.passing);
    const bool complete = CompleteReplacing(file, !extras.passing);
    *extras.held = *file;
    return complete;
}

static void WriteFile(FIBITMAP* bitmap, const char* target, FREE_IMAGE_FORMAT format, int flags,
                      const SaveExtras& extras, SaveReport* report)
{
    ReplacingFile file;
    if (!BeginReplacing(&file, target))
    {
        report->problem = SaveProblem::CannotCreate;
        report->systemError = file.error;
        return;
    }
    FreeImageIO io = StreamFunctions();
    ImageStream stream;
    stream.file = file.stream;
    const auto encode = [&]
    {
        return FailedIf(!Encode(format, bitmap, &io, &stream, flags) ||
                        !HeaderMatches(&stream, format, bitmap));
    };
    const bool failed = FailWithoutMemory(encode) != Outcome::Done;
    file.error = stream.error;
    if (failed)
        CancelReplacing(&file);
    else
        report->written = Finish(&file, extras);
    report->otherNames = file.otherNames;
    report->systemError = file.error;
    report->problem = report->written ? SaveProblem::None
                      : file.error    ? SaveProblem::CannotWrite
                                      : SaveProblem::EncoderFailed;
}

static int SaveFlags(FREE_IMAGE_FORMAT format, bool passing)
{
    if (format == FIF_TIFF && passing)
        return TIFF_NONE;
    if (format != FIF_JPEG)
        return 0;
    // FreeImage reads larger numbers as other options.
    return g_jpegQuality >= 1 ? std::min(g_jpegQuality, 100) : kDefaultJpegQuality;
}

static const FormatRow& WritableFormat(FormatId format, const char* target, SaveReport* report)
{
    const FormatRow* row =
        FindFormat(format == kFormatFromName ? FormatFromFileName(target) : format);
    if (row && row->written)
        return *row;
    report->problem = SaveProblem::UnknownFormat;
    throw UnsupportedImageFormat();
}

static void SavePair(const SBxPicBuf& picture, const SBxPicBuf& alpha, const char* target,
                     const char* source, FormatId format, SaveReport* report,
                     const SaveExtras* extras)
{
    report->problem = SaveProblem::NoPicture;
    if (!picture.data || (picture.components != 1 && picture.components != 3) ||
        (picture.bitsPerComponent != 8 && picture.bitsPerComponent != 16))
        return;

    const FormatRow& row = WritableFormat(format, target, report);
    const bool hasAlpha = alpha.data && picture.components == 3;
    const bool withAlpha = hasAlpha && FormatHoldsPicture(row.id, picture, true);
    report->alphaDropped = hasAlpha && !withAlpha;
    report->problem = SaveProblem::DepthNotHeld;
    if (!FormatHoldsPicture(row.id, picture, withAlpha))
        return;

    report->problem = SaveProblem::OutOfMemory;
    const BitmapOwner bitmap(BitmapFromPicture(picture, withAlpha ? &alpha : nullptr));
    if (!bitmap)
        return;
    if (source && *source)
        TakeFromSource(bitmap.get(), row, source, picture, report);
    if (extras && !extras->exif.empty())
        SetExif(bitmap.get(), extras->exif);

    static const SaveExtras kNone;
    const SaveExtras& wanted = extras ? *extras : kNone;
    const auto code = FREE_IMAGE_FORMAT(*row.codes.begin());
    const int flags = SaveFlags(code, wanted.passing);
    WriteFile(bitmap.get(), target, code, flags, wanted, report);
    // Some encoders refuse profiles that are damaged; the picture is worth more than its profile.
    if (report->problem != SaveProblem::EncoderFailed ||
        !FreeImage_GetICCProfile(bitmap.get())->data)
        return;
    FreeImage_DestroyICCProfile(bitmap.get());
    report->profileDropped = true;
    WriteFile(bitmap.get(), target, code, flags, wanted, report);
}

bool SavePicturePair(const SBxPicBuf& picture, const SBxPicBuf& alpha, const char* target,
                     const char* source, FormatId format, SaveReport* report,
                     const SaveExtras* extras)
{
    InitImageLibrary();
    SaveReport unread;
    if (!report)
        report = &unread;
    *report = SaveReport();
    const auto save = [&]
    {
        SavePair(picture, alpha, target, source, format, report, extras);
        return Outcome::Done;
    };
    if (FailWithoutMemory(save) != Outcome::Done)
    {
        report->written = false;
        report->problem = SaveProblem::OutOfMemory;
    }
    return false;
}
