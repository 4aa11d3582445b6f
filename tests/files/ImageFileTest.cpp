#include "files/ImageFile.h"

#include "files/ImageFileText.h"
#include "tests/support/TestFiles.h"

#include <FreeImage.h>
#include <gtest/gtest.h>

#ifndef _WIN32
#include <sys/resource.h>
#endif

namespace
{

// 2 x 2, top row: red, green; bottom row: blue, white. As blue, green, red.
const Bytes kTopRow = {0, 0, 255, 0, 255, 0}, kBottomRow = {255, 0, 0, 255, 255, 255};

TestPicture FourColours()
{
    return PictureOf(2, 2, 3, 8,
                     [](int x, int y, int c) {
                         return y == 0 ? kTopRow[size_t(3 * x + c)] : kBottomRow[size_t(3 * x + c)];
                     });
}

Bytes Joined(std::initializer_list<Bytes> parts)
{
    Bytes all;
    for (const Bytes& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

TEST(Loading, ShowsTheTopRowFirstInWhateverOrderTheFileHasThem)
{
    const TempFolder folder;
    const Bytes padding = {0, 0};
    const std::string upwards = folder.Write(
        "up.bmp", MakeBmp({2, 2, 24, {}, Joined({kBottomRow, padding, kTopRow, padding})}));
    const std::string downwards = folder.Write(
        "down.bmp", MakeBmp({2, -2, 24, {}, Joined({kTopRow, padding, kBottomRow, padding})}));
    const std::string tiff = folder.Write(
        "a.tif", MakeTiff({2, 2, 3, 8, 2, 1, {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255}}));
    for (const std::string& file : {upwards, downwards, tiff})
        ExpectSamePicture(LoadedPair(file).picture, FourColours());

    const Bytes redGreenBlue = {0x34, 0x12, 0x78, 0x56, 0xBC, 0x9A};
    const LoadedPair deep(folder.Write("deep.tif", MakeTiff({1, 1, 3, 16, 2, 1, redGreenBlue})));
    EXPECT_EQ(deep.alpha->data, nullptr);
    ExpectSamePicture(deep.picture, FlatPicture(1, 1, 16, {0x9ABC, 0x5678, 0x1234}));
    const LoadedPair veiled(folder.Write(
        "alpha.tif", MakeTiff({1, 1, 4, 16, 2, 1, Joined({redGreenBlue, {0xEF, 0xBE}})})));
    ExpectSamePicture(veiled.picture, deep.picture);
    ExpectSamePicture(veiled.alpha, FlatPicture(1, 1, 16, {0xBEEF}));
}

TEST(Loading, GivesTrueGreysAlsoWhereZeroMeansWhite)
{
    const TempFolder folder;
    const Bytes samples8 = {0, 10, 255}, samples16 = {0, 0, 0x34, 0x12, 0xFF, 0xFF};
    const struct
    {
        int bits, photometric;
        const Bytes& samples;
        double greys[3];
    } cases[] = {{8, 0, samples8, {255, 245, 0}},
                 {16, 0, samples16, {0xFFFF, 0xEDCB, 0}},
                 {16, 1, samples16, {0, 0x1234, 0xFFFF}}};
    for (const auto& c : cases)
    {
        const LoadedPair pair(
            folder.Write("a.tif", MakeTiff({3, 1, 1, c.bits, c.photometric, 1, c.samples})));
        const TestPicture expected =
            PictureOf(3, 1, 1, c.bits, [&](int x, int, int) { return c.greys[x]; });
        ExpectSamePicture(pair.picture, expected);
        // ... and they stay what they are when such a file is the source of a saved one.
        const std::string target = folder.File("out.tif");
        ASSERT_TRUE(Save(pair.picture, target, kFormatTiff, folder.File("a.tif")).written);
        ExpectSamePicture(LoadedPair(target).picture, expected);
    }
}

TEST(Loading, TakesTheFourthByteOfABmpForAlphaOnlyIfItIsUsed)
{
    const TempFolder folder;
    const LoadedPair unused(
        folder.Write("x.bmp", MakeBmp({2, 1, 32, {}, {1, 2, 3, 0, 4, 5, 6, 0}})));
    const LoadedPair used(folder.Write("a.bmp", MakeBmp({2, 1, 32, {}, {1, 2, 3, 0, 4, 5, 6, 9}})));
    ASSERT_FALSE(unused.failed || used.failed);
    EXPECT_EQ(unused.alpha->data, nullptr);
    ASSERT_NE(used.alpha->data, nullptr);
    EXPECT_EQ(used.alpha.At(1, 0), 9);
    EXPECT_EQ(used.picture.At(1, 0, 2), 6);
}

// A file with one of the newer kinds of headers, which are longer.
static Bytes WithHeader(uint8_t length, Bytes file)
{
    file[10] = uint8_t(file[10] + length - 40); // none of these comes to 256
    file[14] = length;
    file.insert(file.begin() + 54, size_t(length) - 40, 77);
    return file;
}

TEST(Loading, ReadsABmpWhateverTheLengthOfItsHeader)
{
    const TempFolder folder;
    const Bytes colour = MakeBmp({2, 1, 32, {}, {1, 2, 3, 0, 4, 5, 6, 9}});
    Bytes ramp;
    for (int i = 0; i < 256; ++i)
        ramp.insert(ramp.end(), {uint8_t(i), uint8_t(i), uint8_t(i), 0});
    Bytes downwards; // black last
    for (int i = 255; i >= 0; --i)
        downwards.insert(downwards.end(), ramp.begin() + 4 * i, ramp.begin() + 4 * i + 4);
    Bytes packed = MakeBmp({4, 1, 8, ramp, {3, 200, 1, 9, 0, 1}}); // three times 200, 9, the end
    packed[30] = 1;
    for (const Bytes& file : {colour, MakeBmp({4, 1, 8, ramp, {0, 1, 254, 255}}),
                              MakeBmp({4, 1, 8, downwards, {0, 1, 254, 255}}), packed})
        for (const uint8_t length : {52, 56, 108, 124})
        {
            const LoadedPair expected(folder.Write("short.bmp", file));
            const LoadedPair longer(folder.Write("long.bmp", WithHeader(length, file)));
            ASSERT_FALSE(expected.failed || longer.failed) << int(length);
            ExpectSamePicture(longer.picture, expected.picture);
        }
    for (const size_t bytes : {size_t(60), size_t(300)}) // cut off in the header, in the palette
    {
        Bytes cut = WithHeader(108, packed);
        cut.resize(bytes);
        EXPECT_TRUE(LoadedPair(folder.Write("cut.bmp", cut)).failed) << bytes;
    }
}

TEST(Loading, OpensAGifOfGreysAndNoOther)
{
    const TempFolder folder;
    FIBITMAP* bitmap = FreeImage_Allocate(4, 4, 8);
    FreeImage_GetScanLine(bitmap, 3)[1] = 200;
    FreeImage_Save(FIF_GIF, bitmap, folder.File("grey.gif").c_str(), 0);
    FreeImage_GetPalette(bitmap)[5] = {1, 2, 3, 0};
    FreeImage_Save(FIF_GIF, bitmap, folder.File("colour.gif").c_str(), 0);
    FreeImage_Unload(bitmap);
    const LoadedPair grey(folder.File("grey.gif")), colour(folder.File("colour.gif"));
    ASSERT_FALSE(grey.failed);
    EXPECT_EQ(grey.picture.At(1, 0), 200);
    EXPECT_EQ(colour.problem, LoadProblem::KindNotSupported);
}

// Raw photographs look like TIFF files, so their names have to say what they are.
TEST(Loading, TakesAPhotographForCameraRawByItsEnding)
{
    const TempFolder folder;
    const Bytes raw = MakeRaw(64, 48);
    for (const char* name : {"a.dng", "A.B.DNG", "a.nEf"})
    {
        SCOPED_TRACE(name);
        const LoadedPair photo(folder.Write(name, raw));
        ASSERT_FALSE(photo.failed);
        ASSERT_EQ(photo.picture->components * photo.picture->bitsPerComponent, 48);
        EXPECT_EQ(photo.picture->width, 64);
        EXPECT_EQ(photo.picture->height, 48);
        EXPECT_LT(3 * photo.picture.At(8, 20, 1), photo.picture.At(56, 20, 1));
    }
    for (const char* name : {"a.tif", "dng", "a.dng.tif"})
        EXPECT_EQ(LoadedPair(folder.Write(name, raw)).picture->components, 1) << name;
    const TestPicture picture = ScenePicture(20, 20, 3, 8, 0);
    ASSERT_TRUE(Save(picture, folder.File("no-raw.dng"), kFormatPng).written);
    ExpectSamePicture(LoadedPair(folder.File("no-raw.dng")).picture, picture);
}

// Nothing packs the samples of portable maps: a file that is shorter than they are has lost some.
TEST(Loading, OpensPortableMapsThatHaveTheirSamples)
{
    const TempFolder folder;
    const struct
    {
        const char* header;
        size_t bytes; // of samples
        LoadProblem problem;
    } cases[] = {
        {"P5 30 20 255\n", 600, LoadProblem::None},
        {"P6 30 20 255\n", 1800, LoadProblem::None},
        {"P5 30 20 65535\n", 1200, LoadProblem::None},
        {"P5 300 200 255\n", 40, LoadProblem::DecoderFailed},
        {"P6 300 200 255\n", 60000, LoadProblem::DecoderFailed},
        {"P5 300 200 65535\n", 60000, LoadProblem::DecoderFailed},
        {"P6 300 200 65535\n", 180000, LoadProblem::DecoderFailed},
        {"P3 300 200 255\n", 40, LoadProblem::DecoderFailed},
        {"P6 60000 60000 255\n", 40, LoadProblem::TooLarge},
    };
    for (const auto& c : cases)
    {
        const std::string header = c.header;
        Bytes file(header.begin(), header.end());
        file.resize(file.size() + c.bytes, '1');
        EXPECT_EQ(LoadedPair(folder.Write("a.pnm", file)).problem, c.problem) << header;
    }
}

struct BadFile
{
    const char* name; // of the file
    Bytes contents;
    LoadProblem problem;
};

Bytes SomeBytes(size_t count)
{
    return Bytes(count, 0x5A);
}

std::vector<BadFile> BadFiles()
{
    const Bytes twoColours = {0, 0, 0, 0, 255, 255, 255, 0};
    const auto kind = LoadProblem::KindNotSupported;
    const auto large = LoadProblem::TooLarge;
    const auto damaged = LoadProblem::DecoderFailed;
    Bytes halfPng = MakePngHeader(40, 40, 8, 2);
    halfPng.resize(halfPng.size() - 9);
    return {
        {"oneBit.bmp", MakeBmp({8, 1, 1, twoColours, SomeBytes(4)}), kind},
        {"fourBits.bmp", MakeBmp({8, 1, 4, Bytes(64, 7), SomeBytes(4)}), kind},
        {"fourBitsLong.bmp", WithHeader(124, MakeBmp({8, 1, 4, Bytes(64, 7), SomeBytes(4)})), kind},
        {"palette.bmp", MakeBmp({4, 1, 8, Bytes(1024, 7), SomeBytes(4)}), kind},
        {"packed.bmp", MakeBmp({2, 1, 16, {}, SomeBytes(4)}), kind},
        {"float.tif", MakeTiff({2, 1, 1, 32, 1, 3, SomeBytes(8)}), kind},
        {"floatColour.tif", MakeTiff({1, 1, 3, 32, 2, 3, SomeBytes(12)}), kind},
        {"signed.tif", MakeTiff({2, 1, 1, 16, 1, 2, SomeBytes(4)}), kind},
        {"long.tif", MakeTiff({2, 1, 1, 32, 1, 1, SomeBytes(8)}), kind},
        {"oneBit.tif", MakeTiff({8, 1, 1, 1, 1, 1, SomeBytes(1)}), kind},
        {"bomb.bmp", MakeBmp({60000, 60000, 24, {}, {}}), large},
        {"bomb.tif", MakeTiff({60000, 60000, 3, 8, 2, 1, {}}), large},
        {"deepBomb.tif", MakeTiff({30000, 30000, 3, 16, 2, 1, {}}), large},
        {"bomb.png", MakePngHeader(60000, 60000, 8, 2), large},
        {"alphaBomb.png", MakePngHeader(60000, 60000, 16, 6), large},
        {"bomb.gif", MakeGifHeader(65535, 65535), large},
        {"cut.png", halfPng, damaged},
        {"empty.png", {}, damaged},
        {"garbage.jpg", SomeBytes(5000), damaged},
        {"garbage.tif", SomeBytes(5000), damaged},
        {"garbage", SomeBytes(5000), LoadProblem::UnknownFormat},
        {"empty", {}, LoadProblem::UnknownFormat},
    };
}

TEST(FilesThatDoNotOpen, SayWhyAndGiveNoPicture)
{
    const TempFolder folder;
    for (const BadFile& file : BadFiles())
    {
        SCOPED_TRACE(file.name);
        const LoadedPair pair(folder.Write(file.name, file.contents));
        EXPECT_TRUE(pair.failed);
        EXPECT_EQ(pair.problem, file.problem) << LoadProblemText(pair.problem);
        EXPECT_EQ(pair.picture->data, nullptr);
        EXPECT_EQ(pair.alpha->data, nullptr);
    }
    EXPECT_EQ(LoadedPair(folder.File("missing.png")).problem, LoadProblem::NoSuchFile);
    EXPECT_EQ(LoadedPair(folder.File("no/such/folder.png")).problem, LoadProblem::NoSuchFile);
    EXPECT_EQ(LoadedPair(folder.path.u8string()).problem, LoadProblem::CannotOpen);
}

#if !defined(_WIN32) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
// The largest of the claims above that FreeImage would try to meet takes four gigabytes.
TEST(FilesThatClaimTooMuch, TakeNoMemory)
{
    const TempFolder folder;
    for (const BadFile& file : BadFiles())
        if (file.problem == LoadProblem::TooLarge)
            folder.Write(file.name, file.contents);
    rusage before = {}, after = {};
    getrusage(RUSAGE_SELF, &before);
    for (const auto& entry : std::filesystem::directory_iterator(folder.path))
        EXPECT_EQ(LoadedPair(entry.path().u8string()).problem, LoadProblem::TooLarge);
    getrusage(RUSAGE_SELF, &after);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 64 * 1024); // kilobytes
}
#endif

// Every prefix of a file is either read, wholly or in part, or refused; the sanitizers watch.
TEST(TruncatedFiles, AreReadAsFarAsTheyGoOrRefused)
{
    const TempFolder folder;
    const TestPicture picture = ScenePicture(24, 18, 3, 8, 0),
                      alpha = ScenePicture(24, 18, 1, 8, 0);
    for (const char* name : {"a.png", "a.tif", "a.jpg", "a.bmp"})
    {
        SCOPED_TRACE(name);
        const std::string whole = folder.File(name);
        ASSERT_TRUE(Save(picture, whole, kFormatFromName, "", &alpha).written);
        const Bytes contents = ReadBytes(whole);
        for (size_t size = 0; size < contents.size(); size += 1 + contents.size() / 97)
        {
            const Bytes part(contents.begin(), contents.begin() + std::ptrdiff_t(size));
            const LoadedPair pair(folder.Write(std::string("cut-") + name, part));
            EXPECT_EQ(pair.failed, pair.picture->data == nullptr);
            if (pair.failed)
                continue;
            EXPECT_EQ(pair.picture->width, 24);
            EXPECT_EQ(pair.picture->height, 18);
        }
    }
}

TEST(FileContents, DecideAgainstTheName)
{
    const TempFolder folder;
    const TestPicture picture = ScenePicture(20, 20, 3, 8, 0);
    for (const char* name : {"really-a-png.jpg", "no-extension", "unknown.xyz"})
    {
        ASSERT_TRUE(Save(picture, folder.File(name), kFormatPng).written);
        ExpectSamePicture(LoadedPair(folder.File(name)).picture, picture);
    }
}

TEST(FileNames, TellTheFormatByTheirExtension)
{
    const std::pair<const char*, FormatId> cases[] = {
        {"a.bmp", kFormatBmp},       {"dir.png/a.JPG", kFormatJpeg}, {"a.jpeg", kFormatJpeg},
        {"a.b.tiff", kFormatTiff},   {"a.Tif", kFormatTiff},         {"a.png", kFormatPng},
        {"a.gif", kFormatGif},       {"a.psd", kFormatFromName}, // its decoder is not safe
        {"a.docx", kFormatFromName}, {"", kFormatFromName}};
    for (const auto& [name, format] : cases)
        EXPECT_EQ(FormatFromFileName(name), format) << name;
}

} // namespace
