#include "picture/ImageFile.h"

#include "picture/FileHeaders.h"
#include "picture/FileReplace.h"
#include "picture/ImageCodec.h"
#include "picture/Orientation.h"
#include "picture/ShortMemory.h"
#include "picture/SystemFiles.h"

#include <FreeImage.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <mutex>
#include <system_error>

// Files are opened here and handed to FreeImage as streams: on Windows it takes wide names, on
// other systems narrow ones only, and a stream shows every short write, which FreeImage does not
// report (most of its encoders call a file on a full disk a success).

int g_jpegQuality = 0;
static const int kDefaultJpegQuality = 95;

struct BitmapDeleter
{
    void operator()(FIBITMAP* bitmap) const { FreeImage_Unload(bitmap); }
};
struct FileCloser
{
    void operator()(FILE* file) const { std::fclose(file); }
};
using BitmapOwner = std::unique_ptr<FIBITMAP, BitmapDeleter>;
using FileOwner = std::unique_ptr<FILE, FileCloser>;

// What FreeImage reads from or writes to.
struct ImageStream
{
    FILE* file = nullptr;
    int error = 0;                  // errno of the first failed write
    std::vector<MaskedByte> masked; // known once something is decoded
};

static unsigned DLL_CALLCONV ReadStream(void* buffer, unsigned size, unsigned count,
                                        fi_handle handle)
{
    ImageStream* stream = static_cast<ImageStream*>(handle);
    const std::vector<MaskedByte>& masked = stream->masked;
    const long start = masked.empty() ? 0 : std::ftell(stream->file);
    const size_t done = std::fread(buffer, size, count, stream->file);
    const auto before = [](const MaskedByte& byte, long offset) { return byte.offset < offset; };
    auto byte = std::lower_bound(masked.begin(), masked.end(), start, before);
    for (; byte != masked.end() && uint64_t(byte->offset - start) < uint64_t(size) * count; ++byte)
        static_cast<uint8_t*>(buffer)[byte->offset - start] = byte->shown;
    return unsigned(done);
}

// After an error the encoder is kept going with the good news that it expects: the file is lost
// anyway, and some of FreeImage's ways out of a failed write leak memory.
static unsigned DLL_CALLCONV WriteStream(void* buffer, unsigned size, unsigned count,
                                         fi_handle handle)
{
    ImageStream* stream = static_cast<ImageStream*>(handle);
    if (!stream->error && size != 0 && std::fwrite(buffer, size, count, stream->file) != count)
        stream->error = errno ? errno : EIO;
    return count;
}

static int DLL_CALLCONV SeekStream(fi_handle handle, long offset, int origin)
{
    return std::fseek(static_cast<ImageStream*>(handle)->file, offset, origin);
}

static long DLL_CALLCONV TellStream(fi_handle handle)
{
    return std::ftell(static_cast<ImageStream*>(handle)->file);
}

static FreeImageIO StreamFunctions()
{
    return {ReadStream, WriteStream, SeekStream, TellStream};
}

int FormatFromFileName(const char* name)
{
    InitImageLibrary();
    static std::mutex oneAtATime; // FreeImage takes its extension lists apart with strtok
    const std::lock_guard<std::mutex> lock(oneAtATime);
    return FreeImage_GetFIFFromFilename(name);
}

// Camera raw files mostly look like TIFF files: their names have to say so, too.
static bool IsRaw(FILE* file, const char* name)
{
    const char* point = std::strrchr(name, '.');
    if (!point || !LooksLikeRaw(file))
        return false;
    std::string ending = point + 1;
    for (char& letter : ending)
        letter = letter >= 'A' && letter <= 'Z' ? char(letter - 'A' + 'a') : letter;
    const std::string known = std::string(",") + FreeImage_GetFIFExtensionList(FIF_RAW) + ",";
    return known.find("," + ending + ",") != known.npos;
}

// Contents decide, then the name.
static LoadProblem FindReadableFormat(FREE_IMAGE_FORMAT* format, ImageStream* stream,
                                      const char* name)
{
    FreeImageIO io = StreamFunctions();
    const bool raw = IsRaw(stream->file, name);
    std::rewind(stream->file);
    *format = raw ? FIF_RAW : FreeImage_GetFileTypeFromHandle(&io, stream, 0);
    if (*format == FIF_UNKNOWN)
        *format = FREE_IMAGE_FORMAT(FormatFromFileName(name));
    if (*format == FIF_UNKNOWN)
        return LoadProblem::UnknownFormat;
    return FreeImage_FIFSupportsReading(*format) ? LoadProblem::None : LoadProblem::NotReadable;
}

