#pragma once

#include "tests/support/TestFiles.h"

#include <functional>
#include <map>
#include <string>

// Files of photographs that know a lot, made byte by byte, and a plain reader for what is in
// results; neither uses anything of what is tested.

void Put(Bytes* out, uint32_t value, int bytes, bool bigEndian);
size_t Get(const Bytes& bytes, size_t at, int count, bool bigEndian); // 0 beyond the end

struct PhotoFacts
{
    bool bigEndian = false;
    uint16_t orientation = 1;
    uint32_t width = 24, height = 16;
    Bytes thumbnail;
    std::function<Bytes(uint32_t at)> notes; // of the maker, as they stand there; empty = none
    bool hasBias = false;
    int biasThirds = 0;
    uint32_t exposureTime = 1; // thousandths of seconds
};

// A TIFF structure with maker, owner, serial number, dates, place and the facts. Its first byte
// will stand at `at` of the file.
Bytes MakePhotoExif(const PhotoFacts& facts);

struct SideFacts
{
    Bytes xmp, iptc, profile;
    int dotsPerInch = 0;
};

// A file of the kind that the name ends in: a small picture with all of that. The name "far.tif"
// has its directories behind 100 kB of samples, where most programs put them.
Bytes MakePhotoFile(const std::string& name, const PhotoFacts& facts, const SideFacts& side);

// The EXIF block of a JPEG, PNG, WebP or TIFF file, and its directories by name: first, second,
// exif, gps. What is not sound or not there is missing.
struct PlainExif
{
    struct Entry
    {
        uint32_t type = 0, count = 0;
        size_t at = 0; // of the four bytes in the field
    };
    Bytes block;
    bool bigEndian = false;
    bool sorted = true; // all directories, as they have to be
    std::map<std::string, std::map<int, Entry>> directories;

    explicit PlainExif(const Bytes& file);

    bool Has(const std::string& directory, int tag) const;
    uint32_t Number(const std::string& directory, int tag) const;
    size_t Offset(const std::string& directory, int tag) const; // of a value outside of its field
    std::string Text(const std::string& directory, int tag) const;         // without its final zero
    Bytes Value(const std::string& directory, int tag, size_t size) const; // at the field's number
private:
    size_t ReadDirectory(const std::string& name, size_t at);
};

double MeanDifference(const TestPicture& a, const TestPicture& b); // of 8-bit samples
