#pragma once

#include "files/ImageFile.h"
#include "picture/Picture.h"

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

struct FileCloser
{
    void operator()(FILE* file) const { std::fclose(file); }
};
using FileOwner = std::unique_ptr<FILE, FileCloser>;

// One file on its way to a picture pair: what the readers of all formats share. A reader checks the
// header, asks for memory, fills rows from the top and says what was wrong on the way. What becomes
// of a damaged picture is not its business.
struct Decoding
{
    FILE* file = nullptr; // at any position
    int64_t fileBytes = 0;
    LoadOptions options;
    bool headerOnly = false; // MakePicture ends the work

    Picture picture, alpha;
    int orientation = 1; // how both have to be turned, see Orientation.h
    LoadReport report;
    std::string damage; // the first thing that was wrong, empty for a sound file
    double share = 0.0; // of the picture that was good until then
};

// Positions beyond 31 bits, on Windows too.
bool SeekFile(FILE* file, int64_t offset);
int64_t TellFile(FILE* file);
int64_t SizeOfFile(FILE* file); // -1 when it has none; leaves the position at the start

// What the header promises of the picture.
struct PictureClaim
{
    int64_t width = 0, height = 0;
    int components = 3, bits = 8;
    bool alpha = false;
    int64_t decoderBytes = 0;   // that the decoder takes besides the picture
    int64_t leastFileBytes = 0; // a file that is shorter cannot hold the picture
};

// A damaged header claims sides whose products leave 64 bits: from here on, more is the same.
constexpr int64_t kMostBytesClaimed = int64_t(1) << 60;
inline int64_t PixelsClaimed(const PictureClaim& claim)
{
    const double pixels = double(claim.width) * double(claim.height);
    constexpr double kMost = 1e12;
    return pixels <= 0.0 ? 0 : int64_t(pixels < kMost ? pixels : kMost);
}

// The checks of MakePicture alone.
bool CheckClaim(Decoding* decoding, const PictureClaim& claim);

// Checks the claim against the limit of pixels, the length of the file and the memory, then takes
// the memory. False with a report when that is impossible, and without one for a header only.
bool MakePicture(Decoding* decoding, const PictureClaim& claim);

// Ends the work. False, for the reader to return.
bool Refuse(Decoding* decoding, LoadProblem problem, const std::string& detail = "");

// Notes what is wrong, unless something is noted already, and how much of the picture came before.
void NoteDamage(Decoding* decoding, const std::string& what, double share);

// "the file ends after 61 % of the picture": the text of a file that was cut off.
std::string EndText(double share);

// The readers. Each starts at the beginning of the file.
void ReadJpeg(Decoding* decoding);
void ReadPng(Decoding* decoding);
void ReadTiff(Decoding* decoding);
void ReadWebp(Decoding* decoding);
