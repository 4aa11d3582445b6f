#include "files/ImageReader.h"

#include "base/SystemFiles.h"
#include "files/SimpleFormats.h"

#include <algorithm>
#include <cerrno>

// Files are opened here and handed to FreeImage as streams: on Windows it takes wide names, on
// other systems narrow ones only, and a stream shows every short write, which FreeImage does not
// report (most of its encoders call a file on a full disk a success).

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

FreeImageIO StreamFunctions()
{
    return {ReadStream, WriteStream, SeekStream, TellStream};
}

FREE_IMAGE_FORMAT CodeFromFileName(const char* name)
{
    const FormatRow* row = FindFormat(FormatFromFileName(name));
    return row ? FREE_IMAGE_FORMAT(*row->codes.begin()) : FIF_UNKNOWN;
}

// Camera raw files mostly look like TIFF files: their names have to say so, too.
static bool IsRaw(FILE* file, const char* name)
{
    const FormatRow& raw = kFormats[kFormatRaw];
    return (HasEnding(name, raw.endings) || HasEnding(name, raw.furtherEndings)) &&
           LooksLikeRaw(file);
}

LoadProblem FindReadableFormat(FREE_IMAGE_FORMAT* format, ImageStream* stream, const char* name)
{
    FreeImageIO io = StreamFunctions();
    const bool raw = IsRaw(stream->file, name);
    std::rewind(stream->file);
    *format = raw ? FIF_RAW : FreeImage_GetFileTypeFromHandle(&io, stream, 0);
    if (*format == FIF_UNKNOWN)
        *format = CodeFromFileName(name);
    const FormatRow* row = FormatOfCode(*format);
    if (!row)
        return LoadProblem::UnknownFormat;
    return row->read ? LoadProblem::None : LoadProblem::NotReadable;
}

static std::vector<MaskedByte> MaskedBytes(FREE_IMAGE_FORMAT format, FILE* file)
{
    const FormatRow* row = FormatOfCode(format);
    return row && row->masked ? row->masked(file) : std::vector<MaskedByte>();
}

BitmapOwner Decode(FREE_IMAGE_FORMAT format, ImageStream* stream, int flags)
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

LoadProblem ProblemOf(BitmapFit fit)
{
    switch (fit)
    {
    case BitmapFit::Fits: return LoadProblem::None;
    case BitmapFit::TooLarge: return LoadProblem::TooLarge;
    case BitmapFit::KindNotSupported: break;
    }
    return LoadProblem::KindNotSupported;
}

// Portable maps are not packed. FreeImage asks for each of their samples in turn, without noticing
// the end of the file: a few bytes could keep it busy for minutes.
static bool HasItsPixels(ImageStream* stream, FIBITMAP* header)
{
    const int64_t bytes = int64_t(FreeImage_GetWidth(header)) * FreeImage_GetHeight(header) *
                          FreeImage_GetBPP(header) / 8;
    return std::fseek(stream->file, 0, SEEK_END) == 0 && bytes <= std::ftell(stream->file);
}

LoadProblem CheckHeader(FREE_IMAGE_FORMAT format, ImageStream* stream)
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
        return LoadProblem::Damaged;
    if (!FreeImage_FIFSupportsNoPixels(format))
        return LoadProblem::None;
    const BitmapOwner header = Decode(format, stream, FIF_LOAD_NOPIXELS);
    if (!header)
        return LoadProblem::Damaged;
    const LoadProblem problem = ProblemOf(FitOfBitmap(header.get()));
    if (problem != LoadProblem::None)
        return problem;
    const FormatRow* row = FormatOfCode(format);
    const bool portableMap = row && row->id == kFormatPnm;
    const bool empty = portableMap && !HasItsPixels(stream, header.get());
    return empty ? LoadProblem::Damaged : LoadProblem::None;
}

BitmapOwner LoadWhole(FREE_IMAGE_FORMAT format, ImageStream* stream, LoadProblem* problem)
{
    *problem = CheckHeader(format, stream);
    if (*problem != LoadProblem::None)
        return nullptr;
    BitmapOwner bitmap = Decode(format, stream, format == FIF_JPEG ? JPEG_ACCURATE : 0);
    if (!bitmap)
        *problem = LoadProblem::Damaged;
    return bitmap;
}

