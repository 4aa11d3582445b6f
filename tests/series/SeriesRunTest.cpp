#include "series/SeriesRun.h"

#include "series/DaylightSeries.h"
#include "tests/support/TestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

static SeriesRun RunOf(SeriesKind kind, const TestPicture& photo, const TempFolder& folder)
{
    SeriesRun run;
    run.kind = kind;
    run.source = photo;
    run.folder = folder.path.u8string() + "/";
    return run;
}

TEST(SeriesRun, PutsDaylightIntoTheOrderOfFusion)
{
    const TempFolder folder;
    const TestPicture photo = FlatPicture(32, 32, 8, {128});
    for (const auto& [kind, place, name, level] :
         {std::tuple(SeriesKind::DaylightUp, 2, "file_001_000.tif", 144),
          std::tuple(SeriesKind::DaylightDown, 38, "file_005_003.tif", 46)})
    {
        SeriesRun run = RunOf(kind, photo, folder);
        MakeSeriesFiles(&run);
        ASSERT_EQ(int(run.files.size()), kDaylightVariants);
        EXPECT_EQ(folder.FileCount(), kDaylightVariants);
        EXPECT_EQ(run.files[size_t(place)], name);
        EXPECT_EQ(LoadedPair(folder.File(name)).picture.At(0, 0), level);
    }
}

TEST(SeriesRun, NamesFilesThatCouldNotBeWritten)
{
    const TempFolder folder;
    const TestPicture photo = ScenePicture(16, 16, 1, 8, 0);
    std::filesystem::create_directory(folder.path / "file_003.tif"); // in the way
    SeriesRun run = RunOf(SeriesKind::Single, photo, folder);
    MakeSeriesFiles(&run);
    ASSERT_EQ(run.files.size(), 11u);
    EXPECT_EQ(run.files[3], "file_003.tif");
    EXPECT_TRUE(LoadedPair(folder.File("file_003.tif")).failed);
    ExpectSamePicture(LoadedPair(folder.File("file_005.tif")).picture, photo);
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
