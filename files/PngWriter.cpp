#include "files/PngWriter.h"

#include "files/ByteSource.h"
#include "files/MetadataContainers.h"

#include <png.h>
#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <cstdio>
#include <cstring>

using Bytes = std::vector<uint8_t>;

bool ProfileIsSound(const Bytes& profile)
{
    const size_t kHeader = 128, kMark = 36;
    return profile.size() >= kHeader && NumberAt(profile.data(), 4, true) == profile.size() &&
           std::memcmp(&profile[kMark], "acsp", 4) == 0;
}

static void PutText(Bytes* bytes, const char* text, size_t size)
{
    bytes->insert(bytes->end(), text, text + size);
}

static bool PutPacked(Bytes* bytes, const Bytes& plain)
{
    uLongf size = compressBound(uLong(plain.size()));
    const size_t start = bytes->size();
    bytes->resize(start + size);
    if (compress(bytes->data() + start, &size, plain.data(), uLong(plain.size())) != Z_OK)
        return false;
    bytes->resize(start + size);
    return true;
}

namespace
{

// The chunks of metadata, made before the library starts.
struct PngChunks
{
    Bytes profile, exif, xmp, captions;
};

} // namespace

// The resource in hexadecimals, as widespread programs have it.
static Bytes CaptionsAsText(const Bytes& captions)
{
    const Bytes resource = CaptionsAsResource(captions);
    char digits[32];
    std::snprintf(digits, sizeof digits, "\niptc\n%8zu", resource.size());
    Bytes text(digits, digits + std::strlen(digits));
    const size_t kInRow = 36;
    for (size_t i = 0; i < resource.size(); ++i)
    {
        if (i % kInRow == 0)
            text.push_back('\n');
        std::snprintf(digits, sizeof digits, "%02x", resource[i]);
        PutText(&text, digits, 2);
    }
    text.push_back('\n');
    return text;
}

static PngChunks ChunksOf(const Metadata& metadata)
{
    PngChunks chunks;
    chunks.exif = metadata.exif;
    if (!metadata.profile.empty())
    {
        PutText(&chunks.profile, "icc\0\0", 5); // a name, and how it is packed
        if (!PutPacked(&chunks.profile, metadata.profile))
            chunks.profile.clear();
    }
    if (!metadata.xmp.empty())
    {
        PutText(&chunks.xmp, "XML:com.adobe.xmp\0\0\0\0\0", 22); // not packed, no language
        chunks.xmp.insert(chunks.xmp.end(), metadata.xmp.begin(), metadata.xmp.end());
    }
    if (!metadata.iptc.empty())
    {
        PutText(&chunks.captions, "Raw profile type iptc\0\0", 23);
        if (!PutPacked(&chunks.captions, CaptionsAsText(metadata.iptc)))
            chunks.captions.clear();
    }
    return chunks;
}

static void WriteBytes(png_structp png, png_bytep bytes, size_t count)
{
    WriteWatched(static_cast<WatchedFile*>(png_get_io_ptr(png)), bytes, count);
}

static void Flush(png_structp) {}

static void LeaveEncoder(png_structp png, png_const_charp)
{
    std::longjmp(*static_cast<jmp_buf*>(png_get_error_ptr(png)), 1);
}

static void SayNothing(png_structp, png_const_charp) {}

static void PutChunk(png_structp png, const char* type, const Bytes& chunk)
{
    if (!chunk.empty())
        png_write_chunk(png, reinterpret_cast<png_const_bytep>(type), chunk.data(), chunk.size());
}

static void PutHeader(png_structp png, png_infop info, const PictureToWrite& job,
                      const PngChunks& chunks)
{
    const SBxPicBuf& picture = *job.picture;
    const int colour = picture.components == 1 ? PNG_COLOR_TYPE_GRAY
                       : job.alpha             ? PNG_COLOR_TYPE_RGB_ALPHA
                                               : PNG_COLOR_TYPE_RGB;
    png_set_IHDR(png, info, png_uint_32(picture.width), png_uint_32(picture.height),
                 picture.bitsPerComponent, colour, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    const auto density = [](double dots)
    {
        const bool known = dots >= 1 && dots < 1e6;
        return png_uint_32(std::lround((known ? dots : kDefaultDotsPerInch) / kInchMetres));
    };
    png_set_pHYs(png, info, density(job.metadata->dotsPerInchX),
                 density(job.metadata->dotsPerInchY), PNG_RESOLUTION_METER);
    png_write_info_before_PLTE(png, info);
    PutChunk(png, "iCCP", chunks.profile);
    png_write_info(png, info);
    PutChunk(png, "eXIf", chunks.exif);
    PutChunk(png, "iTXt", chunks.xmp);
    PutChunk(png, "zTXt", chunks.captions);
}

// A row as PNG has it: red first, alpha beside the colours, high bytes first.
template <typename T>
static void FillRow(T* dst, const SBxPicBuf& picture, const SBxPicBuf* alpha, int y)
{
    const T* src = PicRow<T>(picture, y);
    const T* opacity = alpha ? PicRow<T>(*alpha, y) : nullptr;
    const auto put = [&dst](T sample)
    { PutNumber(reinterpret_cast<uint8_t*>(dst++), sample, int(sizeof(T)), true); };
    for (int x = 0; x < picture.width; ++x, src += picture.components)
    {
        for (int c = picture.components - 1; c >= 0; --c)
            put(src[c]);
        if (opacity)
            put(opacity[x]);
    }
}

static void FillAnyRow(Bytes* row, const PictureToWrite& job, int y)
{
    if (job.picture->bitsPerComponent == 16)
        FillRow(reinterpret_cast<uint16_t*>(row->data()), *job.picture, job.alpha, y);
    else
        FillRow(row->data(), *job.picture, job.alpha, y);
}

// Nothing with a destructor is made here while the library works, since it leaves by a long jump.
static bool Encode(WatchedFile* file, const PictureToWrite& job, const PngChunks& chunks,
                   Bytes* row)
{
    jmp_buf leave;
    png_structp png =
        png_create_write_struct(PNG_LIBPNG_VER_STRING, &leave, LeaveEncoder, SayNothing);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    if (!info || setjmp(leave))
    {
        png_destroy_write_struct(&png, &info);
        return false;
    }
    png_set_write_fn(png, file, WriteBytes, Flush);
    PutHeader(png, info, job, chunks);
    for (int y = 0; y < job.picture->height; ++y)
    {
        FillAnyRow(row, job, y);
        png_write_row(png, row->data());
    }
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return true;
}

bool WritePng(WatchedFile* file, const PictureToWrite& job)
{
    const PngChunks chunks = ChunksOf(*job.metadata);
    const size_t samples = size_t(job.picture->components) + (job.alpha ? 1 : 0);
    Bytes row(size_t(job.picture->width) * samples * size_t(job.picture->bitsPerComponent) / 8);
    return Encode(file, job, chunks, &row);
}