LoadProblem OpenPicture(const char* path, FileOwner* file, ImageStream* stream,
                        FREE_IMAGE_FORMAT* format)
{
    file->reset(OpenUtf8Path(path));
    if (!*file)
        return errno == ENOENT || errno == ENOTDIR ? LoadProblem::NoSuchFile
                                                   : LoadProblem::CannotOpen;
    stream->file = file->get();
    return FindReadableFormat(format, stream, path);
}

struct SimpleFormat
{
    FormatId id;
    SimpleClaim (*find)(FILE* file);
    void (*check)(Decoding* decoding);
};
static const SimpleFormat kSimpleFormats[] = {
    {kFormatBmp, FindBmpClaim, CheckBmpPixels},
    {kFormatGif, FindGifClaim, CheckGifPixels},
    {kFormatPnm, FindPnmClaim, CheckPnmPixels},
};

// False when there is no use in decoding the file.
static bool CheckSimpleFile(Decoding* decoding, FREE_IMAGE_FORMAT format)
{
    const FormatRow* row = FormatOfCode(format);
    for (const SimpleFormat& simple : kSimpleFormats)
    {
        if (!row || row->id != simple.id)
            continue;
        const SimpleClaim found = simple.find(decoding->file);
        if (!found.known)
            NoteDamage(decoding,
                       std::feof(decoding->file) ? EndText(0.0) : "the file has no valid header",
                       0.0);
        else if (!CheckClaim(decoding, found.claim))
            return false;
        else if (!decoding->headerOnly)
            simple.check(decoding);
    }
    return !decoding->headerOnly && (decoding->damage.empty() || decoding->options.acceptDamaged);
}

// Palettes, packed colours and pixels of less than a byte become the greys or colours that they
// show. Null when memory is short.
static BitmapOwner WithoutPalette(BitmapOwner bitmap, bool* grey)
{
    *grey = false;
    if (FreeImage_GetImageType(bitmap.get()) != FIT_BITMAP || FreeImage_GetBPP(bitmap.get()) > 16 ||
        FitOfBitmap(bitmap.get()) == BitmapFit::Fits)
        return bitmap;
    const RGBQUAD* palette = FreeImage_GetPalette(bitmap.get());
    *grey = palette && std::all_of(palette, palette + FreeImage_GetColorsUsed(bitmap.get()),
                                   [](const RGBQUAD& colour) {
                                       return colour.rgbRed == colour.rgbGreen &&
                                              colour.rgbRed == colour.rgbBlue;
                                   });
    return BitmapOwner(FreeImage_ConvertTo24Bits(bitmap.get()));
}

// What FreeImage knows how to read, as a pair.
static LoadProblem TakeBitmap(Decoding* decoding, BitmapOwner bitmap)
{
    bool grey = false;
    bitmap = WithoutPalette(std::move(bitmap), &grey);
    Picture colours;
    SBxPicBuf* target = grey ? colours.Record() : decoding->picture.Record();
    if (!bitmap || PictureFromBitmap(bitmap.get(), target, decoding->alpha.Record()))
    {
        const LoadProblem problem =
            bitmap ? ProblemOf(FitOfBitmap(bitmap.get())) : LoadProblem::OutOfMemory;
        return problem == LoadProblem::None ? LoadProblem::OutOfMemory : problem;
    }
    if (!grey)
        return LoadProblem::None;
    decoding->picture = Picture(colours->width, colours->height, 1, 8);
    const bool done = !decoding->picture.Empty() &&
                      CBxPicBufAPI::ExtractComponent(decoding->picture.Record(), 0, colours);
    return done ? LoadProblem::None : LoadProblem::OutOfMemory;
}

static void ReadBitmap(Decoding* decoding, FREE_IMAGE_FORMAT format, ImageStream* stream)
{
    if (!CheckSimpleFile(decoding, format))
        return;
    BitmapOwner bitmap = Decode(format, stream, 0);
    if (bitmap)
        Refuse(decoding, TakeBitmap(decoding, std::move(bitmap)));
    else
        NoteDamage(decoding, "nothing of it can be read", 0.0);
}

void ReadPicture(Decoding* decoding, FREE_IMAGE_FORMAT format, ImageStream* stream)
{
    switch (format)
    {
    case FIF_JPEG: ReadJpeg(decoding); break;
    case FIF_PNG: ReadPng(decoding); break;
    case FIF_TIFF: ReadTiff(decoding); break;
    case FIF_WEBP: ReadWebp(decoding); break;
    default: ReadBitmap(decoding, format, stream); break;
    }
}
