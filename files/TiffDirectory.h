#pragma once

#include "files/ByteSource.h"

#include <cstdint>
#include <vector>

// Directories of TIFF structures, which TIFF files, EXIF blocks and most camera raw files are made
// of: a count, twelve bytes per field in ascending order of tags, the offset of the next directory,
// and elsewhere the values that do not fit into the four bytes of a field. Offsets count from the
// structure's first byte.

enum TiffTag : uint16_t
{
    kTagWidth = 256,
    kTagHeight = 257,
    kTagStrips = 273,
    kTagOrientation = 274,
    kTagXResolution = 282,
    kTagYResolution = 283,
    kTagResolutionUnit = 296,
    kTagSoftware = 305,
    kTagDateTime = 306, // of the last change
    kTagArtist = 315,
    kTagThumbnail = 513,
    kTagThumbnailBytes = 514,
    kTagXmp = 700,
    kTagExposureTime = 0x829A,
    kTagFNumber = 0x829D,
    kTagIptc = 33723,
    kTagProfile = 34675,
    kTagExifDirectory = 34665,
    kTagGpsDirectory = 34853,
    kTagIso = 34855,
    kTagOffsetTime = 0x9010, // hours that DateTime is ahead of Greenwich, as text
    kTagExposureBias = 0x9204,
    kTagMakerNote = 0x927C,
    kTagSubSecTime = 0x9290, // of DateTime
    kTagPixelWidth = 0xA002,
    kTagPixelHeight = 0xA003,
    kTagInteropDirectory = 0xA005,
};

enum TiffType : uint16_t
{
    kTiffByte = 1,
    kTiffText = 2,
    kTiffShort = 3,
    kTiffLong = 4,
    kTiffRational = 5,
    kTiffUndefined = 7,
    kTiffSignedRational = 10,
};

struct TiffField
{
    uint16_t tag = 0, type = 0;
    uint64_t count = 0;
    uint64_t at = 0;      // where the field itself stands
    uint64_t valueAt = 0; // where its value stands: in the field or elsewhere
    uint64_t bytes = 0;   // of the value; 0 for types that nobody knows
};

struct TiffDirectory
{
    uint64_t at = 0, end = 0; // of count, fields and offset of the next one
    std::vector<TiffField> fields;
    uint64_t next = 0; // 0 = there is none

    const TiffField* Find(int tag) const; // the first of that tag, or null
};

struct TiffStructure
{
    ByteSource source;
    bool bigEndian = false;
    bool wide = false;  // "BigTIFF": offsets and counts of eight bytes
    uint64_t first = 0; // the first directory
};

// Whether the source begins like a TIFF structure, those of camera raw files included.
bool OpenTiff(const ByteSource& source, TiffStructure* tiff);

// False when the directory does not lie within the source. Fields whose values do not, are left
// out.
bool ReadTiffDirectory(const TiffStructure& tiff, uint64_t at, TiffDirectory* directory);

// The directory that a field of `from` points to. False when there is none, or none that is sound.
bool ReadSubDirectory(const TiffStructure& tiff, const TiffDirectory& from, int tag,
                      TiffDirectory* directory);

// A number of the field, whole numbers and the first halves of fractions; -1 when it has none.
int64_t TiffNumberOf(const TiffStructure& tiff, const TiffField* field, int index = 0);

// The fraction that the field holds, or 0.
double TiffFraction(const TiffStructure& tiff, const TiffField* field);

// A field to be written, with its value in the byte order of the structure.
struct NewTiffField
{
    uint16_t tag = 0, type = 0;
    uint32_t count = 0;
    std::vector<uint8_t> value; // or the four bytes that lead to one which stands there already
};

NewTiffField TiffNumberField(int tag, int type, uint32_t value, bool bigEndian);
NewTiffField TiffBytesField(int tag, int type, std::vector<uint8_t> bytes);
NewTiffField TiffTextField(int tag, const std::vector<uint8_t>& textWithZero);
NewTiffField TiffRationalField(int tag, uint32_t numerator, uint32_t denominator, bool bigEndian);

// The same field as it stands in the structure, pointing to the same place. Not for wide ones.
NewTiffField SameTiffField(const TiffStructure& tiff, const TiffField& field);

// Puts the field where its tag belongs, in the place of one with the same tag.
void SetTiffField(std::vector<NewTiffField>* fields, NewTiffField field);
void DropTiffField(std::vector<NewTiffField>* fields, int tag);

// The bytes of a directory that will stand at `at`, an even number, with its values behind it.
std::vector<uint8_t> TiffDirectoryBytes(const std::vector<NewTiffField>& fields, uint32_t at,
                                        uint32_t next, bool bigEndian);
