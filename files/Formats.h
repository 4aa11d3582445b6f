#pragma once

#include "picture/PicBuf.h"

#include <cstdio>
#include <initializer_list>
#include <string>
#include <vector>

// The kinds of files that the program knows: one row each, which reading, writing, the dialogs, the
// command line and the installer's "Open with" go by. No row, no file: the codec library knows more
// formats, but some of its decoders write past the end of their buffers when a file is damaged.

enum FormatId : int
{
    kFormatFromName = -1, // the name decides; also: no format of ours
    kFormatBmp,
    kFormatJpeg,
    kFormatGif,
    kFormatTiff,
    kFormatPng,
    kFormatPnm, // portable maps: bits, greys and colours
    kFormatWebp,
    kFormatRaw, // of cameras
    kFormatCount
};

// Pictures that a file can hold, added up. Alpha comes with colours only.
enum : unsigned
{
    kHoldsGrey8 = 1,
    kHoldsColour8 = 2,
    kHoldsAlpha8 = 4,
    kHoldsGrey16 = 8,
    kHoldsColour16 = 16,
    kHoldsAlpha16 = 32,
    kHolds8 = kHoldsGrey8 | kHoldsColour8,
    kHolds16 = kHoldsGrey16 | kHoldsColour16,
};

// What a file that we write takes along from the photograph it was made of, added up.
enum : unsigned
{
    kCarriesProfile = 1,
    kCarriesXmp = 2,
    kCarriesCaptions = 4, // IPTC
    kCarriesExif = 8,
};

enum class OpenDialogs
{
    None,   // the user has to type the name
    Series, // only the one that picks several files
    All,
};

struct MaskedByte; // FileHeaders.h

struct FormatRow
{
    FormatId id;
    const char* name;           // as texts have it
    const char* endings;        // those offered, the one that we append first: ".jpg .jpeg"
    const char* furtherEndings; // those understood as well
    OpenDialogs opened;         // which dialogs show such files
    int saveEntry;              // place in the box of types when saving, from 1; 0 = not offered
    bool read, written;         // at all
    unsigned holds, carries;    // of files that we write
    std::vector<MaskedByte> (*masked)(FILE* stream); // kept from the codec library; null = nothing
    std::initializer_list<int>
        codes; // FreeImage's numbers, for files/ alone; it writes by the first
};

extern const FormatRow kFormats[kFormatCount]; // in the order of their ids

const FormatRow* FindFormat(FormatId id); // null when there is none
const FormatRow* FormatOfCode(int code);  // by FreeImage's number

std::vector<std::string> EndingsIn(const char* endings); // with their dots

// Whether the name has one of these endings, in any case.
bool HasEnding(const std::string& name, const char* endings);

// The format that a file name asks for by its ending, or kFormatFromName when it names none. Camera
// raw files are no answer: their endings are promises that only the contents can keep.
FormatId FormatFromFileName(const char* name);

// Whether files of the format can hold a picture like this one, without and with an alpha plane.
bool FormatHoldsPicture(FormatId id, const SBxPicBuf& picture, bool withAlpha);

// The formats in which results are offered, in the order of the box of types.
std::vector<const FormatRow*> SaveFormats();