static std::vector<MaskedByte> MaskedBytes(FREE_IMAGE_FORMAT format, FILE* file)
{
    switch (format)
    {
    case FIF_JPEG:
    case FIF_WEBP:
    case FIF_RAW: return MaskedExif(file); // of the preview
    case FIF_BMP: return MaskedBmpHeader(file);
    case FIF_TIFF: return MaskedTiffEntries(file);
    case FIF_PNG: return MaskedPngProfiles(file);
    default: return {};
    }
}

static BitmapOwner Decode(FREE_IMAGE_FORMAT format, ImageStream* stream, int flags)
{
    FreeImageIO io = StreamFunctions();
    if (stream->masked.empty())
        stream->masked = MaskedBytes(format, stream->file);
    std::rewind(stream->file);
    // A decoder that runs out of memory half-way may throw instead of giving up.
    try
    {
        return BitmapOwner(FreeImage_LoadFromHandle(format, &io, stream, flags));
    }
    catch (...)
    {
        return nullptr;
    }
}

static LoadProblem ProblemOf(BitmapFit fit)
{
    switch (fit)
    {
    case BitmapFit::Fits: return LoadProblem::None;
    case BitmapFit::TooLarge: return LoadProblem::TooLarge;
    case BitmapFit::KindNotSupported: break;
    }
    return LoadProblem::KindNotSupported;
}

static bool IsPortableMap(FREE_IMAGE_FORMAT format)
{
    return format == FIF_PBM || format == FIF_PGM || format == FIF_PPM || format == FIF_PBMRAW ||
           format == FIF_PGMRAW || format == FIF_PPMRAW;
}

// Portable maps are not packed. FreeImage asks for each of their samples in turn, without noticing
// the end of the file: a few bytes could keep it busy for minutes.
static bool HasItsPixels(ImageStream* stream, FIBITMAP* header)
{
    const int64_t bytes = int64_t(FreeImage_GetWidth(header)) * FreeImage_GetHeight(header) *
                          FreeImage_GetBPP(header) / 8;
    return std::fseek(stream->file, 0, SEEK_END) == 0 && bytes <= std::ftell(stream->file);
}

// A header of a few bytes may claim billions of pixels, which a decoder would allocate and clear
// before it sees that there is nothing to read.
static LoadProblem CheckHeader(FREE_IMAGE_FORMAT format, ImageStream* stream)
{
    if (format == FIF_GIF)
    {
        int width = 0, height = 0;
        const bool known = GifFrameSize(stream->file, &width, &height);
        const int64_t bytes = PictureBytes(width, height, 1, 8);
        const bool fits = bytes >= 0 && 2 * bytes <= PhysicalMemoryBytes();
        return !known || fits ? LoadProblem::None : LoadProblem::TooLarge;
    }
    if (format == FIF_PNG && !PngChunksFit(stream->file))
        return LoadProblem::DecoderFailed;
    if (!FreeImage_FIFSupportsNoPixels(format))
        return LoadProblem::None;
    const BitmapOwner header = Decode(format, stream, FIF_LOAD_NOPIXELS);
    if (!header)
        return LoadProblem::DecoderFailed;
    const LoadProblem problem = ProblemOf(FitOfBitmap(header.get()));
    if (problem != LoadProblem::None)
        return problem;
    const bool empty = IsPortableMap(format) && !HasItsPixels(stream, header.get());
    return empty ? LoadProblem::DecoderFailed : LoadProblem::None;
}

static BitmapOwner LoadWhole(FREE_IMAGE_FORMAT format, ImageStream* stream, LoadProblem* problem)
{
    *problem = CheckHeader(format, stream);
    if (*problem != LoadProblem::None)
        return nullptr;
    BitmapOwner bitmap = Decode(format, stream, format == FIF_JPEG ? JPEG_ACCURATE : 0);
    if (!bitmap)
        *problem = LoadProblem::DecoderFailed;
    return bitmap;
}

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

// The file and the format of what it holds.
static LoadProblem OpenPicture(const char* path, FileOwner* file, ImageStream* stream,
                               FREE_IMAGE_FORMAT* format)
{
    file->reset(OpenUtf8Path(path));
    if (!*file)
        return errno == ENOENT || errno == ENOTDIR ? LoadProblem::NoSuchFile
                                                   : LoadProblem::CannotOpen;
    stream->file = file->get();
    return FindReadableFormat(format, stream, path);
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
    if (MakeUpright(picture, orientation) && MakeUpright(alpha, orientation))
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
        return problem != LoadProblem::None;
    };
    const bool failed = FailsOrLacksMemory(load);
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

