#include "cli/Commands.h"
#include "files/ExifBlock.h"
#include "files/ImageFile.h"
#include "text/LanguageFile.h"
#include "text/Strings.h"
#include "tools/Settings.h"
#include "view/ImageViewZoom.h"

#include <FreeImage.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

// Writes what a fuzzer starts from: small valid files of every kind that the program may meet, one
// folder per format, and texts (FuzzTexts.cpp).
//
//   MakeSeeds FOLDER

namespace fs = std::filesystem;
using Bytes = std::vector<uint8_t>;
using Bitmap = std::unique_ptr<FIBITMAP, void (*)(FIBITMAP*)>;

static const int kWidth = 17, kHeight = 13;
static int g_failures = 0;

static Bitmap MakeBitmap(FREE_IMAGE_TYPE type, int bitsPerPixel, bool colours)
{
    Bitmap bitmap(FreeImage_AllocateT(type, kWidth, kHeight, bitsPerPixel),
                  [](FIBITMAP* owned) { FreeImage_Unload(owned); });
    const int rowBytes = int(FreeImage_GetLine(bitmap.get()));
    for (int y = 0; y < kHeight; ++y)
        for (int i = 0; i < rowBytes; ++i)
            FreeImage_GetScanLine(bitmap.get(), y)[i] = BYTE((i / 4 * 7 + y * 5) & 0x7F);
    RGBQUAD* palette = FreeImage_GetPalette(bitmap.get());
    for (unsigned i = 0; i < FreeImage_GetColorsUsed(bitmap.get()); ++i)
    {
        const unsigned grey = i * 255 / (FreeImage_GetColorsUsed(bitmap.get()) - 1);
        palette[i].rgbRed = palette[i].rgbGreen = palette[i].rgbBlue = BYTE(grey);
        if (colours)
            palette[i].rgbRed = BYTE(255 - grey / 2);
    }
    return bitmap;
}

static void SetTag(FIBITMAP* bitmap, FREE_IMAGE_MDMODEL model, const char* key, WORD id,
                   FREE_IMAGE_MDTYPE type, const Bytes& value)
{
    FITAG* tag = FreeImage_CreateTag();
    FreeImage_SetTagKey(tag, key);
    FreeImage_SetTagID(tag, id);
    FreeImage_SetTagType(tag, type);
    FreeImage_SetTagLength(tag, DWORD(value.size()));
    FreeImage_SetTagCount(tag, DWORD(value.size()));
    FreeImage_SetTagValue(tag, value.data());
    FreeImage_SetMetadata(model, bitmap, key, tag);
    FreeImage_DeleteTag(tag);
}

static Bytes Letters(const std::string& text)
{
    return Bytes(text.begin(), text.end());
}

// Everything that may ride along with the pixels.
static void AddMetadata(FIBITMAP* bitmap)
{
    ExifFields fields;
    fields.make = "Maker";
    fields.model = "Model 1";
    fields.software = "Plenoviz";
    fields.dateTime = "2024:05:06 07:08:09";
    fields.exposureTime = {1, 250};
    fields.fNumber = {56, 10};
    fields.iso = 200;
    fields.biasNumerator = -2;
    fields.biasDenominator = 3;
    fields.width = uint32_t(kWidth);
    fields.height = uint32_t(kHeight);
    SetTag(bitmap, FIMD_EXIF_RAW, "ExifRaw", 0, FIDT_BYTE, MakeExifBlock(fields));
    SetTag(bitmap, FIMD_XMP, "XMLPacket", 700, FIDT_ASCII, Letters("<x:xmpmeta xmlns:x='a'/>"));
    SetTag(bitmap, FIMD_COMMENTS, "Comment", 0, FIDT_ASCII, Letters("a comment"));
    SetTag(bitmap, FIMD_IPTC, "Caption-Abstract", 0x278, FIDT_ASCII, Letters("a caption"));
    Bytes profile(160, 0);
    profile[3] = 160;
    profile[8] = 2; // version
    const std::string space = "mntrRGB XYZ ", mark = "acsp";
    std::copy(space.begin(), space.end(), profile.begin() + 12);
    const Bytes white = {0, 0, 0xF6, 0xD6, 0, 1, 0, 0, 0, 0, 0xD3, 0x2D}; // of daylight, D50
    std::copy(mark.begin(), mark.end(), profile.begin() + 36);
    std::copy(white.begin(), white.end(), profile.begin() + 68);
    FreeImage_CreateICCProfile(bitmap, profile.data(), long(profile.size()));
}

static void Write(const fs::path& path, const Bytes& bytes)
{
    fs::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
    g_failures += file.good() ? 0 : 1;
}

struct SeedRow
{
    const char* file; // folder and name
    FREE_IMAGE_FORMAT format;
    FREE_IMAGE_TYPE type;
    int bitsPerPixel;
    int flags;
    bool colours, metadata;
};

