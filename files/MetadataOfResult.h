#pragma once

#include "files/Formats.h"
#include "files/Metadata.h"
#include "files/ResultFacts.h"
#include "picture/Picture.h"

// What did not go along into a result although its source has it.
struct MetadataLosses
{
    bool exif = false, xmp = false, captions = false;
    bool profile = false; // the format holds none, or readers would not take this one
};

// The metadata of a source, made true of a picture that is made of it and is to be written in this
// format, without what the format cannot hold. The picture may be of any kind that files hold.
Metadata MetadataOfResult(const Metadata& source, const SBxPicBuf& picture, const FormatRow& format,
                          MetadataChoice choice, MetadataLosses* losses);

// Pictures as small as cameras put them beside their photographs: at most 160 pixels wide or high,
// 8 bits. Empty when memory is short.
Picture ThumbnailOf(const SBxPicBuf& picture);
