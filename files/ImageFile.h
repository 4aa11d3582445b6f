#pragma once

#include "files/FileReplace.h"
#include "files/Formats.h"
#include "files/MetadataOfResult.h"
#include "files/PictureToWrite.h"
#include "picture/PicBuf.h"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

// Photographs in files. A picture travels with an optional alpha plane of its size and bits; a
// plane without data means none. Every routine may run on several threads at once.

// Both carry an empty message: the caller knows which file it was and says so in its own words.
class UnsupportedImageFormat : public std::runtime_error
{
public:
    UnsupportedImageFormat() : std::runtime_error("") {}
};
class ImageReadError : public std::runtime_error
{
public:
    ImageReadError() : std::runtime_error("") {}
};

// Quality of JPEG files, 1..100, for the whole program; below 1 it is unset and 95 is used. Set by
// whoever asks the user; not to be changed while a picture is being saved.
extern int g_jpegQuality;

enum class LoadProblem
{
    None,
    NoSuchFile,
    CannotOpen,
    UnknownFormat,
    NotReadable, // a known format that is only written
    DecoderFailed,
    KindNotSupported,
    TooLarge,
    OutOfMemory,
};

struct LoadReport
{
    LoadProblem problem = LoadProblem::None;
};

// Reads a file (path in UTF-8) into the pair. Both records must be initialised; what they own is
// released. A photograph that the camera marked as lying on its side comes out upright. True on
// failure, then both are empty and `report`, if given, says why. Geometry is checked before memory
// is taken. A truncated JPEG or TIFF counts as read, with what it has. Camera raw files need a name
// that says what they are.
[[nodiscard]] bool LoadPicturePair(const char* path, SBxPicBuf* picture, SBxPicBuf* alpha,
                                   LoadReport* report = nullptr);

// Whether a file could be read, from its header alone. Damage further on does not show.
LoadProblem CheckPictureFile(const char* path);

enum class SaveProblem
{
    None,
    NoPicture, // empty, or of a kind that no file holds
    OutOfMemory,
    UnknownFormat,    // thrown: target format unknown, never written, or GIF
    DepthNotHeld,     // the format cannot hold the picture's bits or components
    SourceFormat,     // thrown: source format unknown, never read, or GIF
    SourceUnreadable, // thrown
    CannotCreate,     // systemError: no such folder, read-only target, ...
    EncoderFailed,
    CannotWrite, // systemError: disk full, ...
};

struct SaveReport
{
    bool written = false; // the target holds the picture; false = it is as it was before
    SaveProblem problem = SaveProblem::None;
    int systemError = 0;       // errno
    bool alphaDropped = false; // the format has no alpha
    MetadataLosses losses;     // of what the source knows
    int otherNames = 0;        // names (hard links) of the old file that go on meaning it
};

// What a file gets beyond picture and source.
struct SaveExtras
{
    // EXIF block as JPEG files have it (ExifBlock.h), instead of the source's. Empty = none.
    std::vector<uint8_t> exif;

    // A file of the program's own that is read once and thrown away: TIFF without compression, and
    // nobody waits until it has reached the disk.
    bool passing = false;

    // Asked when all is written: if it says so, the target stays as it is.
    bool (*stopped)() = nullptr;

    // Gets the complete file, which does not take the target's place yet (FinishTogether).
    ReplacingFile* held = nullptr;

    // What the source knows, read before: then no file of a source is needed. Null = there is a
    // source, or nothing is known.
    const Metadata* metadata = nullptr;

    MetadataChoice choice = MetadataChoice::Keep;
    JpegChroma chroma = JpegChroma::ByQuality;
};

// Writes the pair to `target`; with a non-empty `source`, its colour profile and metadata go along.
// Paths are save paths (SystemFiles.h). Target and source may be the same file.
//
// Always returns false. Throws UnsupportedImageFormat for a target or source format that is
// unknown, cannot be written or read, or is GIF, and ImageReadError when the source does not load.
// Every other failure is silent except for `report`, and every failure leaves the target as it was.
//
// Metadata go from every kind of source into the formats that carry them (Formats.h), made true of
// the picture (MetadataOfResult.h).
bool SavePicturePair(const SBxPicBuf& picture, const SBxPicBuf& alpha, const char* target,
                     const char* source, FormatId format, SaveReport* report = nullptr,
                     const SaveExtras* extras = nullptr);
