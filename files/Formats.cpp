#include "files/Formats.h"

#include "files/FileHeaders.h"

#include <FreeImage.h>

#include <algorithm>

// clang-format off
const FormatRow kFormats[kFormatCount] = {
    {kFormatBmp, "BMP", ".bmp", ".dib", OpenDialogs::All, 1, true, true,
     kHolds8 | kHoldsAlpha8, 0,
     MaskedBmpHeader, {FIF_BMP}},
    // Four samples mean inks here, not alpha.
    {kFormatJpeg, "JPEG", ".jpg .jpeg", ".jpe .jif .jfif", OpenDialogs::All, 4, true, true,
     kHolds8, kCarriesProfile | kCarriesXmp | kCarriesCaptions | kCarriesExif,
     MaskedExif, {FIF_JPEG}},
    {kFormatGif, "GIF", ".gif", "", OpenDialogs::Series, 0, true, false,
     0, 0,
     nullptr, {FIF_GIF}},
    {kFormatTiff, "TIFF", ".tif .tiff", "", OpenDialogs::All, 2, true, true,
     kHolds8 | kHoldsAlpha8 | kHolds16 | kHoldsAlpha16,
     kCarriesProfile | kCarriesXmp | kCarriesCaptions | kCarriesExif,
     MaskedTiffEntries, {FIF_TIFF}},
    {kFormatPng, "PNG", ".png", "", OpenDialogs::All, 3, true, true,
     kHolds8 | kHoldsAlpha8 | kHolds16 | kHoldsAlpha16,
     kCarriesProfile | kCarriesXmp | kCarriesCaptions | kCarriesExif,
     MaskedPngProfiles, {FIF_PNG}},
    {kFormatPnm, "PNM", ".ppm .pgm .pbm", ".pnm", OpenDialogs::None, 0, true, true,
     kHolds8 | kHolds16, 0,
     nullptr, {FIF_PPM, FIF_PPMRAW, FIF_PGM, FIF_PGMRAW, FIF_PBM, FIF_PBMRAW}},
    {kFormatWebp, "WebP", ".webp", "", OpenDialogs::All, 0, true, true,
     kHoldsColour8 | kHoldsAlpha8, kCarriesProfile | kCarriesXmp | kCarriesExif,
     MaskedExif, {FIF_WEBP}},
    // MaskedExif is for the small JPEG picture inside.
    {kFormatRaw, "camera RAW", ".dng",
     ".3fr .arw .bay .bmq .cap .cine .cr2 .crw .cs1 .dc2 .dcr .drf .dsc .erf .fff .ia .iiq .k25"
     " .kc2 .kdc .mdc .mef .mos .mrw .nef .nrw .orf .pef .ptx .pxn .qtk .raf .raw .rdc .rw2 .rwl"
     " .rwz .sr2 .srf .srw .sti .x3f",
     OpenDialogs::None, 0, true, false, 0, 0, MaskedExif, {FIF_RAW}},
};
// clang-format on

const FormatRow* FindFormat(FormatId id)
{
    return id >= 0 && id < kFormatCount ? &kFormats[id] : nullptr;
}

const FormatRow* FormatOfCode(int code)
{
    for (const FormatRow& row : kFormats)
        if (std::find(row.codes.begin(), row.codes.end(), code) != row.codes.end())
            return &row;
    return nullptr;
}

std::vector<std::string> EndingsIn(const char* endings)
{
    std::vector<std::string> list;
    const std::string text = endings;
    for (size_t start = 0; start < text.size();)
    {
        const size_t end = std::min(text.find(' ', start), text.size());
        list.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return list;
}

static char Lower(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? char(letter - 'A' + 'a') : letter;
}

bool HasEnding(const std::string& name, const char* endings)
{
    const size_t dot = name.rfind('.');
    if (dot == name.npos)
        return false;
    std::string ending = name.substr(dot);
    std::transform(ending.begin(), ending.end(), ending.begin(), Lower);
    const std::vector<std::string> list = EndingsIn(endings);
    return std::find(list.begin(), list.end(), ending) != list.end();
}

FormatId FormatFromFileName(const char* name)
{
    for (const FormatRow& row : kFormats)
        if (row.id != kFormatRaw &&
            (HasEnding(name, row.endings) || HasEnding(name, row.furtherEndings)))
            return row.id;
    return kFormatFromName;
}

static unsigned KindOf(const SBxPicBuf& picture, bool withAlpha)
{
    const bool grey = picture.components == 1;
    if (!grey && picture.components != 3)
        return 0;
    switch (picture.bitsPerComponent)
    {
    case 8: return grey ? kHoldsGrey8 : withAlpha ? kHoldsAlpha8 : kHoldsColour8;
    case 16: return grey ? kHoldsGrey16 : withAlpha ? kHoldsAlpha16 : kHoldsColour16;
    default: return 0;
    }
}

bool FormatHoldsPicture(FormatId id, const SBxPicBuf& picture, bool withAlpha)
{
    const FormatRow* row = FindFormat(id);
    return row && (row->holds & KindOf(picture, withAlpha)) != 0;
}

std::vector<const FormatRow*> SaveFormats()
{
    std::vector<const FormatRow*> formats;
    for (const FormatRow& row : kFormats)
        if (row.saveEntry > 0)
            formats.push_back(&row);
    std::sort(formats.begin(), formats.end(),
              [](const FormatRow* a, const FormatRow* b) { return a->saveEntry < b->saveEntry; });
    return formats;
}
