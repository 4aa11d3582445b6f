#pragma once

#include <cstdint>
#include <cstdio>
#include <vector>

// What a photograph knows beside its pixels, as it stands in its file. It is read once, when the
// photograph is opened, and handed to whoever saves something made of it.
struct Metadata
{
    // A TIFF structure whose offsets count from its first byte. That of JPEG, PNG and WebP files as
    // it stands there, so that offsets which the camera's maker has put into notes of its own stay
    // right; that of TIFF and raw files with the directories that are about the photograph.
    std::vector<uint8_t> exif;

    std::vector<uint8_t> iptc; // records of captions, in their order
    std::vector<uint8_t> xmp;  // the packet; one that a JPEG file had to split is whole again
    std::vector<uint8_t> profile;
    double dotsPerInchX = 0, dotsPerInchY = 0; // 0 = nobody says
};

// Of any kind of file that the program reads, by its first bytes; what is damaged is left out. The
// stream may hold anything, and is left at any place.
Metadata ReadMetadata(FILE* stream);

// The same of a file (path in UTF-8); empty when it does not open.
Metadata ReadMetadataFile(const char* path);

// What a camera says of an exposure. Zero where it says nothing.
struct ExposureFacts
{
    bool biasKnown = false;
    double bias = 0;  // EV
    double light = 0; // exposure time * sensitivity / aperture squared: what a brighter frame has
                      // more of
};
ExposureFacts ExposureOf(const Metadata& metadata);

// Which frame of a series speaks for all: the one that is nearest to the exposure the camera would
// have chosen. Without biases it is the middle one by light, and without that the first. 0 for
// none.
size_t ReferenceFrame(const std::vector<Metadata>& frames);
