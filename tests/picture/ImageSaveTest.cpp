#include "picture/ImageFile.h"
#include "picture/SystemFiles.h"

#include "tests/support/TestFiles.h"

#include <FreeImage.h>
#include <gtest/gtest.h>

#include <cerrno>

#ifndef _WIN32
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#endif

namespace fs = std::filesystem;

namespace
{

const char* const kNames[] = {"a.bmp", "a.jpg", "a.tif", "a.png"};

struct LosslessCase
{
    const char* file;
    int components, bits;
    bool alpha;
};

TEST(SavedFiles, OpenAgainAsTheSamePair)
{
    const LosslessCase cases[] = {
        {"a.bmp", 1, 8, false},  {"b.bmp", 3, 8, false},  {"c.bmp", 3, 8, true},
        {"a.tif", 1, 8, false},  {"b.tif", 3, 8, false},  {"c.tif", 3, 8, true},
        {"d.tif", 1, 16, false}, {"e.tif", 3, 16, false}, {"f.tif", 3, 16, true},
        {"a.png", 1, 8, false},  {"b.png", 3, 8, false},  {"c.png", 3, 8, true},
        {"d.png", 1, 16, false}, {"e.png", 3, 16, false}, {"f.PNG", 3, 16, true},
    };
    const TempFolder folder;
    for (const LosslessCase& row : cases)
    {
        SCOPED_TRACE(row.file);
        const TestPicture picture = ScenePicture(37, 23, row.components, row.bits, 0);
        const TestPicture alpha = ScenePicture(37, 23, 1, row.bits, 1, 5);
        const std::string file = folder.File(row.file);
        const SaveReport report =
            Save(picture, file, kFormatFromName, "", row.alpha ? &alpha : nullptr);
        ASSERT_TRUE(report.written) << SaveReportText(report);
        const LoadedPair pair(file);
        ExpectSamePicture(pair.picture.pic, picture.pic);
        ASSERT_EQ(pair.alpha.pic.data != nullptr, row.alpha);
        if (row.alpha)
            ExpectSamePicture(pair.alpha.pic, alpha.pic);
    }
    EXPECT_EQ(folder.FileCount(), int(std::size(cases))); // and nothing beside them
}

// A format that is simple enough to be read by eye: text header, then big-endian red, green, blue.
TEST(SavedFiles, HoldSixteenBitsInTheRightOrder)
{
    const TempFolder folder;
    const std::string file = folder.File("a.ppm");
    ASSERT_TRUE(Save(FlatPicture(1, 1, 16, {0x9ABC, 0x5678, 0x1234}), file, FIF_PPMRAW).written);
    const Bytes bytes = ReadBytes(file);
    ASSERT_GE(bytes.size(), 6u);
    EXPECT_EQ(Bytes(bytes.end() - 6, bytes.end()), (Bytes{0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC}));
}

TEST(Jpeg, DropsTheAlphaPlaneAndKeepsThePicture)
{
    const TempFolder folder;
    const TestPicture picture = FlatPicture(32, 32, 8, {40, 90, 200}), alpha(32, 32, 1, 8);
    const SaveReport report = Save(picture, folder.File("a.jpg"), kFormatFromName, "", &alpha);
    EXPECT_TRUE(report.written);
    EXPECT_TRUE(report.alphaDropped);
    const LoadedPair pair(folder.File("a.jpg"));
    EXPECT_EQ(pair.alpha.pic.data, nullptr);
    ExpectSamePicture(pair.picture.pic, picture.pic, 2); // a flat colour only rounds
}

TEST(SixteenBits, AreNotPressedIntoBmpOrJpeg)
{
    const TempFolder folder;
    for (const char* name : {"a.bmp", "a.jpg"})
        for (int components : {1, 3})
        {
            folder.Write(name, {1, 2, 3});
            const SaveReport report = Save(TestPicture(8, 8, components, 16), folder.File(name));
            EXPECT_FALSE(report.written);
            EXPECT_EQ(report.problem, SaveProblem::DepthNotHeld);
            EXPECT_EQ(ReadBytes(folder.File(name)), (Bytes{1, 2, 3}));
        }
}

class JpegQuality : public testing::Test
{
protected:
    TempFolder folder;
    const TestPicture picture = ScenePicture(120, 90, 3, 8, 0);
    const int before = g_jpegQuality;

