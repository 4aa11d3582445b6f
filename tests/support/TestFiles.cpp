#include "tests/support/TestFiles.h"

#include "base/SystemFiles.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <fstream>
#include <iterator>
#include <utility>

namespace fs = std::filesystem;

TempFolder::TempFolder()
{
    static std::atomic<int> counter{0};
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    do
        path = fs::temp_directory_path() /
               ("plenoviz-test-" + std::to_string(now) + "-" + std::to_string(counter++));
    while (!fs::create_directory(path));
}

TempFolder::~TempFolder()
{
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(path, ignored))
        if (!entry.is_symlink())
            fs::permissions(entry.path(), fs::perms::owner_all, fs::perm_options::add, ignored);
    fs::remove_all(path, ignored);
}

std::string TempFolder::File(const std::string& name) const
{
    return (path / fs::u8path(name)).u8string();
}

std::string TempFolder::Write(const std::string& name, const Bytes& contents) const
{
    std::ofstream file(path / fs::u8path(name), std::ios::binary);
    file.write(reinterpret_cast<const char*>(contents.data()), std::streamsize(contents.size()));
    EXPECT_TRUE(file.good()) << name;
    return File(name);
}

int TempFolder::FileCount() const
{
    return int(std::distance(fs::directory_iterator(path), fs::directory_iterator()));
}

