#include "base/SystemFiles.h"
#include "files/FileReplace.h"
#include "files/ImageFile.h"
#include "files/ImageFileText.h"

#include "tests/support/TestFiles.h"

#include <FreeImage.h>
#include <gtest/gtest.h>

#ifndef _WIN32
#include <sys/xattr.h>
#endif
#include <unistd.h>

#include <cerrno>

namespace
{

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
        ExpectSamePicture(pair.picture, picture);
        ASSERT_EQ(pair.alpha->data != nullptr, row.alpha);
        if (row.alpha)
            ExpectSamePicture(pair.alpha, alpha);
    }
    EXPECT_EQ(folder.FileCount(), int(std::size(cases))); // and nothing beside them
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

TEST(JpegQuality, GrowsTheFileFromOneToOneHundred)
{
    const TempFolder folder;
    const TestPicture picture = ScenePicture(120, 90, 3, 8, 0);
    const int before = g_jpegQuality;
    const auto fileAt = [&](int quality)
    {
        g_jpegQuality = quality;
        EXPECT_TRUE(Save(picture, folder.File("q.jpg")).written);
        return ReadBytes(folder.File("q.jpg"));
    };
    size_t smaller = 0;
    for (const int quality : {1, 40, 75, 95, 100})
    {
        EXPECT_GT(fileAt(quality).size(), smaller) << quality;
        smaller = fileAt(quality).size();
    }
    // Unset is 95; a slider may step one past its end, and 256 is no number of another option.
    for (const auto& [odd, same] : {std::pair(0, 95), {-7, 95}, {101, 100}, {256, 100}})
        EXPECT_EQ(fileAt(odd), fileAt(same)) << odd;
    g_jpegQuality = before;
}

TEST(SaveErrors, AreThrownForFormatsAndSourcesOnly)
{
    const TempFolder folder;
    const TestPicture picture = ScenePicture(16, 16, 3, 8, 0);
    const std::string good = folder.File("good.png");
    ASSERT_TRUE(Save(picture, good).written);
    folder.Write("garbage.xyz", Bytes(200, 7));
    folder.Write("garbage.png", Bytes(200, 7));
    folder.Write("grey.gif", MakeGifHeader(1, 1));
    folder.Write("bomb.bmp", MakeBmp({60000, 60000, 24, {}, {}}));
    folder.Write("old.tif", {'o', 'l', 'd'});
    const int files = folder.FileCount();

    const auto save = [&](const char* to, FormatId format, const char* source)
    { return Save(picture, folder.File(to), format, folder.File(source)); };
    const struct
    {
        const char* target;
        FormatId format;
        const char* source;
    } unsupported[] = {{"out.xyz", kFormatFromName, "good.png"},
                       {"out.gif", kFormatFromName, "good.png"},
                       {"old.tif", kFormatGif, "good.png"},
                       {"old.tif", kFormatRaw, "good.png"}, // read, but never written
                       {"old.tif", FormatId(999), "good.png"},
                       {"old.tif", kFormatTiff, "garbage.xyz"},
                       {"old.tif", kFormatTiff, "none.xyz"},
                       {"old.tif", kFormatTiff, "grey.gif"}};
    for (const auto& c : unsupported)
        EXPECT_THROW(save(c.target, c.format, c.source), UnsupportedImageFormat) << c.source;
    for (const char* source : {"garbage.png", "none.png", "bomb.bmp"})
        EXPECT_THROW(save("old.tif", kFormatTiff, source), ImageReadError) << source;
    EXPECT_EQ(ReadBytes(folder.File("old.tif")), (Bytes{'o', 'l', 'd'}));
    EXPECT_EQ(folder.FileCount(), files);

    // No picture: silent, whatever else is wrong.
    EXPECT_EQ(Save(TestPicture(), folder.File("out.xyz"), kFormatFromName, good).problem,
              SaveProblem::NoPicture);
    EXPECT_EQ(Save(TestPicture(4, 4, 1, 32), folder.File("old.tif")).problem,
              SaveProblem::NoPicture);
    EXPECT_STREQ(UnsupportedImageFormat().what(), "");
    EXPECT_STREQ(ImageReadError().what(), "");
}

