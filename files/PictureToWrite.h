#pragma once

#include "files/Metadata.h"
#include "picture/PicBuf.h"

// How the colours of a JPEG file are thinned out: for how many of four samples in a row, and in the
// row below, they are kept. `ByQuality` keeps them all from quality 90 on.
enum class JpegChroma
{
    ByQuality,
    All,     // 4:4:4
    Half,    // 4:2:2
    Quarter, // 4:2:0
};

// What an encoder gets. The metadata are written as they are: they have been made true of the
// picture, and fit into the format.
struct PictureToWrite
{
    const SBxPicBuf* picture = nullptr;
    const SBxPicBuf* alpha = nullptr; // null = none
    const Metadata* metadata = nullptr;
    int quality = 0; // of JPEG files, 1 to 100
    JpegChroma chroma = JpegChroma::ByQuality;
    bool packed = true; // TIFF: compressed
};

constexpr double kDefaultDotsPerInch = 72; // where nobody says; it means as much as nothing