Bytes ReadBytes(const std::string& path)
{
    std::ifstream file(fs::u8path(path), std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

LoadedPair::LoadedPair(const std::string& path) : picture(3, 3, 3, 8), alpha(3, 3, 1, 8)
{
    LoadReport report;
    failed = LoadPicturePair(path.c_str(), picture.Record(), alpha.Record(), &report);
    problem = report.problem;
}

SaveReport Save(const TestPicture& picture, const std::string& target, FormatId format,
                const std::string& source, const TestPicture* alpha, const SaveExtras* extras)
{
    SaveReport report;
    std::string targetPath, sourcePath;
    EXPECT_EQ(SavePathFromUtf8(&targetPath, target.c_str(), PathUse::Target), Outcome::Done)
        << target;
    if (!source.empty())
    {
        EXPECT_EQ(SavePathFromUtf8(&sourcePath, source.c_str(), PathUse::Source), Outcome::Done)
            << source;
    }
    const TestPicture none;
    EXPECT_FALSE(SavePicturePair(picture, alpha ? *alpha : none, targetPath.c_str(),
                                 sourcePath.c_str(), format, &report, extras));
    return report;
}

static void Put16(Bytes* out, int value)
{
    out->insert(out->end(), {uint8_t(value), uint8_t(value >> 8)});
}

static void Put32(Bytes* out, int64_t value)
{
    for (int shift = 0; shift < 32; shift += 8)
        out->push_back(uint8_t(value >> shift));
}

static void PutText(Bytes* out, const std::string& text)
{
    out->insert(out->end(), text.begin(), text.end());
}

Bytes MakeBmp(const BmpParts& parts)
{
    Bytes masks;
    if (parts.bits == 16)
        for (int mask : {0xF800, 0x07E0, 0x001F})
            Put32(&masks, mask);
    const size_t pixelOffset = 14 + 40 + masks.size() + parts.palette.size();
    Bytes file = {'B', 'M'};
    Put32(&file, int64_t(pixelOffset + parts.pixels.size()));
    Put32(&file, 0);
    Put32(&file, int64_t(pixelOffset));
    Put32(&file, 40);
    Put32(&file, parts.width);
    Put32(&file, parts.height);
    Put16(&file, 1);
    Put16(&file, parts.bits);
    Put32(&file, masks.empty() ? 0 : 3);
    for (int value : {0, 2835, 2835, int(parts.palette.size() / 4), 0})
        Put32(&file, value);
    for (const Bytes& part : {masks, parts.palette, parts.pixels})
        file.insert(file.end(), part.begin(), part.end());
    return file;
}

Bytes MakeTiff(const TiffParts& parts)
{
    const int kShort = 3, kLong = 4, directory = 8, entries = 10 + int(parts.more.size());
    const int bitsOffset = directory + 2 + 12 * entries + 4, formatsOffset = bitsOffset + 8;
    const int pixelOffset = formatsOffset + 8;
    const auto perSample = [&](int value, int offset)
    { return parts.samples <= 2 ? value * 0x10001LL : offset; };
    std::vector<TiffEntry> rows = {
        {256, kLong, 1, parts.width},
        {257, kLong, 1, parts.height},
        {258, kShort, parts.samples, perSample(parts.bits, bitsOffset)},
        {259, kShort, 1, 1}, // not compressed
        {262, kShort, 1, parts.photometric},
        {273, kLong, 1, pixelOffset},
        {277, kShort, 1, parts.samples},
        {278, kLong, 1, parts.height}, // all rows in one strip
        {279, kLong, 1, int64_t(parts.pixels.size())},
        {339, kShort, parts.samples, perSample(parts.sampleFormat, formatsOffset)},
    };
    rows.insert(rows.end(), parts.more.begin(), parts.more.end());
    std::sort(rows.begin(), rows.end(),
              [](const TiffEntry& a, const TiffEntry& b) { return a.tag < b.tag; });
    Bytes file = {'I', 'I', 42, 0};
    Put32(&file, directory);
    Put16(&file, entries);
    for (const TiffEntry& row : rows)
    {
        Put16(&file, row.tag);
        Put16(&file, row.type);
        Put32(&file, row.count);
        Put32(&file, row.value);
    }
    Put32(&file, 0);
    for (int value : {parts.bits, parts.sampleFormat})
        for (int i = 0; i < 4; ++i)
            Put16(&file, value);
    file.insert(file.end(), parts.pixels.begin(), parts.pixels.end());
    return file;
}

Bytes MakeRaw(int width, int height)
{
    const int kByte = 1, kText = 2, kShort = 3, kLong = 4, kMosaic = 32803;
    Bytes samples;
    for (int i = 0; i < width * height; ++i)
        Put16(&samples, 1000 + i % width * (60000 / width));
    const std::vector<TiffEntry> camera = {
        {271, kText, 4, 0x4241},        // maker
        {272, kText, 4, 0x4443},        // model
        {33421, kShort, 2, 0x00020002}, // the mosaic repeats every two samples
        {33422, kByte, 4, 0x02010100},  // red, green, green, blue
        {50706, kByte, 4, 0x00000401},  // version 1.4
        {50717, kLong, 1, 65535},       // white
    };
    return MakeTiff({width, height, 1, 16, kMosaic, 1, samples, camera});
}

static uint32_t PngChecksum(const Bytes& bytes, size_t start)
{
    uint32_t sum = ~0u;
    for (size_t i = start; i < bytes.size(); ++i)
    {
        sum ^= bytes[i];
        for (int bit = 0; bit < 8; ++bit)
            sum = sum >> 1 ^ (sum & 1 ? 0xEDB88320u : 0u);
    }
    return ~sum;
}

static void PutBig32(Bytes* out, uint32_t value)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        out->push_back(uint8_t(value >> shift));
}

Bytes MakePngHeader(int width, int height, int bits, int colourType)
{
    Bytes file = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n', 0, 0, 0, 13};
    PutText(&file, "IHDR");
    PutBig32(&file, uint32_t(width));
    PutBig32(&file, uint32_t(height));
    file.insert(file.end(), {uint8_t(bits), uint8_t(colourType), 0, 0, 0});
    PutBig32(&file, PngChecksum(file, 12));
    const size_t pixels = file.size();
    PutBig32(&file, 2);
    PutText(&file, "IDAT");
    file.insert(file.end(), {0x78, 0x9C});
    PutBig32(&file, PngChecksum(file, pixels + 4));
    return file;
}

Bytes MakeGifHeader(int width, int height)
{
    Bytes file;
    PutText(&file, "GIF89a");
    file.insert(file.end(), {1, 0, 1, 0, 0x80, 0, 0});       // a screen of one pixel
    file.insert(file.end(), {0, 0, 0, 255, 255, 255});       // two colours
    file.insert(file.end(), {0x21, 0xF9, 4, 0, 0, 0, 0, 0}); // an extension
    file.insert(file.end(), {0x2C, 0, 0, 0, 0});             // a frame at the left top corner
    Put16(&file, width);
    Put16(&file, height);
    file.insert(file.end(), {0, 2, 2, 0x4C, 0x01, 0, 0x3B}); // the code for one black pixel
    return file;
}

Bytes MakeProfile(size_t size, const std::string& space)
{
    Bytes profile;
    PutBig32(&profile, uint32_t(size));
    PutText(&profile, "none");
    profile.insert(profile.end(), {2, 0x10, 0, 0});
    PutText(&profile, "mntr" + space + "XYZ ");
    profile.resize(36);
    PutText(&profile, "acsp");
    profile.resize(68);
    for (uint32_t white : {0x0000F6D6u, 0x00010000u, 0x0000D32Du})
        PutBig32(&profile, white);
    profile.resize(size);
    for (size_t i = 132; i < size; ++i)
        profile[i] = uint8_t(i * 31);
    return profile;
}
