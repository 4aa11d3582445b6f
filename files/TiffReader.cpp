#include "files/PictureDecoding.h"

#include "files/ColourProfiles.h"

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <memory>
#include <new>
#include <string>

#include <tiffio.h>

// The pages of a TIFF file come in many layouts; all of them end as rows of samples, which are then
// turned into the pair. The library reports damage as errors, but what its older codecs stumble
// over as warnings: while pixels are decoded both count.

namespace
{

struct TiffWork
{
    TIFF* tiff = nullptr;
    Decoding* decoding = nullptr;
    bool inPixels = false;
    bool lostEntry = false; // of the directory read last: it lies behind the end of the file
    std::string message;    // the first one
    uint32_t width = 0, height = 0;
    uint16_t bits = 1, samples = 1, photometric = 0, planar = PLANARCONFIG_CONTIG;
    uint16_t packing = COMPRESSION_NONE, format = SAMPLEFORMAT_UINT, extra = 0;
    bool hasExtra = false;  // and what the samples beyond the colours are, in `extra`
    bool readyMade = false; // the library makes colours of it by itself
    uint16_t *red = nullptr, *green = nullptr, *blue = nullptr; // of the palette
    bool greyPalette = false;
    int paletteShift = 8; // its numbers have 16 bits, except those of some old programs
    int colours = 1;      // samples of a pixel that are no alpha: 1, 3, or 4 inks
    std::unique_ptr<InkTransform> inks;
};

struct PackingName
{
    int number;
    const char* name;
    int64_t longest; // bytes that a byte can become, with room for cut files; 0 = no limit
};
// What both systems' libraries have. The others are refused.
const PackingName kPackings[] = {
    {COMPRESSION_NONE, "none", 10},         {COMPRESSION_CCITTRLE, "CCITT", 0},
    {COMPRESSION_CCITTFAX3, "CCITT", 0},    {COMPRESSION_CCITTFAX4, "CCITT", 0},
    {COMPRESSION_LZW, "LZW", 1500},         {COMPRESSION_OJPEG, "old JPEG", 0},
    {COMPRESSION_JPEG, "JPEG", 1600},       {COMPRESSION_CCITTRLEW, "CCITT", 0},
    {COMPRESSION_PACKBITS, "RLE", 64},      {COMPRESSION_ADOBE_DEFLATE, "deflate", 1032},
    {COMPRESSION_DEFLATE, "deflate", 1032}, {COMPRESSION_LZMA, "LZMA", 0},
    {COMPRESSION_ZSTD, "ZSTD", 0},          {COMPRESSION_WEBP, "WebP", 0},
    {COMPRESSION_LERC, "LERC", 0},
};

// Of a strip that is cut off the library would take nothing: if it is wanted, black follows.
tmsize_t ReadBytes(thandle_t handle, void* data, tmsize_t count)
{
    TiffWork* work = static_cast<TiffWork*>(handle);
    const size_t wanted = size_t(count), read = std::fread(data, 1, wanted, work->decoding->file);
    if (read == wanted || !work->inPixels || !work->decoding->options.acceptDamaged)
        return tmsize_t(read);
    std::memset(static_cast<uint8_t*>(data) + read, 0, wanted - read);
    work->message = "read error";
    return count;
}

tmsize_t WriteBytes(thandle_t, void*, tmsize_t)
{
    return 0;
}

toff_t SeekBytes(thandle_t handle, toff_t offset, int from)
{
    const Decoding& decoding = *static_cast<TiffWork*>(handle)->decoding;
    const int64_t base = from == SEEK_CUR   ? TellFile(decoding.file)
                         : from == SEEK_END ? decoding.fileBytes
                                            : 0;
    const int64_t target = base + int64_t(offset);
    return target >= 0 && SeekFile(decoding.file, target) ? toff_t(target) : toff_t(-1);
}

int CloseBytes(thandle_t)
{
    return 0;
}

toff_t SizeOfBytes(thandle_t handle)
{
    return toff_t(static_cast<TiffWork*>(handle)->decoding->fileBytes);
}

// Called inside of the library, which nothing may be thrown through.
[[gnu::format(printf, 2, 0)]] void KeepMessage(TiffWork* work, const char* format, va_list values)
{
    char text[300];
    std::vsnprintf(text, sizeof text, format, values);
    try
    {
        if (work->message.empty())
            work->message = text;
    }
    catch (const std::bad_alloc&)
    {
        work->message = "memory"; // short enough to need none
    }
}

[[gnu::format(printf, 4, 0)]] int OnError(TIFF*, void* work, const char*, const char* format,
                                          va_list values)
{
    KeepMessage(static_cast<TiffWork*>(work), format, values);
    return 1; // nobody else need know
}

[[gnu::format(printf, 4, 0)]] int OnWarning(TIFF*, void* user, const char*, const char* format,
                                            va_list values)
{
    TiffWork* work = static_cast<TiffWork*>(user);
    work->lostEntry = work->lostEntry || (!work->inPixels && std::strstr(format, "IO error"));
    // Packed the way of a quarter of a century ago, and none the worse for it.
    if (work->inPixels && !std::strstr(format, "Old-style"))
        KeepMessage(work, format, values);
    return 1;
}

TIFF* Open(TiffWork* work)
{
    TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
    if (!options)
        return nullptr;
    TIFFOpenOptionsSetErrorHandlerExtR(options, OnError, work);
    TIFFOpenOptionsSetWarningHandlerExtR(options, OnWarning, work);
    // "m": no mapping into memory, "O": directories on demand.
    TIFF* tiff = TIFFClientOpenExt("picture", "rm", work, ReadBytes, WriteBytes, SeekBytes,
                                   CloseBytes, SizeOfBytes, nullptr, nullptr, options);
    TIFFOpenOptionsFree(options);
    return tiff;
}

// How much of the strips' or tiles' bytes is in the file.
double ShareInFile(const TiffWork& work)
{
    double all = 0.0, there = 0.0;
    const uint32_t strips = TIFFNumberOfStrips(work.tiff); // tiles as well
    for (uint32_t i = 0; i < strips; ++i)
    {
        const double bytes = double(TIFFGetStrileByteCount(work.tiff, i));
        const double start = double(TIFFGetStrileOffset(work.tiff, i));
        all += bytes;
        there += std::clamp(double(work.decoding->fileBytes) - start, 0.0, bytes);
    }
    return all > 0.0 ? there / all : 0.0;
}

// A piece that reaches behind the end of the file is cut off; every other one is broken.
bool IsCut(const TiffWork& work)
{
    for (const char* words : {"ead error", "eek error", "annot read", "an not read"})
        if (work.message.find(words) != std::string::npos)
            return true;
    return false;
}

void NoteTiffDamage(TiffWork* work, double rows)
{
    const bool cut = work->message.empty() || IsCut(*work);
    const double share = !work->inPixels ? 0.0
                         : cut           ? std::min(ShareInFile(*work), 0.99)
                                         : rows / work->height;
    NoteDamage(work->decoding, cut ? EndText(share) : work->message, share);
}

// The number of the largest page that is a picture of its own. False when the chain of pages
// breaks: what is missing may be the largest.
bool FindLargestPage(TiffWork* work, int* best, int* pages)
{
    const int kMostPages = 10000;
    int64_t most = -1;
    for (;; ++*pages)
    {
        uint32_t kind = 0, width = 0, height = 0;
        TIFFGetFieldDefaulted(work->tiff, TIFFTAG_SUBFILETYPE, &kind);
        TIFFGetField(work->tiff, TIFFTAG_IMAGEWIDTH, &width);
        TIFFGetField(work->tiff, TIFFTAG_IMAGELENGTH, &height);
        const bool whole = (kind & (FILETYPE_REDUCEDIMAGE | FILETYPE_MASK)) == 0;
        const int64_t pixels = whole ? int64_t(width) * height : 0;
        if (pixels > most)
        {
            *best = *pages;
            most = pixels;
        }
        if (TIFFLastDirectory(work->tiff) != 0)
            return true;
        if (*pages == kMostPages || TIFFReadDirectory(work->tiff) == 0)
            return false;
    }
}

bool GoToPage(TiffWork* work)
{
    int best = 0, pages = 0;
    if (!FindLargestPage(work, &best, &pages))
        NoteDamage(work->decoding, "the file's list of pages is broken", 0.0);
    work->message.clear();
    work->lostEntry = false;
    if (pages > 0)
        work->decoding->report.notes.push_back("the file has " + std::to_string(pages + 1) +
                                               " pages; page " + std::to_string(best + 1) +
                                               ", the largest, was read");
    return TIFFSetDirectory(work->tiff, tdir_t(best)) != 0;
}

bool RefuseKind(TiffWork* work, const std::string& what)
{
    return Refuse(work->decoding, LoadProblem::KindNotSupported, "TIFF with " + what);
}

const PackingName* FindPacking(int number)
{
    for (const PackingName& row : kPackings)
        if (row.number == number && TIFFIsCODECConfigured(uint16_t(number)) != 0)
            return &row;
    return nullptr;
}

void ReadFields(TiffWork* work)
{
    TIFF* tiff = work->tiff;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &work->width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &work->height);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &work->bits);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &work->samples);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &work->planar);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &work->packing);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &work->format);
    if (TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &work->photometric) == 0)
        work->photometric = work->samples >= 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK;
    uint16_t extras = 0, *kinds = nullptr;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_EXTRASAMPLES, &extras, &kinds);
    work->extra = extras > 0 && kinds ? kinds[0] : 0;
}

