#include "files/TiffWriter.h"

#include "files/ExifSource.h"
#include "files/TiffDirectory.h"

#include <tiffio.h>

#include <algorithm>
#include <cerrno>
#include <memory>

// The library writes the header of the file, strips behind what is there, and a directory of the
// picture. The block goes behind the header before the first strip. At the end a second directory,
// merged of the library's one and the block's first one, takes the place of both.

using Bytes = std::vector<uint8_t>;

// What the library does with its file.
static tmsize_t ReadFile(thandle_t handle, void* bytes, tmsize_t count)
{
    FILE* stream = static_cast<WatchedFile*>(handle)->stream;
    return tmsize_t(std::fread(bytes, 1, size_t(count), stream));
}

static tmsize_t WriteFile(thandle_t handle, void* bytes, tmsize_t count)
{
    WriteWatched(static_cast<WatchedFile*>(handle), bytes, size_t(count));
    return count;
}

// Seeking writes what is still in the stream's buffer, so it fails on full disks.
static bool SeekWatched(WatchedFile* file, int64_t at)
{
    errno = 0;
    const bool found = at >= 0 && SeekStreamTo(file->stream, at);
    if (!found && !file->error)
        file->error = errno ? errno : EIO;
    return found;
}

static int64_t WatchedLength(WatchedFile* file)
{
    errno = 0;
    const int64_t length = StreamLength(file->stream);
    if (length < 0 && !file->error)
        file->error = errno ? errno : EIO;
    return length;
}

static toff_t SeekFile(thandle_t handle, toff_t offset, int origin)
{
    WatchedFile* file = static_cast<WatchedFile*>(handle);
    if (origin == SEEK_END)
        return toff_t(WatchedLength(file));
    return origin == SEEK_SET && SeekWatched(file, int64_t(offset)) ? offset : toff_t(-1);
}

static toff_t FileSize(thandle_t handle)
{
    return toff_t(WatchedLength(static_cast<WatchedFile*>(handle)));
}

static int CloseFile(thandle_t)
{
    return 0; // whoever opened it does that
}

static void SetFields(TIFF* tiff, const PictureToWrite& job)
{
    const SBxPicBuf& picture = *job.picture;
    const bool colour = picture.components == 3;
    const auto samples = uint16_t(picture.components + (job.alpha ? 1 : 0));
    const uint16_t extra[] = {EXTRASAMPLE_UNASSALPHA};
    TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, 0);
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, uint32_t(picture.width));
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, uint32_t(picture.height));
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, samples);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, uint16_t(picture.bitsPerComponent));
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, colour ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_FILLORDER, FILLORDER_MSB2LSB);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, job.packed ? COMPRESSION_LZW : COMPRESSION_NONE);
    if (job.packed)
        TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    if (job.alpha)
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, extra);
    const auto density = [](double dots)
    { return float(dots >= 1 && dots < 1e6 ? dots : kDefaultDotsPerInch); };
    TIFFSetField(tiff, TIFFTAG_XRESOLUTION, density(job.metadata->dotsPerInchX));
    TIFFSetField(tiff, TIFFTAG_YRESOLUTION, density(job.metadata->dotsPerInchY));
    TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
}

// A row as TIFF has it: red first, alpha beside the colours.
template <typename T>
static void FillRow(T* dst, const SBxPicBuf& picture, const SBxPicBuf* alpha, int y)
{
    const T* src = PicRow<T>(picture, y);
    const T* opacity = alpha ? PicRow<T>(*alpha, y) : nullptr;
    for (int x = 0; x < picture.width; ++x, src += picture.components)
    {
        for (int c = picture.components - 1; c >= 0; --c)
            *dst++ = src[c];
        if (opacity)
            *dst++ = opacity[x];
    }
}

static bool WriteRows(TIFF* tiff, const PictureToWrite& job, Bytes& row)
{
    for (int y = 0; y < job.picture->height; ++y)
    {
        if (job.picture->bitsPerComponent == 16)
            FillRow(reinterpret_cast<uint16_t*>(row.data()), *job.picture, job.alpha, y);
        else
            FillRow(row.data(), *job.picture, job.alpha, y);
        if (TIFFWriteScanline(tiff, row.data(), uint32_t(y), 0) < 0)
            return false;
    }
    return TIFFWriteDirectory(tiff) != 0;
}

