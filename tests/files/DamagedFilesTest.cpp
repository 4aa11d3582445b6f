#include "files/ImageFile.h"

#include "files/ImageFileText.h"
#include "tests/support/TestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace
{

struct SoundFile
{
    const char* name;
    bool whole;  // every sample has a checksum
    int noticed; // of 200 altered files, half of them altered in the first forty bytes
};
const SoundFile kSoundFiles[] = {{"a.png", true, 200},  {"a.tif", false, 95},
                                 {"a.jpg", false, 100}, {"a.bmp", false, 90},
                                 {"a.ppm", false, 35},  {"a.webp", false, 120}};

// A picture of every format, as the program writes it.
struct DamagedFiles : testing::TestWithParam<SoundFile>
{
    const TempFolder folder;
    const TestPicture picture = ScenePicture(64, 48, 3, 8, 0);
    std::string path = folder.File(GetParam().name);
    Bytes contents;

    void SetUp() override
    {
        ASSERT_TRUE(Save(picture, path).written);
        contents = ReadBytes(path);
        // Our own files have their directory at the end: nothing is left of them without it.
        if (std::string(GetParam().name) == "a.tif")
            contents = MakeTiff({64, 48, 3, 8, 2, 1, Bytes(64 * 48 * 3, 99)});
        folder.Write(GetParam().name, contents);
    }
    Bytes CutAt(size_t size) const
    {
        return Bytes(contents.begin(), contents.begin() + std::ptrdiff_t(size));
    }
};

TEST_P(DamagedFiles, AreRefusedWhereverTheyEnd)
{
    const LoadedPair sound(path);
    ASSERT_FALSE(sound.failed) << LoadReportText(sound.report);
    EXPECT_TRUE(sound.report.notes.empty());
    for (size_t size = 0; size < contents.size(); size += 1 + contents.size() / 53)
    {
        const LoadedPair cut(folder.Write(std::string("cut-") + GetParam().name, CutAt(size)));
        EXPECT_TRUE(cut.failed) << size << " of " << contents.size();
        EXPECT_EQ(cut.problem, LoadProblem::Damaged) << size;
        EXPECT_NE(cut.report.detail.find("ends"), std::string::npos)
            << size << ": " << cut.report.detail;
        EXPECT_EQ(cut.picture->data, nullptr);
    }
    const Bytes nearly = CutAt(contents.size() - 1);
    EXPECT_TRUE(LoadedPair(folder.Write(std::string("near-") + GetParam().name, nearly)).failed);
}

TEST_P(DamagedFiles, GiveWhatIsThereIfAskedTo)
{
    const LoadedPair sound(path),
        cut(folder.Write(std::string("cut-") + GetParam().name, CutAt(contents.size() * 7 / 10)),
            {true, 500});
    ASSERT_FALSE(cut.failed) << LoadReportText(cut.report);
    EXPECT_TRUE(cut.report.damaged);
    ASSERT_FALSE(cut.report.notes.empty());
    EXPECT_EQ(cut.report.notes[0].find("damaged, "), 0u) << cut.report.notes[0];
    const std::string name = GetParam().name;
    const int first = name == "a.bmp" ? 47 : 0; // which row comes first in the file
    for (int x = 0; x < 64; ++x)
        EXPECT_EQ(cut.picture.At(x, first, 1), sound.picture.At(x, first, 1)) << x;
}

// No format but PNG would notice every one of these. What is read has the size that the file says.
TEST_P(DamagedFiles, WithAlteredBytesAreRefusedOrWhole)
{
    std::mt19937 random(5);
    const LoadedPair sound(path);
    int refused = 0;
    for (int i = 0; i < 200; ++i)
    {
        Bytes altered = contents;
        for (int change = 0; change < 3; ++change)
            altered[random() % (i % 2 ? size_t(40) : altered.size())] ^=
                uint8_t(1u << random() % 8);
        const LoadedPair pair(folder.Write(GetParam().name, altered));
        EXPECT_EQ(pair.failed, pair.picture->data == nullptr);
        refused += pair.failed;
        if (!pair.failed && GetParam().whole)
            ExpectSamePicture(pair.picture, sound.picture);
    }
    EXPECT_GE(refused, GetParam().noticed);
}

INSTANTIATE_TEST_SUITE_P(Formats, DamagedFiles, testing::ValuesIn(kSoundFiles),
                         [](const auto& row) { return std::string(row.param.name).substr(2); });

TEST(ReportOfDamage, TellsHowFarThePictureGoes)
{
    const TempFolder folder;
    const Bytes tiff = MakeTiff({10, 100, 3, 8, 2, 1, Bytes(3000, 7)});
    const Bytes cut(tiff.begin(), tiff.end() - 1170);
    const LoadedPair pair(folder.Write("a.tif", cut));
    EXPECT_EQ(LoadReportText(pair.report),
              "the file is damaged: the file ends after 61 % of the picture");
    EXPECT_EQ(pair.report.percent, 61);
}

TEST(LargePictures, AreReadUpToTheLimitThatIsSet)
{
    const TempFolder folder;
    const std::string path =
        folder.Write("a.tif", MakeTiff({1200, 1000, 1, 8, 1, 1, Bytes(1200000)}));
    EXPECT_EQ(LoadedPair(path, {false, 1}).problem, LoadProblem::OverLimit);
    EXPECT_FALSE(LoadedPair(path, {false, 2}).failed);
}

// Written as the file has it, what is seen comes from dividing by the alpha.
TEST(Alpha, IsTakenOutOfColoursThatWereMultipliedByIt)
{
    const TempFolder folder;
    const TiffEntry associated = {338, 3, 1, 1}, separate = {338, 3, 1, 2};
    const Bytes pixels = {50, 100, 20, 100, 0, 0, 0, 0};
    const LoadedPair undone(
        folder.Write("a.tif", MakeTiff({2, 1, 4, 8, 2, 1, pixels, {associated}})));
    const LoadedPair as(folder.Write("b.tif", MakeTiff({2, 1, 4, 8, 2, 1, pixels, {separate}})));
    ASSERT_FALSE(undone.failed || as.failed);
    const int expected[] = {51, 255, 128}; // blue, green, red, of 255 at alpha 100
    for (int c = 0; c < 3; ++c)
    {
        EXPECT_EQ(undone.picture.At(0, 0, c), expected[c]) << c;
        EXPECT_EQ(as.picture.At(0, 0, c), pixels[size_t(2 - c)]) << c;
        EXPECT_EQ(undone.picture.At(1, 0, c), 0) << c;
    }
    EXPECT_EQ(undone.alpha.At(0, 0), 100);
}

TEST(Alpha, OfSixteenBitGreysKeepsThem)
{
    const TempFolder folder;
    const LoadedPair pair(
        folder.Write("a.tif", MakeTiff({1, 1, 2, 16, 1, 1, {0x34, 0x12, 0x78, 0x56}})));
    ASSERT_FALSE(pair.failed);
    ExpectSamePicture(pair.picture, FlatPicture(1, 1, 16, {0x1234, 0x1234, 0x1234}));
    ExpectSamePicture(pair.alpha, FlatPicture(1, 1, 16, {0x5678}));
}

TEST(Inks, BecomeTheColoursThatTheyLetThrough)
{
    const TempFolder folder;
    const LoadedPair pair(
        folder.Write("a.tif", MakeTiff({2, 1, 4, 8, 5, 1, {255, 0, 0, 0, 0, 51, 102, 51}})));
    ASSERT_FALSE(pair.failed) << LoadReportText(pair.report);
    const int expected[2][3] = {{255, 255, 0}, {122, 163, 204}}; // blue, green, red
    for (int x = 0; x < 2; ++x)
        for (int c = 0; c < 3; ++c)
            EXPECT_EQ(pair.picture.At(x, 0, c), expected[x][c]) << x << ", " << c;
    EXPECT_EQ(pair.report.notes.size(), 1u);
}

// A chain of two pages: a picture of 1 x 1 before one of 2 x 1.
TEST(Pages, GiveTheLargestOfThemAndANote)
{
    const TempFolder folder;
    Bytes file = MakeTiff({1, 1, 1, 8, 1, 1, {77}});
    const Bytes second = MakeTiff({2, 1, 1, 8, 1, 1, {11, 22}});
    const size_t directory = 8, entries = 10, start = file.size() + file.size() % 2;
    file.resize(start);
    file[directory + 2 + 12 * entries] = uint8_t(start + directory);
    file.insert(file.end(), second.begin(), second.end());
    uint8_t* strip = &file[start + directory + 2 + 12 * 5 + 8]; // the offset of its pixels
    strip[1] = uint8_t((strip[0] + start) >> 8);
    strip[0] = uint8_t(strip[0] + start);
    const LoadedPair pair(folder.Write("a.tif", file));
    ASSERT_FALSE(pair.failed) << LoadReportText(pair.report);
    ASSERT_EQ(pair.picture->width, 2);
    EXPECT_EQ(pair.picture.At(1, 0), 22);
    ASSERT_EQ(pair.report.notes.size(), 1u);
    EXPECT_EQ(pair.report.notes[0], "the file has 2 pages; page 2, the largest, was read");
    file.resize(start + 4); // the second page is gone
    EXPECT_TRUE(LoadedPair(folder.Write("b.tif", file)).failed);
}

void PutPngChunk(Bytes* file, const std::string& type, const Bytes& contents)
{
    Bytes chunk(type.begin(), type.end());
    chunk.insert(chunk.end(), contents.begin(), contents.end());
    const uint32_t sum = PngChecksum(chunk, 0), length = uint32_t(contents.size());
    for (int shift = 24; shift >= 0; shift -= 8)
    {
        chunk.push_back(uint8_t(sum >> shift));
        chunk.insert(chunk.begin() + (24 - shift) / 8, uint8_t(length >> shift));
    }
    const std::ptrdiff_t kBehindHeader = 33;
    file->insert(file->begin() + kBehindHeader, chunk.begin(), chunk.end());
}

TEST(PngFiles, AreTurnedAndReadWithTheGammaThatTheirOtherChunksLeave)
{
    const TempFolder folder;
    const std::string plain = folder.File("a.png");
    const TestPicture picture = ScenePicture(20, 10, 3, 8, 0);
    ASSERT_TRUE(Save(picture, plain).written);
    const Bytes contents = ReadBytes(plain);
    const Bytes gamma = {0, 1, 0x86, 0xA0}; // linear light

    Bytes bright = contents;
    PutPngChunk(&bright, "gAMA", gamma);
    EXPECT_GT(LoadedPair(folder.Write("b.png", bright)).picture.At(5, 5, 1), picture.At(5, 5, 1));
    Bytes profiled = bright;
    PutPngChunk(&profiled, "iCCP", {'x', 0, 0, 1, 2, 3});
    ExpectSamePicture(LoadedPair(folder.Write("c.png", profiled)).picture, picture);

    Bytes lying = contents;
    PutPngChunk(&lying, "eXIf", {'M', 'M', 0, 42, 0, 0, 0, 8, 0, 1, 1, 0x12, 0,
                                 3,   0,   0, 0,  1, 0, 6, 0, 0, 0, 0, 0,    0});
    const LoadedPair upright(folder.Write("d.png", lying));
    ASSERT_EQ(upright.picture->width, 10);
    EXPECT_EQ(upright.picture.At(9, 0, 1), picture.At(0, 0, 1));
}

} // namespace