bool FindPalette(TiffWork* work)
{
    work->message = "no palette";
    if (work->bits > 8 ||
        TIFFGetField(work->tiff, TIFFTAG_COLORMAP, &work->red, &work->green, &work->blue) == 0)
        return false;
    work->message.clear();
    const size_t count = size_t(1) << work->bits;
    const auto isSmall = [](uint16_t number) { return number < 256; };
    if (std::all_of(work->red, work->red + count, isSmall) &&
        std::all_of(work->green, work->green + count, isSmall) &&
        std::all_of(work->blue, work->blue + count, isSmall))
        work->paletteShift = 0;
    work->greyPalette = std::equal(work->red, work->red + count, work->green) &&
                        std::equal(work->red, work->red + count, work->blue);
    return true;
}

// Which of the pixel's samples are colours. False when nothing of ours can be made of them.
bool FindColours(TiffWork* work)
{
    switch (work->photometric)
    {
    case PHOTOMETRIC_MINISWHITE:
    case PHOTOMETRIC_MINISBLACK:
    case PHOTOMETRIC_CFA: work->colours = 1; break;
    case PHOTOMETRIC_PALETTE:
        work->colours = 1;
        if (!FindPalette(work))
            return RefuseKind(work, "a palette that is missing or has 16 bits");
        break;
    case PHOTOMETRIC_RGB: work->colours = 3; break;
    case PHOTOMETRIC_SEPARATED: work->colours = 4; break;
    case PHOTOMETRIC_YCBCR: work->colours = 3; break;
    default: return RefuseKind(work, "colours of kind " + std::to_string(work->photometric));
    }
    if (work->samples < work->colours)
        return RefuseKind(work, std::to_string(work->samples) + " samples a pixel");
    work->hasExtra = work->samples > work->colours;
    return true;
}

