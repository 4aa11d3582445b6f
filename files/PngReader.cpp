#include "files/PictureDecoding.h"

#include "files/FileHeaders.h"

#include <algorithm>
#include <cstring>
#include <string>

#include <png.h>

// Every piece of a PNG file has a checksum, so that what is read to the end mark without a
// complaint is whole. Palettes and samples of less than 8 bits become the greys or colours that
// they show.

namespace
{

struct PngWork
{
    png_structp png = nullptr;
    png_infop info = nullptr, behind = nullptr; // from before and after the pixels
    Decoding* decoding = nullptr;
    bool atEnd = false;      // the file has no more bytes
    bool hasProfile = false; // colours are told by more than a gamma number
    bool hasCodePoints = false;
    bool greyPalette = false;
    int passes = 1;
    int64_t rowsRead = 0; // of all passes
    std::string message;
};

void ReadBytes(png_structp png, png_bytep data, size_t length)
{
    PngWork* work = static_cast<PngWork*>(png_get_io_ptr(png));
    const size_t count = std::fread(data, 1, length, work->decoding->file);
    work->atEnd = count < length;
    // The library asks for thousands of bytes at once: what there is of them shows how far it goes.
    std::memset(data + count, 0, length - count);
    if (count == 0 && length > 0)
        png_error(png, "the file ends");
}

[[noreturn]] void OnError(png_structp png, png_const_charp message)
{
    static_cast<PngWork*>(png_get_error_ptr(png))->message = message;
    png_longjmp(png, 1);
}

void OnWarning(png_structp png, png_const_charp message)
{
    PngWork* work = static_cast<PngWork*>(png_get_error_ptr(png));
    if (std::strstr(message, "CRC"))
        NoteDamage(work->decoding, message, 0.0);
}

// These are looked at and not taken apart: a profile may unpack to any size.
int OnChunk(png_structp png, png_unknown_chunkp chunk)
{
    PngWork* work = static_cast<PngWork*>(png_get_user_chunk_ptr(png));
    if (std::memcmp(chunk->name, "iCCP", 4) == 0)
        work->hasProfile = true;
    if (std::memcmp(chunk->name, "cICP", 4) == 0)
        work->hasCodePoints = true;
    return 1;
}

void StartReading(PngWork* work)
{
    png_set_read_fn(work->png, work, ReadBytes);
    png_set_read_user_chunk_fn(work->png, work, OnChunk);
    static const png_byte kLookedAt[] = "iCCP\0cICP";
    png_set_keep_unknown_chunks(work->png, PNG_HANDLE_CHUNK_ALWAYS, kLookedAt, 2);
    png_set_user_limits(work->png, PNG_UINT_31_MAX, PNG_UINT_31_MAX); // MakePicture knows better
    // A piece beside the pixels that is lost may be what they mean, or what the camera said.
    const bool accept = work->decoding->options.acceptDamaged;
    png_set_crc_action(work->png, accept ? PNG_CRC_WARN_USE : PNG_CRC_ERROR_QUIT,
                       accept ? PNG_CRC_WARN_DISCARD : PNG_CRC_ERROR_QUIT);
    png_read_info(work->png, work->info);
}

bool HasGreyPalette(PngWork* work)
{
    png_colorp palette = nullptr;
    int count = 0;
    png_get_PLTE(work->png, work->info, &palette, &count);
    return std::all_of(palette, palette + count,
                       [](const png_color& colour)
                       { return colour.red == colour.green && colour.red == colour.blue; });
}

PictureClaim ClaimOf(PngWork* work)
{
    const int type = png_get_color_type(work->png, work->info);
    const int bits = png_get_bit_depth(work->png, work->info);
    work->greyPalette = type == PNG_COLOR_TYPE_PALETTE && HasGreyPalette(work);
    PictureClaim claim;
    claim.width = png_get_image_width(work->png, work->info);
    claim.height = png_get_image_height(work->png, work->info);
    claim.bits = std::max(bits, 8);
    claim.alpha =
        (type & PNG_COLOR_MASK_ALPHA) || png_get_valid(work->png, work->info, PNG_INFO_tRNS);
    const bool grey =
        type == PNG_COLOR_TYPE_PALETTE ? work->greyPalette : !(type & PNG_COLOR_MASK_COLOR);
    claim.components = grey && !claim.alpha ? 1 : 3;
    // Packed data are never longer than 1032 times their packed length.
    const int64_t rowBytes = (claim.width * bits * png_get_channels(work->png, work->info) + 7) / 8;
    claim.leastFileBytes = claim.height < INT64_MAX / std::max<int64_t>(rowBytes, 1)
                               ? rowBytes * claim.height / 1032
                               : INT64_MAX;
    // Passes of interlaced files fill whole rows of four samples again and again.
    claim.decoderBytes = png_get_interlace_type(work->png, work->info) == PNG_INTERLACE_NONE
                             ? 0
                             : claim.width * claim.height * (claim.alpha ? 4 : 3) * claim.bits / 8;
    return claim;
}

// A gamma number counts only where nothing better tells the colours.
void ApplyGamma(PngWork* work)
{
    const double kScreen = 2.2;
    double gamma = 0.0;
    if (work->hasCodePoints)
        work->decoding->report.notes.push_back(
            "the file tells its colours by code points (cICP), which were not applied");
    else if (!work->hasProfile && !png_get_valid(work->png, work->info, PNG_INFO_sRGB) &&
             png_get_gAMA(work->png, work->info, &gamma) != 0)
        png_set_gamma(work->png, kScreen, gamma);
}

void SetUpRows(PngWork* work, const PictureClaim& claim)
{
    const int type = png_get_color_type(work->png, work->info);
    ApplyGamma(work);
    png_set_expand(work->png);
    if (claim.components == 3 && !(type & PNG_COLOR_MASK_COLOR))
        png_set_gray_to_rgb(work->png);
    const uint16_t kOne = 1;
    if (claim.bits == 16 && *reinterpret_cast<const uint8_t*>(&kOne) == 1)
        png_set_swap(work->png);
    png_set_bgr(work->png);
    work->passes = png_set_interlace_handling(work->png);
    png_read_update_info(work->png, work->info);
}

// A row of the library's: colours and alpha together, or a grey palette as colours.
template <typename T>
void SplitRow(PngWork* work, const T* row, int y)
{
    const Picture& picture = work->decoding->picture;
    const Picture& alpha = work->decoding->alpha;
    const int step = alpha.Empty() ? 3 : 4;
    T* colours = PicRow<T>(picture, y);
    for (int x = 0; x < picture->width; ++x)
        for (int c = 0; c < picture->components; ++c)
            colours[picture->components * x + c] = row[step * x + c];
    if (alpha.Empty())
        return;
    T* plane = PicRow<T>(alpha, y);
    for (int x = 0; x < picture->width; ++x)
        plane[x] = row[4 * x + 3];
}

void TakeRow(PngWork* work, const uint8_t* row, int y)
{
    if (work->decoding->picture->bitsPerComponent == 8)
        SplitRow(work, row, y);
    else
        SplitRow(work, reinterpret_cast<const uint16_t*>(row), y);
}

bool RunHeader(PngWork* work)
{
    if (setjmp(png_jmpbuf(work->png)) != 0)
        return false;
    StartReading(work);
    return true;
}

// `rows` holds one row, or all of them for interlaced files; null where the picture's rows do.
bool RunPicture(PngWork* work, const PictureClaim& claim, uint8_t* rows, size_t rowBytes)
{
    if (setjmp(png_jmpbuf(work->png)) != 0)
        return false;
    for (int pass = 0; pass < work->passes; ++pass)
        for (int y = 0; y < int(claim.height); ++y, ++work->rowsRead)
        {
            const size_t place = work->passes == 1 ? 0 : size_t(y) * rowBytes;
            uint8_t* row = rows ? rows + place : PicRow<uint8_t>(work->decoding->picture, y);
            png_read_row(work->png, row, nullptr);
            if (rows && work->passes == 1)
                TakeRow(work, row, y);
        }
    png_read_end(work->png, work->behind);
    return true;
}

bool RunSetUp(PngWork* work, const PictureClaim& claim)
{
    if (setjmp(png_jmpbuf(work->png)) != 0)
        return false;
    SetUpRows(work, claim);
    return true;
}

// EXIF stands before or behind the pixels, as the camera's TIFF structure.
int OrientationOf(PngWork* work)
{
    for (png_infop info : {work->info, work->behind})
    {
        png_bytep block = nullptr;
        png_uint_32 length = 0;
        if (png_get_eXIf_1(work->png, info, &length, &block) != 0)
            return ExifOrientation(block, length);
    }
    for (png_infop info : {work->info, work->behind})
    {
        png_textp texts = nullptr;
        const int count = png_get_text(work->png, info, &texts, nullptr);
        for (int i = 0; i < count; ++i)
            if (std::strcmp(texts[i].key, "XML:com.adobe.xmp") == 0)
                return XmpOrientation(texts[i].text);
    }
    return 1;
}

void NotePngError(PngWork* work, double share)
{
    if (work->message.find("memory") != std::string::npos)
        Refuse(work->decoding, LoadProblem::OutOfMemory);
    else
        NoteDamage(work->decoding, work->atEnd ? EndText(share) : work->message, share);
}

void ReadRows(PngWork* work, const PictureClaim& claim)
{
    Decoding* decoding = work->decoding;
    const size_t rowBytes = png_get_rowbytes(work->png, work->info);
    const bool direct = !claim.alpha && int64_t(rowBytes) == decoding->picture->stride &&
                        (!work->greyPalette || claim.components == 3);
    std::vector<uint8_t> rows(direct ? 0
                                     : rowBytes * (work->passes == 1 ? 1 : size_t(claim.height)));
    if (decoding->options.acceptDamaged)
    {
        CBxPicBufAPI::SetConst(decoding->picture.Record(), 0);
        if (claim.alpha)
            CBxPicBufAPI::SetConst(decoding->alpha.Record(), 0);
    }
    if (!RunPicture(work, claim, direct ? nullptr : rows.data(), rowBytes))
        NotePngError(work, double(work->rowsRead) / double(claim.height * work->passes));
    if (!direct && work->passes > 1)
        for (int y = 0; y < int(claim.height); ++y)
            TakeRow(work, rows.data() + size_t(y) * rowBytes, y);
}

void ReadWith(PngWork* work)
{
    if (!RunHeader(work))
        return NotePngError(work, 0.0);
    const PictureClaim claim = ClaimOf(work);
    if (!MakePicture(work->decoding, claim))
        return;
    if (!RunSetUp(work, claim))
        return NotePngError(work, 0.0);
    ReadRows(work, claim);
    work->decoding->orientation = OrientationOf(work);
}

} // namespace

void ReadPng(Decoding* decoding)
{
    PngWork work;
    work.decoding = decoding;
    std::rewind(decoding->file);
    work.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &work, OnError, OnWarning);
    work.info = work.png ? png_create_info_struct(work.png) : nullptr;
    work.behind = work.info ? png_create_info_struct(work.png) : nullptr;
    if (work.behind)
        ReadWith(&work);
    else
        Refuse(decoding, LoadProblem::OutOfMemory);
    png_destroy_read_struct(&work.png, &work.info, &work.behind);
}