static void TakeProfileAndMetadata(FIBITMAP* bitmap, FREE_IMAGE_FORMAT format, FIBITMAP* source,
                                   const SBxPicBuf& picture)
{
    FreeImage_CloneMetadata(bitmap, source);
    SayUpright(bitmap);
    // The samples count from black to white, whatever those of the source did.
    FreeImage_SetMetadata(FIMD_EXIF_MAIN, bitmap, "PhotometricInterpretation", nullptr);
    // Of the captions the TIFF encoder writes a quarter.
    if (format == FIF_TIFF)
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

static void TakeFromSource(FIBITMAP* bitmap, FREE_IMAGE_FORMAT targetFormat, const char* path,
                           const SBxPicBuf& picture, SaveReport* report)
{
    const FileOwner file(OpenSavePath(path));
    ImageStream stream;
    stream.file = file.get();
    auto format = FREE_IMAGE_FORMAT(FormatFromFileName(path));
    if (file && FindReadableFormat(&format, &stream, path) != LoadProblem::None)
        format = FIF_UNKNOWN;
    if (format == FIF_UNKNOWN || format == FIF_GIF || !FreeImage_FIFSupportsReading(format))
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
    if (format == FIF_JPEG)
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

static void WriteFile(FIBITMAP* bitmap, const char* target, FREE_IMAGE_FORMAT format, int flags,
                      bool toDisk, SaveReport* report)
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
    const auto encode = [&] {
        return !Encode(format, bitmap, &io, &stream, flags) ||
               !HeaderMatches(&stream, format, bitmap);
    };
    const bool failed = FailsOrLacksMemory(encode);
    file.error = stream.error;
    if (failed)
        CancelReplacing(&file);
    else
        report->written = FinishReplacing(&file, toDisk);
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

static FREE_IMAGE_FORMAT WritableFormat(int format, const char* target, SaveReport* report)
{
    const auto code =
        FREE_IMAGE_FORMAT(format == kFormatFromName ? FormatFromFileName(target) : format);
    if (code != FIF_UNKNOWN && code != FIF_GIF && FreeImage_FIFSupportsWriting(code))
        return code;
    report->problem = SaveProblem::UnknownFormat;
    throw UnsupportedImageFormat();
}

static void SavePair(const SBxPicBuf& picture, const SBxPicBuf& alpha, const char* target,
                     const char* source, int format, SaveReport* report, const SaveExtras* extras)
{
    report->problem = SaveProblem::NoPicture;
    if (!picture.data || (picture.components != 1 && picture.components != 3) ||
        (picture.bitsPerComponent != 8 && picture.bitsPerComponent != 16))
        return;

    const FREE_IMAGE_FORMAT code = WritableFormat(format, target, report);
    const bool hasAlpha = alpha.data && picture.components == 3;
    const bool withAlpha = hasAlpha && FormatHoldsPicture(code, picture, true);
    report->alphaDropped = hasAlpha && !withAlpha;
    report->problem = SaveProblem::DepthNotHeld;
    if (!FormatHoldsPicture(code, picture, withAlpha))
        return;

    report->problem = SaveProblem::OutOfMemory;
    const BitmapOwner bitmap(BitmapFromPicture(picture, withAlpha ? &alpha : nullptr));
    if (!bitmap)
        return;
    if (source && *source)
        TakeFromSource(bitmap.get(), code, source, picture, report);
    if (extras && !extras->exif.empty())
        SetExif(bitmap.get(), extras->exif);

    const bool passing = extras && extras->passing;
    const int flags = SaveFlags(code, passing);
    WriteFile(bitmap.get(), target, code, flags, !passing, report);
    // Some encoders refuse profiles that are damaged; the picture is worth more than its profile.
    if (report->problem != SaveProblem::EncoderFailed ||
        !FreeImage_GetICCProfile(bitmap.get())->data)
        return;
    FreeImage_DestroyICCProfile(bitmap.get());
    report->profileDropped = true;
    WriteFile(bitmap.get(), target, code, flags, !passing, report);
}

bool SavePicturePair(const SBxPicBuf& picture, const SBxPicBuf& alpha, const char* target,
                     const char* source, int format, SaveReport* report, const SaveExtras* extras)
{
    InitImageLibrary();
    SaveReport unread;
    if (!report)
        report = &unread;
    *report = SaveReport();
    const auto save = [&]
    {
        SavePair(picture, alpha, target, source, format, report, extras);
        return false;
    };
    if (FailsOrLacksMemory(save))
    {
        report->written = false;
        report->problem = SaveProblem::OutOfMemory;
    }
    return false;
}