// Picture and block, with the picture's directory.
static bool WritePixels(WatchedFile* file, const PictureToWrite& job, bool bigEndian)
{
    const size_t samples = size_t(job.picture->components) + (job.alpha ? 1 : 0);
    Bytes row(size_t(job.picture->width) * samples * size_t(job.picture->bitsPerComponent) / 8);
    TIFF* tiff = TIFFClientOpen("", bigEndian ? "wb" : "wl", file, ReadFile, WriteFile, SeekFile,
                                CloseFile, FileSize, nullptr, nullptr);
    if (!tiff)
        return false;
    // What it has not written when it is closed, it has no reason to write any more.
    const std::unique_ptr<TIFF, void (*)(TIFF*)> owned(tiff, TIFFClose);
    const Bytes& block = job.metadata->exif;
    const size_t kHeader = 8;
    bool done = true;
    if (block.size() > kHeader)
    {
        done = SeekWatched(file, int64_t(kHeader));
        WriteWatched(file, block.data() + kHeader, block.size() - kHeader);
        if (block.size() % 2)
            WriteWatched(file, "", 1);
    }
    SetFields(tiff, job);
    return done && WriteRows(tiff, job, row);
}

// The fields of a directory in the file, with offsets as they are.
static bool AddFields(const TiffStructure& tiff, uint64_t at, bool fromBlock,
                      std::vector<NewTiffField>* fields)
{
    TiffDirectory directory;
    if (!ReadTiffDirectory(tiff, at, &directory))
        return false;
    for (const TiffField& field : directory.fields)
    {
        const bool resolution = field.tag == kTagXResolution || field.tag == kTagYResolution ||
                                field.tag == kTagResolutionUnit;
        const bool link = field.tag == kTagExifDirectory || field.tag == kTagGpsDirectory;
        if (!fromBlock || link || (IsAboutPhotograph(field.tag) && !resolution))
            SetTiffField(fields, SameTiffField(tiff, field));
    }
    return true;
}

static bool WriteMergedDirectory(WatchedFile* file, const Metadata& metadata)
{
    TiffStructure tiff = {ByteSource(file->stream)};
    TiffStructure block = {ByteSource(metadata.exif)};
    std::vector<NewTiffField> fields;
    if (!OpenTiff(tiff.source, &tiff) || !AddFields(tiff, tiff.first, false, &fields))
        return false;
    if (OpenTiff(block.source, &block) && !AddFields(block, block.first, true, &fields))
        return false;
    const auto add = [&](int tag, int type, const Bytes& bytes)
    {
        if (!bytes.empty())
            SetTiffField(&fields, TiffBytesField(tag, type, bytes));
    };
    add(kTagXmp, kTiffByte, metadata.xmp);
    add(kTagIptc, kTiffUndefined, metadata.iptc);
    add(kTagProfile, kTiffUndefined, metadata.profile);

    const int64_t end = WatchedLength(file);
    const int64_t at = end + end % 2;
    if (end < 0 || at > int64_t(UINT32_MAX) / 2)
        return false;
    if (end % 2)
        WriteWatched(file, "", 1);
    const Bytes bytes = TiffDirectoryBytes(fields, uint32_t(at), 0, tiff.bigEndian);
    WriteWatched(file, bytes.data(), bytes.size());
    Bytes place;
    AppendNumber(&place, uint64_t(at), 4, tiff.bigEndian);
    const bool found = SeekWatched(file, 4);
    WriteWatched(file, place.data(), place.size());
    return found;
}

bool WriteTiff(WatchedFile* file, const PictureToWrite& job)
{
    const Metadata& metadata = *job.metadata;
    const bool bigEndian = !metadata.exif.empty() && metadata.exif[0] == 'M';
    if (!WritePixels(file, job, bigEndian))
        return false;
    const bool more = !metadata.exif.empty() || !metadata.xmp.empty() || !metadata.iptc.empty() ||
                      !metadata.profile.empty();
    return !more || file->error || WriteMergedDirectory(file, metadata);
}