    ~JpegQuality() override { g_jpegQuality = before; }
    Bytes FileAt(int quality)
    {
        g_jpegQuality = quality;
        EXPECT_TRUE(Save(picture, folder.File("q.jpg")).written);
        return ReadBytes(folder.File("q.jpg"));
    }
};

TEST_F(JpegQuality, IsNinetyFiveWhenUnset)
{
    EXPECT_EQ(FileAt(0), FileAt(95));
    EXPECT_EQ(FileAt(-7), FileAt(95));
}

TEST_F(JpegQuality, GrowsTheFileAndEndsAtOneHundred)
{
    EXPECT_LT(FileAt(1).size(), FileAt(40).size());
    EXPECT_LT(FileAt(40).size(), FileAt(75).size());
    EXPECT_LT(FileAt(75).size(), FileAt(95).size());
    EXPECT_LT(FileAt(95).size(), FileAt(100).size());
    EXPECT_EQ(FileAt(101), FileAt(100)); // a slider may step one past its end
    EXPECT_EQ(FileAt(256), FileAt(100)); // and this is no number of another option
}

TEST(SaveErrors, AreThrownForFormatsAndSourcesOnly)
{
    const TempFolder folder;
    const TestPicture picture = ScenePicture(16, 16, 3, 8, 0), grey = FlatPicture(16, 16, 8, {9});
    const std::string good = folder.File("good.png"), target = folder.File("out.tif");
    ASSERT_TRUE(Save(picture, good).written);
    folder.Write("garbage.xyz", Bytes(200, 7));
    folder.Write("garbage.png", Bytes(200, 7));
    folder.Write("grey.gif", MakeGifHeader(1, 1));
    folder.Write("bomb.bmp", MakeBmp({60000, 60000, 24, {}, {}}));

    const auto save = [&](const std::string& to, int format, const std::string& source)
    { return Save(picture, to, format, source); };
    EXPECT_THROW(save(folder.File("out.xyz"), kFormatFromName, good), UnsupportedImageFormat);
    EXPECT_THROW(save(folder.File("out.gif"), kFormatFromName, good), UnsupportedImageFormat);
    EXPECT_THROW(save(target, kFormatGif, good), UnsupportedImageFormat);
    EXPECT_THROW(save(target, FIF_RAW, good), UnsupportedImageFormat); // read, but never written
    EXPECT_THROW(save(target, 999, good), UnsupportedImageFormat);
    EXPECT_THROW(save(target, kFormatTiff, folder.File("garbage.xyz")), UnsupportedImageFormat);
    EXPECT_THROW(save(target, kFormatTiff, folder.File("none.xyz")), UnsupportedImageFormat);
    EXPECT_THROW(save(target, kFormatTiff, folder.File("grey.gif")), UnsupportedImageFormat);
    EXPECT_THROW(save(target, kFormatTiff, folder.File("garbage.png")), ImageReadError);
    EXPECT_THROW(save(target, kFormatTiff, folder.File("none.png")), ImageReadError);
    EXPECT_THROW(save(target, kFormatTiff, folder.File("bomb.bmp")), ImageReadError);
    EXPECT_FALSE(fs::exists(fs::u8path(target)));

    // No picture: silent, whatever else is wrong.
    EXPECT_EQ(Save(TestPicture(), folder.File("out.xyz"), kFormatFromName, good).problem,
              SaveProblem::NoPicture);
    EXPECT_EQ(Save(TestPicture(4, 4, 1, 32), target).problem, SaveProblem::NoPicture);
    EXPECT_STREQ(UnsupportedImageFormat().what(), "");
    EXPECT_STREQ(ImageReadError().what(), "");
}

// What a failed save must leave alone: the old contents, and a folder without left-overs.
class FailedSave : public testing::Test
{
protected:
    TempFolder folder;
    const TestPicture picture = ScenePicture(200, 150, 3, 8, 0);
    const Bytes old = {'o', 'l', 'd'};