static const SeedRow kSeeds[] = {
    {"bmp/1", FIF_BMP, FIT_BITMAP, 1, 0, false, false},
    {"bmp/4", FIF_BMP, FIT_BITMAP, 4, 0, true, false},
    {"bmp/8-grey", FIF_BMP, FIT_BITMAP, 8, 0, false, false},
    {"bmp/8-packed", FIF_BMP, FIT_BITMAP, 8, BMP_SAVE_RLE, true, false},
    {"bmp/16", FIF_BMP, FIT_BITMAP, 16, 0, false, false},
    {"bmp/24", FIF_BMP, FIT_BITMAP, 24, 0, false, false},
    {"bmp/32", FIF_BMP, FIT_BITMAP, 32, 0, false, false},
    {"jpeg/grey", FIF_JPEG, FIT_BITMAP, 8, 90, false, false},
    {"jpeg/colour", FIF_JPEG, FIT_BITMAP, 24, 90, false, true},
    {"jpeg/progressive", FIF_JPEG, FIT_BITMAP, 24, 50 | JPEG_PROGRESSIVE, false, false},
    {"gif/1", FIF_GIF, FIT_BITMAP, 1, 0, false, false},
    {"gif/4", FIF_GIF, FIT_BITMAP, 4, 0, true, true},
    {"gif/8-grey", FIF_GIF, FIT_BITMAP, 8, 0, false, false},
    {"png/1", FIF_PNG, FIT_BITMAP, 1, 0, false, false},
    {"png/4", FIF_PNG, FIT_BITMAP, 4, 0, true, false},
    {"png/8", FIF_PNG, FIT_BITMAP, 8, 0, false, false},
    {"png/8-colours", FIF_PNG, FIT_BITMAP, 8, PNG_INTERLACED, true, false},
    {"png/24", FIF_PNG, FIT_BITMAP, 24, 0, false, true},
    {"png/32", FIF_PNG, FIT_BITMAP, 32, PNG_INTERLACED, false, false},
    {"png/16", FIF_PNG, FIT_UINT16, 16, 0, false, false},
    {"png/48", FIF_PNG, FIT_RGB16, 48, 0, false, false},
    {"png/64", FIF_PNG, FIT_RGBA16, 64, 0, false, false},
    {"tiff/1", FIF_TIFF, FIT_BITMAP, 1, TIFF_CCITTFAX3, false, false},
    {"tiff/1-fax4", FIF_TIFF, FIT_BITMAP, 1, TIFF_CCITTFAX4, false, false},
    {"tiff/4", FIF_TIFF, FIT_BITMAP, 4, TIFF_PACKBITS, true, false},
    {"tiff/8", FIF_TIFF, FIT_BITMAP, 8, TIFF_LZW, false, false},
    {"tiff/24", FIF_TIFF, FIT_BITMAP, 24, TIFF_NONE, false, true},
    {"tiff/24-deflate", FIF_TIFF, FIT_BITMAP, 24, TIFF_DEFLATE, false, false},
    {"tiff/24-jpeg", FIF_TIFF, FIT_BITMAP, 24, TIFF_JPEG, false, false},
    {"tiff/32", FIF_TIFF, FIT_BITMAP, 32, TIFF_LZW, false, false},
    {"tiff/32-inks", FIF_TIFF, FIT_BITMAP, 32, TIFF_CMYK | TIFF_NONE, false, false},
    {"tiff/16", FIF_TIFF, FIT_UINT16, 16, TIFF_LZW, false, false},
    {"tiff/48", FIF_TIFF, FIT_RGB16, 48, TIFF_DEFLATE, false, false},
    {"tiff/64", FIF_TIFF, FIT_RGBA16, 64, TIFF_NONE, false, false},
    {"tiff/float", FIF_TIFF, FIT_FLOAT, 32, TIFF_LZW, false, false},
    {"tiff/float-colour", FIF_TIFF, FIT_RGBF, 96, TIFF_NONE, false, false},
    {"webp/lossy", FIF_WEBP, FIT_BITMAP, 24, 60, false, true},
    {"webp/lossless", FIF_WEBP, FIT_BITMAP, 32, WEBP_LOSSLESS, false, false},
    {"pnm/bits", FIF_PBM, FIT_BITMAP, 1, PNM_SAVE_ASCII, false, false},
    {"pnm/bits-packed", FIF_PBMRAW, FIT_BITMAP, 1, PNM_SAVE_RAW, false, false},
    {"pnm/grey", FIF_PGM, FIT_BITMAP, 8, PNM_SAVE_ASCII, false, false},
    {"pnm/grey-16", FIF_PGMRAW, FIT_UINT16, 16, PNM_SAVE_RAW, false, false},
    {"pnm/colour", FIF_PPM, FIT_BITMAP, 24, PNM_SAVE_ASCII, false, false},
    {"pnm/colour-packed", FIF_PPMRAW, FIT_BITMAP, 24, PNM_SAVE_RAW, false, false},
    {"pnm/colour-16", FIF_PPM, FIT_RGB16, 48, PNM_SAVE_ASCII, false, false},
};

