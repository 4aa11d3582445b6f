#pragma once

#include "files/ImageFile.h"
#include "tests/support/TestPictures.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

using Bytes = std::vector<uint8_t>;

// A fresh folder that goes away with everything in it. File names are UTF-8, paths too.
struct TempFolder
{
    std::filesystem::path path;

    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string File(const std::string& name) const;
    std::string Write(const std::string& name, const Bytes& contents) const; // gives the path
    int FileCount() const;
};

Bytes ReadBytes(const std::string& path); // empty when there is no such file

// The pair that a file holds. The records hold something before; a failed load leaves both empty.
struct LoadedPair
{
    TestPicture picture, alpha;
    bool failed;
    LoadProblem problem;

    explicit LoadedPair(const std::string& path);
};

// Saves a picture; alpha and source are optional. Fails the test when a path has no save path.
SaveReport Save(const TestPicture& picture, const std::string& target,
                FormatId format = kFormatFromName, const std::string& source = "",
                const TestPicture* alpha = nullptr, const SaveExtras* extras = nullptr);

// Files built byte by byte, so that they do not depend on the encoders under test. Pixels are what
// follows the header, in the file's own order; they may be shorter than the header promises.

struct BmpParts
{
    int width, height; // a negative height means that the top row comes first
    int bits;          // per pixel: 1, 4, 8, 16 (5-6-5), 24, 32
    Bytes palette;     // blue, green, red, 0 each
    Bytes pixels;
};
Bytes MakeBmp(const BmpParts& parts);

struct TiffEntry
{
    int tag, type, count;
    int64_t value; // or its place in the file
};
struct TiffParts
{
    int width, height, samples, bits;
    int photometric;      // 0 grey from white, 1 grey from black, 2 colour, 5 inks
    int sampleFormat = 1; // 1 unsigned, 2 signed, 3 float
    Bytes pixels;         // uncompressed, top row first, little-endian
    std::vector<TiffEntry> more = {};
};
Bytes MakeTiff(const TiffParts& parts);
Bytes MakeRaw(int width, int height); // a mosaic as a camera writes it, grey from dark to light

Bytes MakePngHeader(int width, int height, int bits, int colourType); // no pixels
Bytes MakeGifHeader(int width, int height);                           // no pixels

// A colour profile of that size (128 and up) with a valid header and nothing in it.
// Spaces: "RGB ", "GRAY", "CMYK".
Bytes MakeProfile(size_t size, const std::string& space);