    void ExpectUntouched(const std::string& name, int files)
    {
        EXPECT_EQ(ReadBytes(folder.File(name)), old);
        EXPECT_EQ(folder.FileCount(), files);
    }
};

#ifndef _WIN32
TEST_F(FailedSave, OnAFullDiskKeepsTheOldFile)
{
    // A limit on file sizes fails a write as a full disk does. It also sends a signal.
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit unlimited = {};
    getrlimit(RLIMIT_FSIZE, &unlimited);
    for (const char* name : kNames)
    {
        folder.Write(name, old);
        for (rlim_t bytes : {0, 10, 3000})
        {
            const rlimit limit = {bytes, unlimited.rlim_max};
            setrlimit(RLIMIT_FSIZE, &limit);
            const SaveReport report = Save(picture, folder.File(name));
            setrlimit(RLIMIT_FSIZE, &unlimited);
            EXPECT_FALSE(report.written) << name << " " << bytes;
            EXPECT_EQ(report.problem, SaveProblem::CannotWrite) << SaveReportText(report);
            EXPECT_EQ(report.systemError, EFBIG);
            ExpectUntouched(name, 1);
        }
        EXPECT_TRUE(Save(picture, folder.File(name)).written); // nothing sticks
        fs::remove(folder.File(name));
    }
    std::signal(SIGXFSZ, oldHandler);
}

TEST_F(FailedSave, OnADeviceDoesNotReplaceIt)
{
    ASSERT_EQ(mkfifo(folder.File("pipe.png").c_str(), 0600), 0);
    EXPECT_EQ(Save(picture, folder.File("pipe.png")).problem, SaveProblem::CannotCreate);
    EXPECT_TRUE(fs::is_fifo(folder.File("pipe.png")));
}

TEST(ReplacedFile, KeepsItsPermissionsAndItsLinks)
{
    const TempFolder folder;
    const TestPicture picture = FlatPicture(9, 9, 8, {70});
    fs::create_directory(folder.path / "real");
    const std::string real = folder.Write("real/a.png", {1});
    fs::permissions(real, fs::perms(0640));
    fs::create_symlink("real/a.png", folder.path / "one.png");
    fs::create_symlink("one.png", folder.path / "two.png");
    fs::create_symlink("real/new.png", folder.path / "dangling.png");
    fs::create_symlink("loop.png", folder.path / "loop.png");

    EXPECT_TRUE(Save(picture, folder.File("two.png")).written);
    EXPECT_TRUE(fs::is_symlink(folder.path / "two.png") && fs::is_symlink(folder.path / "one.png"));
    EXPECT_EQ(fs::status(real).permissions(), fs::perms(0640));
    ExpectSamePicture(LoadedPair(real).picture.pic, picture.pic);
    EXPECT_TRUE(Save(picture, folder.File("dangling.png")).written);
    EXPECT_TRUE(fs::exists(folder.path / "real/new.png"));
    EXPECT_EQ(Save(picture, folder.File("loop.png")).systemError, ELOOP);
}
#endif

TEST_F(FailedSave, KeepsAReadOnlyFile)
{
    for (const char* name : kNames)
    {
        folder.Write(name, old);
        const auto writable =
            fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
        fs::permissions(folder.path / name, writable, fs::perm_options::remove);
        const SaveReport report = Save(picture, folder.File(name));
        EXPECT_EQ(report.problem, SaveProblem::CannotCreate);
        EXPECT_EQ(report.systemError, EACCES);
    }
    for (const char* name : kNames)
        ExpectUntouched(name, int(std::size(kNames)));
}

TEST_F(FailedSave, NeedsAFolderAndNoFolderInTheWay)
{
    folder.Write("old.png", old);
    fs::create_directory(folder.path / "folder.png");
    const SaveReport missing = Save(picture, folder.File("missing/a.png"));
    const SaveReport inTheWay = Save(picture, folder.File("folder.png"));
    EXPECT_EQ(missing.systemError, ENOENT);
    EXPECT_EQ(inTheWay.systemError, EISDIR);
    EXPECT_NE(SaveReportText(missing), SaveReportText(inTheWay));
    ExpectUntouched("old.png", 2);
}

TEST_F(FailedSave, WithABadSourceKeepsTheOldFile)
{
    folder.Write("old.png", old);
    folder.Write("bad.png", Bytes(100, 3));
    EXPECT_THROW(Save(picture, folder.File("old.png"), kFormatPng, folder.File("bad.png")),
                 ImageReadError);
    ExpectUntouched("old.png", 2);
}

TEST(Names, MayHaveAnyLetters)
{
    const TempFolder folder;
    const TestPicture picture = ScenePicture(12, 10, 3, 8, 0);
    for (const char* name : {"zażółć gęślą jaźń.png", "写真.png", "a b.c.png"})
    {
        const std::string file = folder.File(name);
        std::string savePath;
        if (SavePathFromUtf8(&savePath, file.c_str(), PathUse::Target))
        {
#ifdef _WIN32
            continue; // older Windows has no letters of other countries in its code page
#endif
            FAIL() << name;
        }
        ASSERT_TRUE(Save(picture, file).written) << name;
        ASSERT_TRUE(fs::exists(fs::u8path(file))) << name; // under this very name
        ExpectSamePicture(LoadedPair(file).picture.pic, picture.pic);
    }
}

TEST(Names, EndAtTheLengthThatSavingTakes)
{
    std::string path;
    EXPECT_FALSE(SavePathFromUtf8(&path, std::string(1023, 'a').c_str(), PathUse::Target));
    EXPECT_EQ(path.size(), 1023u);
    EXPECT_TRUE(SavePathFromUtf8(&path, std::string(1024, 'a').c_str(), PathUse::Target));
    EXPECT_TRUE(SavePathFromUtf8(&path, "", PathUse::Target));
}

TEST(SavingOverTheSource, KeepsItsProfileAndTakesTheNewPixels)
{
    const TempFolder folder;
    const std::string file = folder.File("a.png");
    const Bytes profile = MakeProfile(600, "RGB ");
    FIBITMAP* bitmap = FreeImage_Allocate(20, 20, 24);
    FreeImage_CreateICCProfile(bitmap, const_cast<uint8_t*>(profile.data()), long(profile.size()));
    ASSERT_TRUE(FreeImage_Save(FIF_PNG, bitmap, file.c_str(), 0));
    FreeImage_Unload(bitmap);
    const TestPicture picture = ScenePicture(30, 10, 3, 8, 0);
    for (int i = 0; i < 2; ++i)
        ASSERT_TRUE(Save(picture, file, kFormatFromName, file).written);
    ExpectSamePicture(LoadedPair(file).picture.pic, picture.pic);
    const Bytes saved = ReadBytes(file);
    const std::string text(saved.begin(), saved.end());
    EXPECT_NE(text.find("iCCP"), std::string::npos);
}

} // namespace