// Short of a full disk: what is still in memory has no file to go to when the stream is closed.
TEST(Replacing, LeavesTheOldFileWhenTheNewOneDoesNotClose)
{
    const TempFolder folder;
    const std::string target = folder.Write("old.tif", {'o', 'l', 'd'});
    std::string path;
    ASSERT_EQ(SavePathFromUtf8(&path, target.c_str(), PathUse::Target), Outcome::Done);
    for (const bool closes : {false, true})
    {
        ReplacingFile file;
        ASSERT_TRUE(BeginReplacing(&file, path.c_str()));
        std::fputs("new", file.stream);
        if (!closes)
            close(fileno(file.stream));
        EXPECT_EQ(FinishReplacing(&file, false), closes);
        EXPECT_EQ(file.error != 0, !closes);
        EXPECT_EQ(ReadBytes(target), closes ? (Bytes{'n', 'e', 'w'}) : (Bytes{'o', 'l', 'd'}));
        EXPECT_EQ(folder.FileCount(), 1) << "nothing beside it";
    }
}

// The last of three cannot take its place: the other two are what they were, which for one of them
// is nothing at all.
TEST(Replacing, MovesSeveralFilesTogetherOrNone)
{
    const TempFolder folder;
    for (const bool blocked : {true, false})
    {
        const std::string old = folder.Write("old.tif", {'o', 'l', 'd'});
        std::vector<ReplacingFile> files(3);
        const char* names[] = {"old.tif", "fresh.tif", "blocked.tif"};
        for (size_t i = 0; i < files.size(); ++i)
        {
            std::string path;
            ASSERT_EQ(SavePathFromUtf8(&path, folder.File(names[i]).c_str(), PathUse::Target),
                      Outcome::Done);
            EXPECT_EQ(CheckTarget(path.c_str()), 0);
            ASSERT_TRUE(BeginReplacing(&files[i], path.c_str()));
            std::fputs("new", files[i].stream);
            ASSERT_TRUE(CompleteReplacing(&files[i], false));
        }
        EXPECT_EQ(ReadBytes(old), (Bytes{'o', 'l', 'd'})) << "not before all are complete";
        if (blocked)
            std::filesystem::create_directories(folder.path / "blocked.tif" / "below");
        EXPECT_EQ(FinishTogether(&files), blocked ? 2 : -1);
        EXPECT_EQ(files[2].error != 0, blocked);
        EXPECT_EQ(ReadBytes(old), blocked ? (Bytes{'o', 'l', 'd'}) : (Bytes{'n', 'e', 'w'}));
        EXPECT_EQ(folder.FileCount(), blocked ? 2 : 3) << "nothing beside them";
        EXPECT_EQ(CheckTarget(folder.File("blocked.tif").c_str()), blocked ? EISDIR : 0);
        std::filesystem::remove_all(folder.path / "blocked.tif");
    }
}

#ifndef _WIN32
TEST(Replacing, KeepsWhatTheOwnerHasPutOnTheFile)
{
    const TempFolder folder;
    const std::string target = folder.Write("old.tif", {'o', 'l', 'd'});
    if (setxattr(target.c_str(), "user.rating", "five", 4, 0) != 0)
        GTEST_SKIP() << "this file system has no attributes";
    ReplacingFile file;
    ASSERT_TRUE(BeginReplacing(&file, target.c_str()));
    std::fputs("new", file.stream);
    ASSERT_TRUE(FinishReplacing(&file));
    char value[8] = {};
    EXPECT_EQ(getxattr(target.c_str(), "user.rating", value, sizeof value), 4);
    EXPECT_STREQ(value, "five");
    EXPECT_EQ(ReadBytes(target), (Bytes{'n', 'e', 'w'}));
}
#endif

TEST(Names, EndAtTheLengthThatSavingTakes)
{
    std::string path;
    EXPECT_EQ(SavePathFromUtf8(&path, std::string(1023, 'a').c_str(), PathUse::Target),
              Outcome::Done);
    EXPECT_EQ(path.size(), 1023u);
    EXPECT_EQ(SavePathFromUtf8(&path, std::string(1024, 'a').c_str(), PathUse::Target),
              Outcome::Failed);
    EXPECT_EQ(SavePathFromUtf8(&path, "", PathUse::Target), Outcome::Failed);
}

} // namespace
