#include "multiscale/SeriesRun.h"

#include "tests/support/TestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

static SeriesRun RunOf(SeriesKind kind, const TestPicture& photo, const TempFolder& folder)
{
    SeriesRun run;
    run.kind = kind;
    run.source = photo.pic;
    run.folder = folder.path.u8string() + "/";
    return run;
}

TEST(SeriesRun, WritesTheElevenExposures)
{
    for (const int bits : {8, 16})
    {
        const TempFolder folder;
        const TestPicture photo = ScenePicture(64, 48, 3, bits, 0);
        SeriesRun run = RunOf(SeriesKind::Single, photo, folder);
        run.noiseLevel = 1;
        MakeSeriesFiles(&run);
        ASSERT_EQ(run.files.size(), 11u);
        EXPECT_EQ(folder.FileCount(), 11);
        EXPECT_EQ(run.files.front(), "file_000.tif");
        EXPECT_EQ(run.files.back(), "file_010.tif");
        const LoadedPair same(folder.File(run.files[5]));
        ExpectSamePicture(same.picture.pic, photo.pic);
    }
}

TEST(SeriesRun, PutsDaylightIntoTheOrderOfFusion)
{
    const TempFolder folder;
    const TestPicture photo = FlatPicture(32, 32, 8, {128});
    SeriesRun run = RunOf(SeriesKind::DaylightUp, photo, folder);
    MakeSeriesFiles(&run);
    ASSERT_EQ(run.files.size(), 39u);
    EXPECT_EQ(folder.FileCount(), 39);
    const std::vector<std::string> first(run.files.begin(), run.files.begin() + 6);
    const std::vector<std::string> expected = {"file_000_000.tif", "file_000_001.tif",
                                               "file_001_000.tif", "file_000_002.tif",
                                               "file_001_001.tif", "file_002_000.tif"};
    EXPECT_EQ(first, expected);
    const LoadedPair brightened(folder.File("file_001_000.tif"));
    EXPECT_EQ(brightened.picture.At(0, 0), 144);

    run = RunOf(SeriesKind::DaylightDown, photo, folder);
    MakeSeriesFiles(&run);
    ASSERT_EQ(run.files.size(), 39u);
    EXPECT_EQ(run.files[36], "file_003_005.tif");
    EXPECT_EQ(run.files[38], "file_005_003.tif");
    const LoadedPair darkened(folder.File("file_000_001.tif"));
    EXPECT_EQ(darkened.picture.At(0, 0), 121);
}

TEST(SeriesRun, EndsWithTheFileThatWasBeingWrittenWhenTheStopCame)
{
    for (const SeriesKind kind : {SeriesKind::Single, SeriesKind::DaylightUp})
    {
        const TempFolder folder;
        const TestPicture photo = ScenePicture(40, 30, 1, 8, 0);
        SeriesRun run = RunOf(kind, photo, folder);
        bool cancel = false;
        int reports = 0;
        run.control.progress = [&](const SeriesProgress&) { cancel = ++reports == 3; };
        run.control.cancelRequested = [&] { return cancel; };
        MakeSeriesFiles(&run);
        // The first exposure leaves the panel as it is, so its third report is the fourth file's.
        const int written = kind == SeriesKind::Single ? 4 : 3;
        EXPECT_EQ(folder.FileCount(), written);
        EXPECT_EQ(int(run.files.size()), written - 1);
    }
}

TEST(SeriesRun, NamesFilesThatCouldNotBeWritten)
{
    const TempFolder folder;
    const TestPicture photo = ScenePicture(16, 16, 1, 8, 0);
    std::filesystem::create_directory(folder.path / "file_003.tif"); // in the way
    SeriesRun run = RunOf(SeriesKind::Single, photo, folder);
    MakeSeriesFiles(&run);
    EXPECT_EQ(run.files.size(), 11u);
    EXPECT_EQ(std::count(run.files.begin(), run.files.end(), "file_003.tif"), 1);
    EXPECT_TRUE(LoadedPair(folder.File("file_003.tif")).failed);
    EXPECT_FALSE(LoadedPair(folder.File("file_004.tif")).failed);
}

TEST(SeriesRun, HasABarThatEndsWithItsLastReport)
{
    for (const SeriesKind kind : {SeriesKind::Single, SeriesKind::DaylightDown})
    {
        const TempFolder folder;
        const TestPicture photo = FlatPicture(12, 12, 8, {90});
        SeriesRun run = RunOf(kind, photo, folder);
        std::vector<int> positions = {SeriesBarOf(kind).start};
        run.control.progress = [&](const SeriesProgress& p) { positions.push_back(p.position); };
        MakeSeriesFiles(&run);
        EXPECT_TRUE(std::is_sorted(positions.begin(), positions.end()));
        EXPECT_LE(positions.back(), SeriesBarOf(kind).length);
        EXPECT_GT(positions.back(), SeriesBarOf(kind).length * 9 / 10);
    }
}