bool CheckKind(TiffWork* work)
{
    if (!FindPacking(work->packing))
        return RefuseKind(work, "compression " + std::to_string(work->packing));
    if (work->format != SAMPLEFORMAT_UINT && work->format != SAMPLEFORMAT_VOID)
        return RefuseKind(work, work->format == SAMPLEFORMAT_INT ? "signed samples"
                                                                 : "floating-point samples");
    if (!FindColours(work))
        return false;
    const bool few = work->bits == 1 || work->bits == 2 || work->bits == 4;
    if (work->bits != 8 && work->bits != 16 && !(few && work->samples == 1))
        return RefuseKind(work, std::to_string(work->bits) + " bits a sample");
    if (work->photometric != PHOTOMETRIC_YCBCR)
        return true;
    if (work->bits != 8)
        return RefuseKind(work, "YCbCr of 16 bits");
    // The JPEG codec turns its own colours into red, green, blue.
    if (work->packing == COMPRESSION_JPEG && work->planar == PLANARCONFIG_CONTIG)
        TIFFSetField(work->tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    else
        work->readyMade = true;
    return true;
}

PictureClaim ClaimOf(const TiffWork& work)
{
    PictureClaim claim;
    claim.width = work.width;
    claim.height = work.height;
    claim.bits = work.bits == 16 ? 16 : 8;
    claim.alpha = work.hasExtra && !work.readyMade;
    const bool grey = work.colours == 1 && !claim.alpha &&
                      (work.photometric != PHOTOMETRIC_PALETTE || work.greyPalette);
    claim.components = grey ? 1 : 3;
    const int64_t longest = FindPacking(work.packing)->longest;
    const int64_t bits = int64_t(work.bits) * (work.readyMade ? 1 : work.samples);
    const int64_t bytes = (claim.width * bits + 7) / 8;
    if (longest > 0 && claim.width > 0)
        claim.leastFileBytes =
            claim.height < INT64_MAX / (bytes + 1) ? bytes * claim.height / longest : INT64_MAX;
    claim.decoderBytes = work.readyMade ? PixelsClaimed(claim) * 4 : 0;
    return claim;
}

// One sample of a packed row, as 8 or 16 bits.
unsigned SampleAt(const TiffWork& work, const uint8_t* row, size_t index)
{
    if (work.bits == 16)
        return reinterpret_cast<const uint16_t*>(row)[index];
    if (work.bits == 8)
        return row[index];
    const size_t bit = index * work.bits;
    return unsigned(row[bit / 8] >> (8 - work.bits - bit % 8)) & ((1u << work.bits) - 1);
}

// Colours that were multiplied by their alpha, as they were before.
unsigned Undone(unsigned sample, unsigned alpha, unsigned top)
{
    return alpha == 0 ? 0 : std::min((sample * top + alpha / 2) / alpha, top);
}

// Grey or palette to the picture: one sample a pixel, `step` samples to the next.
template <typename T>
void TakeGreys(const TiffWork& work, T* to, const uint8_t* row, int components)
{
    const unsigned most = (1u << work.bits) - 1;
    const unsigned top = T(~T(0)), scale = top / most;
    const unsigned flip = work.photometric == PHOTOMETRIC_MINISWHITE ? top : 0;
    for (uint32_t x = 0; x < work.width; ++x, to += components)
    {
        const unsigned sample = SampleAt(work, row, size_t(x) * work.samples);
        if (work.photometric != PHOTOMETRIC_PALETTE)
        {
            std::fill_n(to, components, T((sample * scale) ^ flip));
            continue;
        }
        to[0] = T(work.blue[sample] >> work.paletteShift);
        if (components == 3)
        {
            to[1] = T(work.green[sample] >> work.paletteShift);
            to[2] = T(work.red[sample] >> work.paletteShift);
        }
    }
}

template <typename T>
void TakeRow(const TiffWork& work, const uint8_t* row, int y)
{
    const Picture& picture = work.decoding->picture;
    const Picture& alpha = work.decoding->alpha;
    T* to = PicRow<T>(picture, y);
    const T* from = reinterpret_cast<const T*>(row);
    if (work.colours == 1)
        TakeGreys(work, to, row, picture->components);
    else if (work.colours == 4)
        for (uint32_t x = 0; x < work.width; ++x)
            work.inks->ToColours(to + 3 * x, from + size_t(x) * work.samples, 1);
    else
        for (uint32_t x = 0; x < work.width; ++x)
            for (size_t c = 0; c < 3; ++c)
                to[3 * x + c] = from[size_t(x) * work.samples + 2 - c];
    if (alpha.Empty())
        return;
    T* plane = PicRow<T>(alpha, y);
    for (uint32_t x = 0; x < work.width; ++x)
        plane[x] = from[size_t(x) * work.samples + size_t(work.colours)];
    if (work.extra == EXTRASAMPLE_ASSOCALPHA)
        for (size_t i = 0; i < size_t(3) * work.width; ++i)
            to[i] = T(Undone(to[i], plane[i / 3], T(~T(0))));
}

void Take(const TiffWork& work, const uint8_t* row, uint32_t y)
{
    if (work.bits == 16)
        TakeRow<uint16_t>(work, row, int(y));
    else
        TakeRow<uint8_t>(work, row, int(y));
}

bool GoesOn(TiffWork* work, bool done, double rows)
{
    if (!done || !work->message.empty())
        NoteTiffDamage(work, rows);
    work->message.clear();
    return work->decoding->damage.empty() || work->decoding->options.acceptDamaged;
}

// Samples of one plane to their places between those of the others.
void Spread(const TiffWork& work, uint8_t* row, const uint8_t* plane, size_t count, unsigned sample)
{
    const size_t bytes = work.bits / 8;
    for (size_t x = 0; x < count; ++x)
        std::memcpy(row + (x * work.samples + sample) * bytes, plane + x * bytes, bytes);
}

// Rows of strips, in one plane or in one for each sample.
void ReadStrips(TiffWork* work)
{
    const bool apart = work->planar == PLANARCONFIG_SEPARATE && work->samples > 1;
    const size_t lineBytes = size_t(std::max<tmsize_t>(TIFFScanlineSize(work->tiff), 1));
    const size_t rowBytes = (size_t(work->width) * work->bits * work->samples + 7) / 8;
    uint32_t stripRows = 0;
    TIFFGetFieldDefaulted(work->tiff, TIFFTAG_ROWSPERSTRIP, &stripRows);
    stripRows = std::clamp<uint32_t>(stripRows, 1, work->height);
    // Planes stand behind each other, so that all of them are there only at the end.
    std::vector<uint8_t> line(std::max(lineBytes, rowBytes)),
        rows(apart ? rowBytes * work->height : 0);
    for (unsigned plane = 0; plane < (apart ? work->samples : 1u); ++plane)
        for (uint32_t y = 0; y < work->height; ++y)
        {
            const bool done = TIFFReadScanline(work->tiff, line.data(), y, uint16_t(plane)) == 1;
            const double share = apart ? (double(plane) * work->height + y) / work->samples : y;
            if (!GoesOn(work, done, share))
                return;
            if (!done) // the next strip may be whole
                y += stripRows - 1 - y % stripRows;
            else if (apart)
                Spread(*work, rows.data() + y * rowBytes, line.data(), work->width, plane);
            else
                Take(*work, line.data(), y);
        }
    for (uint32_t y = 0; apart && y < work->height; ++y)
        Take(*work, rows.data() + y * rowBytes, y);
}

// One row of tiles, as rows of the whole width.
struct TileRow
{
    uint32_t tileWidth = 0, tileHeight = 0;
    size_t tileBytes = 0, rowBytes = 0;
    std::vector<uint8_t> tile, rows;
};

bool ReadTile(TiffWork* work, TileRow* tiles, uint32_t x, uint32_t y, unsigned plane)
{
    const bool apart = work->planar == PLANARCONFIG_SEPARATE && work->samples > 1;
    const ttile_t number = TIFFComputeTile(work->tiff, x, y, 0, uint16_t(plane));
    const tmsize_t read =
        TIFFReadEncodedTile(work->tiff, number, tiles->tile.data(), tmsize_t(tiles->tileBytes));
    if (read != tmsize_t(tiles->tileBytes))
        return false;
    const size_t samples = apart ? 1 : work->samples;
    const size_t lineBytes = (size_t(tiles->tileWidth) * work->bits * samples + 7) / 8;
    const uint32_t width = std::min(tiles->tileWidth, work->width - x);
    const uint32_t height = std::min(tiles->tileHeight, work->height - y);
    for (uint32_t row = 0; row < height; ++row)
    {
        uint8_t* to = tiles->rows.data() + row * tiles->rowBytes +
                      size_t(x) * work->bits * work->samples / 8; // tiles begin at whole bytes
        const uint8_t* from = tiles->tile.data() + row * lineBytes;
        if (apart)
            Spread(*work, to, from, width, plane);
        else
            std::memcpy(to, from, (size_t(width) * work->bits * samples + 7) / 8);
    }
    return true;
}

void ReadTiles(TiffWork* work)
{
    TileRow tiles;
    TIFFGetField(work->tiff, TIFFTAG_TILEWIDTH, &tiles.tileWidth);
    TIFFGetField(work->tiff, TIFFTAG_TILELENGTH, &tiles.tileHeight);
    tiles.tileBytes = size_t(std::max<tmsize_t>(TIFFTileSize(work->tiff), 0));
    tiles.rowBytes = (size_t(work->width) * work->bits * work->samples + 7) / 8;
    // A tile may be larger than the picture, but not by so much that it means nothing.
    const int64_t kSpare = 64 << 20;
    if (tiles.tileBytes == 0 || tiles.tileWidth % 8 != 0 ||
        int64_t(tiles.tileBytes) > int64_t(4) * work->decoding->picture->size + kSpare)
    {
        NoteDamage(work->decoding, "the tiles have no sensible size", 0.0);
        return;
    }
    tiles.tile.resize(tiles.tileBytes);
    tiles.rows.resize(tiles.rowBytes * std::min(tiles.tileHeight, work->height));
    const bool apart = work->planar == PLANARCONFIG_SEPARATE && work->samples > 1;
    for (uint32_t y = 0; y < work->height; y += std::min(tiles.tileHeight, work->height - y))
    {
        std::fill(tiles.rows.begin(), tiles.rows.end(), uint8_t(0));
        for (uint32_t x = 0; x < work->width; x += std::min(tiles.tileWidth, work->width - x))
            for (unsigned plane = 0; plane < (apart ? work->samples : 1u); ++plane)
                if (!GoesOn(work, ReadTile(work, &tiles, x, y, plane), y))
                    return;
        for (uint32_t row = 0; row < std::min(tiles.tileHeight, work->height - y); ++row)
            Take(*work, tiles.rows.data() + row * tiles.rowBytes, y + row);
    }
}

// Layouts that only the library knows: four bytes a pixel, red in the lowest.
void ReadReadyMade(TiffWork* work)
{
    const Picture& picture = work->decoding->picture;
    std::vector<uint32_t> pixels(size_t(work->width) * work->height);
    const bool done = TIFFReadRGBAImageOriented(work->tiff, work->width, work->height,
                                                pixels.data(), ORIENTATION_TOPLEFT, 1) == 1;
    if (!GoesOn(work, done, 0))
        return;
    for (int y = 0; y < picture->height; ++y)
        for (int x = 0; x < picture->width; ++x)
        {
            const uint32_t pixel = pixels[size_t(y) * work->width + size_t(x)];
            uint8_t* to = PicRow<uint8_t>(picture, y) + 3 * x;
            to[0] = uint8_t(TIFFGetB(pixel));
            to[1] = uint8_t(TIFFGetG(pixel));
            to[2] = uint8_t(TIFFGetR(pixel));
        }
}

void MakeInks(TiffWork* work)
{
    uint32_t length = 0;
    void* data = nullptr;
    std::vector<uint8_t> profile;
    if (TIFFGetField(work->tiff, TIFFTAG_ICCPROFILE, &length, &data) != 0 && data)
        profile.assign(static_cast<uint8_t*>(data), static_cast<uint8_t*>(data) + length);
    work->inks = std::make_unique<InkTransform>(profile, work->bits, false);
    work->decoding->report.notes.push_back(work->inks->Note());
}

void ReadWith(TiffWork* work)
{
    Decoding* decoding = work->decoding;
    if (!GoToPage(work))
        return NoteTiffDamage(work, 0);
    ReadFields(work);
    if (!CheckKind(work) || !MakePicture(decoding, ClaimOf(*work)))
        return;
    if (work->lostEntry)
        NoteDamage(decoding, EndText(1.0), 1.0);
    uint16_t orientation = 1;
    TIFFGetFieldDefaulted(work->tiff, TIFFTAG_ORIENTATION, &orientation);
    decoding->orientation = orientation;
    TIFFSetField(work->tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT); // or the library turns, too
    if (work->colours == 4)
        MakeInks(work);
    if (decoding->options.acceptDamaged)
    {
        CBxPicBufAPI::SetConst(decoding->picture.Record(), 0);
        if (!decoding->alpha.Empty())
            CBxPicBufAPI::SetConst(decoding->alpha.Record(), 0);
    }
    work->message.clear();
    work->inPixels = true;
    if (work->readyMade)
        ReadReadyMade(work);
    else if (TIFFIsTiled(work->tiff) != 0)
        ReadTiles(work);
    else
        ReadStrips(work);
}

} // namespace

void ReadTiff(Decoding* decoding)
{
    TiffWork work;
    work.decoding = decoding;
    std::rewind(decoding->file);
    work.tiff = Open(&work);
    if (!work.tiff)
        return NoteTiffDamage(&work, 0);
    const std::unique_ptr<TIFF, void (*)(TIFF*)> owned(work.tiff, TIFFClose); // short memory throws
    ReadWith(&work);
}