static void WritePictures(const fs::path& folder)
{
    for (const SeedRow& row : kSeeds)
    {
        const Bitmap bitmap = MakeBitmap(row.type, row.bitsPerPixel, row.colours);
        if (row.metadata)
            AddMetadata(bitmap.get());
        const fs::path path = folder / row.file;
        fs::create_directories(path.parent_path());
        if (!FreeImage_Save(row.format, bitmap.get(), path.c_str(), row.flags))
        {
            std::fprintf(stderr, "MakeSeeds: %s cannot be written\n", row.file);
            ++g_failures;
        }
    }
}

// The same with the longest kind of header.
static void WriteLongBmp(const fs::path& folder, const char* name)
{
    std::ifstream file(folder / name, std::ios::binary);
    Bytes bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    const size_t header = 14 + 40, more = 124 - 40;
    if (bytes.size() < header)
        return;
    bytes[10] = uint8_t(bytes[10] + more); // where the pixels begin; small enough for one byte
    bytes[14] = 124;
    bytes.insert(bytes.begin() + header, more, 0);
    Write(folder / (std::string(name) + "-long"), bytes);
}

static void Put(Bytes* out, uint32_t value, int bytes)
{
    for (int i = 0; i < bytes; ++i)
        out->push_back(uint8_t(value >> (8 * i)));
}

// A raw photograph as cameras write it: one directory, sixteen bits under a Bayer mosaic.
static Bytes MakeRaw()
{
    const uint32_t width = 32, height = 32, kShort = 3, kLong = 4, kByte = 1, kText = 2;
    const uint32_t rows[][4] = {
        {254, kLong, 1, 0},
        {256, kLong, 1, width},
        {257, kLong, 1, height},
        {258, kShort, 1, 16},
        {259, kShort, 1, 1},
        {262, kShort, 1, 32803},
        {271, kText, 4, 0x4241},
        {272, kText, 4, 0x4443},
        {273, kLong, 1, 512},
        {274, kShort, 1, 1},
        {277, kShort, 1, 1},
        {278, kLong, 1, height},
        {284, kShort, 1, 1},
        {279, kLong, 1, 2 * width * height},
        {33421, kShort, 2, 0x00020002},
        {33422, kByte, 4, 0x02010100},
        {50706, kByte, 4, 0x00000401},
        {50717, kLong, 1, 65535},
    };
    Bytes file = {'I', 'I', 42, 0, 8, 0, 0, 0};
    Put(&file, uint32_t(std::size(rows)), 2);
    for (const auto& row : rows)
    {
        Put(&file, row[0], 2);
        Put(&file, row[1], 2);
        Put(&file, row[2], 4);
        Put(&file, row[3], 4);
    }
    file.resize(512);
    for (uint32_t i = 0; i < width * height; ++i)
        Put(&file, i * 61 & 0xFFFF, 2);
    return file;
}

static void WriteText(const fs::path& path, char kind, const std::string& text)
{
    Write(path, Letters(kind + text));
}

static std::string Narrow(const std::wstring& text)
{
    std::string narrow;
    for (const wchar_t letter : text)
        narrow += char(letter);
    return narrow;
}

static void WriteTexts(const fs::path& folder)
{
    std::string settings = "[General]\n", texts = settings;
    const auto add = [&](const StoredNumber& stored)
    { settings += Narrow(stored.key) + "=" + std::to_string(stored.standard) + "\n"; };
    for (int i = 0; i < kSettingCount; ++i)
        add(kSettings[i].stored);
    for (const ParameterRow& row : AllParameters())
        add(row.stored);
    texts += "Languages No=2\nLanguage Current=1\n[1]\nLanguage=Deutsch\nAcronym=de\n";
    for (int number = 1; number <= kStringCount; ++number)
        texts += "string" + std::to_string(number) + "=" + Narrow(EnglishText(number)) + "\n";
    WriteText(folder / "settings", 's', settings);
    WriteText(folder / "localisation", 'l', texts);
    for (int i = 0; i < kZoomPresetCount; ++i)
        WriteText(folder / ("zoom-" + std::to_string(i)), 'z', Narrow(kZoomPresets[i].text));
    WriteText(folder / "name", 'f', "C:\\photos.old\\IMG 1.2020.jpg");
    for (int i = 0; i < Commands().count; ++i)
    {
        const CommandRow& command = Commands().rows[i];
        std::string line = command.name;
        for (const OptionRow& row : OptionsOf(command))
            if (std::string(row.name) != "--help")
                line += std::string("\n") + row.name + (TakesValue(row) ? "\n10" : "");
        const std::string inputs = *command.arguments ? "\n--\nsingle\n-a.jpg" : "";
        WriteText(folder / command.name, 'c', line + inputs);
        WriteText(folder / (std::string(command.name) + "-help"), 'c',
                  command.name + std::string("\n--lod=1,2,3,4,5,6,7,8\n--noise\nhigh\n--help"));
    }
}

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
#ifdef FREEIMAGE_LIB
    FreeImage_Initialise(TRUE);
#endif
    const fs::path folder = argv[1];
    WritePictures(folder);
    for (const char* name : {"bmp/1", "bmp/4", "bmp/8-grey", "bmp/8-packed", "bmp/32"})
        WriteLongBmp(folder, name);
    Write(folder / "raw/dng", MakeRaw());
    WriteTexts(folder / "texts");
    return g_failures == 0 ? 0 : 1;
}
