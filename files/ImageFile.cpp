#include "files/ImageFile.h"

#include "base/ShortMemory.h"
#include "base/SystemFiles.h"
#include "files/ImageReader.h"
#include "files/JpegWriter.h"
#include "files/MetadataContainers.h"
#include "files/PngWriter.h"
#include "files/TiffWriter.h"
#include "files/WebpWriter.h"
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

// What the source of a save knows; the header of its file has to be that of a picture.
static Metadata SourceMetadata(const char* path, SaveReport* report)
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
    if (!file || CheckHeader(format, &stream) != LoadProblem::None)
    {
        report->problem = SaveProblem::SourceUnreadable;
        throw ImageReadError();
    }
    return ReadMetadata(file.get());
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

// The formats that the codec library still writes. They hold no metadata.
static bool WriteBitmap(WatchedFile* file, const PictureToWrite& job, FREE_IMAGE_FORMAT format)
{
    const BitmapOwner bitmap(BitmapFromPicture(*job.picture, job.alpha));
    if (!bitmap)
        return false;
    const auto perMetre = [](double dots) { return unsigned(dots / kInchMetres + 0.5); };
    if (job.metadata->dotsPerInchX >= 1 && job.metadata->dotsPerInchX < 1e6)
    {
        FreeImage_SetDotsPerMeterX(bitmap.get(), perMetre(job.metadata->dotsPerInchX));
        FreeImage_SetDotsPerMeterY(bitmap.get(), perMetre(job.metadata->dotsPerInchY));
    }
    FreeImageIO io = StreamFunctions();
    ImageStream stream;
    stream.file = file->stream;
    const bool done = Encode(format, bitmap.get(), &io, &stream, 0) &&
                      HeaderMatches(&stream, format, bitmap.get());
    file->error = stream.error;
    return done;
}

static bool WriteAny(WatchedFile* file, const PictureToWrite& job, const FormatRow& format)
{
    switch (format.id)
    {
    case kFormatJpeg: return WriteJpeg(file, job);
    case kFormatPng: return WritePng(file, job);
    case kFormatTiff: return WriteTiff(file, job);
    case kFormatWebp: return WriteWebp(file, job);
    default: return WriteBitmap(file, job, FREE_IMAGE_FORMAT(*format.codes.begin()));
    }
}

static void WriteFile(const PictureToWrite& job, const FormatRow& format, const char* target,
                      const SaveExtras& extras, SaveReport* report)
{
    ReplacingFile file;
    if (!BeginReplacing(&file, target))
    {
        report->problem = SaveProblem::CannotCreate;
        report->systemError = file.error;
        return;
    }
    WatchedFile watched = {file.stream, 0};
    const auto encode = [&] { return FailedIf(!WriteAny(&watched, job, format)); };
    const bool failed = FailWithoutMemory(encode) != Outcome::Done;
    file.error = watched.error;
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
    static const SaveExtras kNone;
    const SaveExtras& more = extras ? *extras : kNone;
    Metadata known;
    if (more.metadata)
        known = *more.metadata;
    else if (source && *source)
        known = SourceMetadata(source, report);
    report->problem = SaveProblem::OutOfMemory;
    Metadata metadata = MetadataOfResult(known, picture, row, more.choice, &report->losses);
    const std::ptrdiff_t kLetters = 6; // that EXIF blocks of JPEG files begin with
    if (more.exif.size() > size_t(kLetters) && (row.carries & kCarriesExif))
        metadata.exif.assign(more.exif.begin() + kLetters, more.exif.end());

    PictureToWrite job;
    job.picture = &picture;
    job.alpha = withAlpha ? &alpha : nullptr;
    job.metadata = &metadata;
    job.quality = g_jpegQuality >= 1 ? std::min(g_jpegQuality, 100) : kDefaultJpegQuality;
    job.chroma = more.chroma;
    job.packed = !more.passing;
    WriteFile(job, row, target, more, report);
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
