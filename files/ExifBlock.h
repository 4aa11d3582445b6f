#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct ExifRational
{
    uint32_t numerator = 0;
    uint32_t denominator = 0; // 0 = not known
};

// What a camera would say about one exposure. Fields that are empty or zero are
// left out.
struct ExifFields
{
    std::string make, model, software;
    std::string dateTime;      // "YYYY:MM:DD HH:MM:SS", local time
    ExifRational exposureTime; // seconds
    ExifRational fNumber;
    uint32_t width = 0, height = 0; // pixels
    uint16_t iso = 0;
    int32_t biasNumerator = 0; // exposure bias in EV
    int32_t biasDenominator = 0;
};

// The EXIF block of a JPEG file, as SaveExtras::exif takes it: "Exif", two
// zeros, and a little-endian TIFF structure.
std::vector<uint8_t> MakeExifBlock(const ExifFields& fields);

// Whether the bytes are a TIFF structure whose first directory lies within them, as the EXIF block
// of any file is, without the letters that it begins with in JPEG files.
bool ExifIsSound(const std::vector<uint8_t>& block);
