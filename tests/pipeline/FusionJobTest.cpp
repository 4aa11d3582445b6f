#include "pipeline/FusionJob.h"

#include "fusion/FusionAccumulator.h"
#include "tests/support/TestFiles.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <thread>

constexpr int kWidth = 300, kHeight = 200;
const CBxRect<int> kWholePicture = {0, 0, kWidth, kHeight};

// A series of exposures in files, the way a dialog finds it.
struct Series
{
    TempFolder folder;
    std::vector<TestPicture> pictures;
    std::vector<std::string> paths;
    FusionSources sources;

    explicit Series(int count, int bits = 8, int components = 3)
    {
        for (int i = 0; i < count; ++i)
        {
            pictures.push_back(ScenePicture(kWidth, kHeight, components, bits, i - count / 2));
            paths.push_back(folder.File("photo" + std::to_string(i) + ".tif"));
            SavePacked(i, false);
        }
        Open(int64_t(1) << 30);
    }

    // Unpacked, files of one geometry have one size.
    void SavePacked(int index, bool packed) const
    {
        SaveExtras extras;
        extras.passing = !packed;
        Save(pictures[size_t(index)], paths[size_t(index)], kFormatTiff, "", nullptr, &extras);
    }

    void Open(int64_t budget) { OpenFusionSources(&sources, paths, pictures[0], budget); }

    // The engine fed with the same region of the listed sources, one after the other.
    TestPicture FusedByHand(const CBxRect<int>& region, const std::vector<int>& which,
                            unsigned mid) const
    {
        const SBxPicBuf& like = pictures[0];
        const CBxSize<int> size = {region.right - region.left, region.bottom - region.top};
        TestPicture cut(size.cx, size.cy, like.components, like.bitsPerComponent);
        VcFusionAccumulator sums;
        EXPECT_FALSE(VcInitAccumulator(&sums, cut, mid));
        for (const int i : which)
        {
            CBxPicBufAPI::CopyRect(cut.Record(), pictures[size_t(i)], {0, 0},
                                   {region.left, region.top}, size);
            EXPECT_FALSE(VcAccumulateImage(&sums, cut));
        }
        EXPECT_FALSE(VcComposeResult(cut.Record(), sums));
        VcFreeAccumulator(&sums);
        return cut;
    }

    TestPicture Blank(const CBxRect<int>& region) const
    {
        const SBxPicBuf& like = pictures[0];
        return FlatPicture(region.right - region.left, region.bottom - region.top,
                           like.bitsPerComponent,
                           std::vector<double>(size_t(like.components), 7.0));
    }
};

static std::vector<int> UpTo(int count)
{
    std::vector<int> all;
    for (int i = 0; i < count; ++i)
        all.push_back(i);
    return all;
}

struct RegionCase
{
    const char* name;
    CBxRect<int> area;
    double scale, srcX, srcY; // of the middle of the area
    CBxRect<int> expected;
};

TEST(FusionRegion, IsWhatIsSeenAndWhatSurroundsItInsideThePicture)
{
    const RegionCase cases[] = {
        {"four times enlarged", {0, 40, 800, 640}, 4.0, 2000, 1500, {1644, 1169, 2356, 1831}},
        {"all of it", {0, 40, 800, 640}, 0.1, 2000, 1500, {0, 0, 4000, 3000}},
        {"a corner", {0, 40, 800, 640}, 1.0, 0, 0, {0, 0, 656, 556}},
        {"part of a pixel at the edges", {0, 0, 9, 9}, 2.0, 1000, 1000, {741, 741, 1259, 1259}},
        {"out of sight", {0, 40, 800, 640}, 1.0, 9000, 1500, {4000, 944, 4000, 2056}},
        {"far out of sight", {0, 40, 800, 640}, 1e-9, -1e13, 0, {0, 0, 0, 3000}},
    };
    for (const RegionCase& test : cases)
    {
        ImageView view;
        view.area = test.area;
        view.state = {test.scale, (test.area.left + test.area.right) / 2.0,
                      (test.area.top + test.area.bottom) / 2.0, test.srcX, test.srcY};
        const CBxRect<int> region = FusionRegionOf(view, 4000, 3000);
        EXPECT_TRUE(SameRect(region, test.expected))
            << test.name << ": " << region.left << " " << region.top << " " << region.right << " "
            << region.bottom;
        EXPECT_EQ(IsEmptyRect(region), std::string(test.name).find("sight") != std::string::npos)
            << test.name;
    }
}

TEST(FusionRanges, AreOneTwoOrThreeNeighboursWhoseLastTakesTheRest)
{
    const std::vector<std::pair<int, std::vector<int>>> sizes = {
        {1, {1}},       {4, {4}},        {5, {2, 3}},     {8, {4, 4}},
        {9, {3, 3, 3}}, {10, {3, 3, 4}}, {11, {3, 3, 5}}, {39, {13, 13, 13}},
    };
    for (const auto& [sources, expected] : sizes)
    {
        std::vector<int> found;
        int next = 0;
        for (const SourceRange& range : FusionRangesOf(sources))
        {
            EXPECT_EQ(range.first, next) << sources;
            found.push_back(range.end - range.first);
            next = range.end;
        }
        EXPECT_EQ(found, expected) << sources;
    }
}

TEST(FusionJob, GivesWhatTheEngineGivesForThatRegionOfThoseSources)
{
    const struct
    {
        int sources, bits, components;
    } cases[] = {{3, 8, 3}, {6, 8, 1}, {9, 16, 3}};
    for (const auto& test : cases)
    {
        Series series(test.sources + 1, test.bits, test.components); // one more than is asked for
        const CBxRect<int> region = {40, 30, 260, 171};
        TestPicture result = series.Blank(region);
        ASSERT_EQ(
            FuseRegion(result.Record(), &series.sources, {region, test.sources, 110}, nullptr),
            Outcome::Done);
        // Sums of floats in another order, but for one thread: never more than the next step.
        const double tolerance = test.sources < 5 ? 0 : test.bits == 8 ? 1 : 2;
        ExpectSamePicture(result, series.FusedByHand(region, UpTo(test.sources), 110), tolerance);
        TestPicture whole = series.Blank(kWholePicture);
        std::vector<int> told;
        ASSERT_EQ(FuseWhole(whole.Record(), &series.sources, {{}, test.sources, 110},
                            [&](int source) { told.push_back(source); }),
                  Outcome::Done);
        EXPECT_EQ(told, UpTo(test.sources));
        ExpectSamePicture(whole, series.FusedByHand(kWholePicture, UpTo(test.sources), 110));
    }
}

TEST(FusionJob, LeavesOutWhatCannotBeUsedAndNamesIt)
{
    Series series(9);
    std::filesystem::remove(series.paths[0]); // the caller's own share starts with it
    Save(ScenePicture(kWidth, kHeight, 3, 16, 0), series.paths[2]);
    Save(ScenePicture(kWidth - 1, kHeight, 3, 8, 0), series.paths[4]);
    for (const int i : {6, 7, 8}) // a whole share
        series.folder.Write("photo" + std::to_string(i) + ".tif", {1, 2, 3});
    TestPicture result = series.Blank(kWholePicture);
    ASSERT_EQ(FuseRegion(result.Record(), &series.sources, {kWholePicture, 9, 100}, nullptr),
              Outcome::Done);
    ExpectSamePicture(result, series.FusedByHand(kWholePicture, {1, 3, 5}, 100), 1);
    const auto none = SourceProblem::None, unreadable = SourceProblem::Unreadable,
               different = SourceProblem::Different;
    const std::vector<SourceProblem> problems = {
        unreadable, none, different, none, different, none, unreadable, unreadable, unreadable};
    EXPECT_EQ(series.sources.problems, problems);
}

TEST(FusionJob, FailsWithoutTouchingTheResult)
{
    Series series(2);
    const TestPicture before = series.Blank(kWholePicture);
    TestPicture result = series.Blank(kWholePicture);
    const CBxRect<int> narrow = {0, 0, kFusionMinSide - 1, kHeight};
    EXPECT_EQ(FuseRegion(result.Record(), &series.sources, {{}, 2, 100}, nullptr), Outcome::Failed);
    EXPECT_EQ(FuseRegion(result.Record(), &series.sources, {narrow, 2, 100}, nullptr),
              Outcome::Failed);
    EXPECT_EQ(FuseRegion(result.Record(), &series.sources, {kWholePicture, 0, 100}, nullptr),
              Outcome::Failed);
    for (const std::string& path : series.paths)
        std::filesystem::remove(path);
    EXPECT_EQ(FuseRegion(result.Record(), &series.sources, {kWholePicture, 2, 100}, nullptr),
              Outcome::Failed);
    EXPECT_EQ(FuseWhole(result.Record(), &series.sources, {{}, 2, 100}), Outcome::Failed);
    ExpectSamePicture(result, before);
}

TEST(FusionJob, StopsBetweenSourcesWhenItIsOutdated)
{
    Series series(4); // on one thread
    TestPicture result = series.Blank(kWholePicture);
    int asked = 0;
    const auto afterTwo = [&asked] { return ++asked > 2; };
    EXPECT_EQ(FuseRegion(result.Record(), &series.sources, {kWholePicture, 4, 100}, afterTwo),
              Outcome::Cancelled);
    EXPECT_EQ(series.sources.filesRead, 2);
    ExpectSamePicture(result, series.Blank(kWholePicture));

    Series large(12);
    EXPECT_EQ(
        FuseRegion(result.Record(), &large.sources, {kWholePicture, 12, 100}, [] { return true; }),
        Outcome::Cancelled);
    EXPECT_EQ(FuseRegion(result.Record(), &large.sources, {kWholePicture, 12, 100}, nullptr),
              Outcome::Done);
}

// The caller adds up its own share while the others are held at the first sources of theirs.
TEST(FusionJob, AsksAndStopsWhileOthersAreWaitedFor)
{
    using namespace std::chrono;
    Series series(12);
    series.Open(0); // nothing is prepared: one question before each source
    TestPicture result = series.Blank(kWholePicture);
    std::atomic<int> asked = 0;
    series.sources.step = [&asked](Picture*, Picture*, int number)
    {
        const auto patience = steady_clock::now() + seconds(20);
        while (number >= 4 && asked <= 4 && steady_clock::now() < patience)
            std::this_thread::sleep_for(milliseconds(1));
        if (number >= 4)
            std::this_thread::sleep_for(milliseconds(200)); // what was answered gets around
        return Outcome::Done;
    };
    EXPECT_EQ(FuseRegion(result.Record(), &series.sources, {kWholePicture, 12, 100},
                         [&asked] { return ++asked > 4; }),
              Outcome::Cancelled);
    EXPECT_LT(series.sources.filesRead, 12);
    ExpectSamePicture(result, series.Blank(kWholePicture));
}

TEST(FusionSources, AreReadOnceHoweverOftenAndWhereTheyAreLookedAt)
{
    Series series(5);
    TestPicture whole = series.Blank(kWholePicture);
    const CBxRect<int> region = {10, 20, 90, 80};
    TestPicture part = series.Blank(region);
    ReadFusionSources(&series.sources, series.pictures[0], region);
    for (const unsigned mid : {60u, 100u, 140u})
    {
        EXPECT_EQ(FuseRegion(part.Record(), &series.sources, {region, 5, mid}, nullptr),
                  Outcome::Done);
        ExpectSamePicture(part, series.FusedByHand(region, UpTo(5), mid), 1);
        EXPECT_EQ(FuseWhole(whole.Record(), &series.sources, {{}, 5, mid}), Outcome::Done);
    }
    EXPECT_EQ(series.sources.filesRead, 4); // the first was there
}

TEST(FusionSources, KeepRegionsWhenWholePicturesDoNotFit)
{
    Series series(4);
    const CBxRect<int> region = {10, 20, 90, 80}, other = {100, 20, 180, 80};
    const int64_t bytes = 80 * 60 * 3;
    TestPicture part = series.Blank(region);
    const auto fuse = [&](const CBxRect<int>& where)
    {
        EXPECT_EQ(FuseRegion(part.Record(), &series.sources, {where, 4, 100}, nullptr),
                  Outcome::Done);
        EXPECT_LE(series.sources.keptBytes, series.sources.budget);
        ExpectSamePicture(part, series.FusedByHand(where, UpTo(4), 100));
        return series.sources.filesRead;
    };
    EXPECT_EQ(fuse(region), 4);
    EXPECT_EQ(fuse(other), 4); // whole pictures serve every region
    series.Open(4 * bytes);
    EXPECT_EQ(fuse(region), 4);
    EXPECT_EQ(fuse(region), 4);
    EXPECT_EQ(fuse(other), 8); // takes the place of the first
    EXPECT_EQ(fuse(other), 8);

    series.Open(500000); // there is room for regions that are taken apart
    EXPECT_EQ(fuse(region), 4);
    EXPECT_EQ(fuse(region), 4);
    EXPECT_EQ(series.sources.keptBytes, 0); // and nothing is there twice

    series.Open(2 * bytes); // half of them stays, rather than none in turn
    EXPECT_EQ(fuse(region), 4);
    EXPECT_EQ(fuse(region), 6);
    series.Open(0);
    EXPECT_EQ(fuse(region), 4);
    EXPECT_EQ(fuse(region), 8);
}

// Sums and prepared sources of the region before are of another size.
TEST(FusionSources, ServeRegionsOfAnySizeOneAfterTheOther)
{
    Series series(9); // on three threads
    const CBxRect<int> small = {10, 20, 90, 80}, large = {40, 30, 260, 171};
    for (const CBxRect<int>& region : {large, small, kWholePicture, small})
    {
        TestPicture part = series.Blank(region);
        ASSERT_EQ(FuseRegion(part.Record(), &series.sources, {region, 9, 100}, nullptr),
                  Outcome::Done);
        EXPECT_EQ(series.sources.sums.size(), 3u) << "for the next preview";
        ExpectSamePicture(part, series.FusedByHand(region, UpTo(9), 100), 1);
    }
}

// Each source as the step leaves it, whichever way it takes: taken apart and kept, read anew for
// every preview, or as a whole.
TEST(FusionSources, GoThroughTheStepBetweenReadingAndAdding)
{
    Series series(3);
    const CBxRect<int> region = {10, 20, 90, 80};
    const SourceStep shift = [](Picture* source, Picture*, int number)
    {
        Picture moved = Picture::Like(*source);
        CBxPicBufAPI::Copy(moved.Record(), *source);
        CBxPicBufAPI::CopyRect(moved.Record(), *source, {0, 0}, {5 * number, number},
                               {(*source)->width - 5 * number, (*source)->height - number});
        *source = std::move(moved);
        return Outcome::Done;
    };
    for (int i = 0; i < 3; ++i)
        ASSERT_EQ(shift(&series.pictures[size_t(i)], nullptr, i),
                  Outcome::Done); // what is expected
    for (const int64_t budget : {int64_t(1) << 30, int64_t(0)})
    {
        series.Open(budget);
        series.sources.step = shift;
        TestPicture part = series.Blank(region), whole = series.Blank(kWholePicture);
        ASSERT_EQ(FuseRegion(part.Record(), &series.sources, {region, 3, 100}, nullptr),
                  Outcome::Done);
        ExpectSamePicture(part, series.FusedByHand(region, UpTo(3), 100));
        ASSERT_EQ(FuseWhole(whole.Record(), &series.sources, {{}, 3, 100}), Outcome::Done);
        ExpectSamePicture(whole, series.FusedByHand(kWholePicture, UpTo(3), 100));
    }
    series.sources.step = [](Picture*, Picture*, int) { return Outcome::Failed; };
    series.Open(0);
    TestPicture part = series.Blank(region);
    EXPECT_EQ(FuseRegion(part.Record(), &series.sources, {region, 3, 100}, nullptr),
              Outcome::Failed)
        << "short memory leaves no source out";
}

TEST(FusionSources, FollowTheirFiles)
{
    namespace fs = std::filesystem;
    Series series(2);
    const CBxRect<int> region = {10, 20, 90, 80};
    const fs::path path = series.paths[1], away = series.folder.File("away");
    const auto none = SourceProblem::None;
    const auto expectFused = [&](const char* step, const std::vector<int>& which)
    {
        SCOPED_TRACE(step);
        TestPicture part = series.Blank(region);
        EXPECT_EQ(FuseRegion(part.Record(), &series.sources, {region, 2, 100}, nullptr),
                  Outcome::Done);
        ExpectSamePicture(part, series.FusedByHand(region, which, 100));
        const std::vector<SourceProblem> problems = {
            none, which.size() == 2 ? none : SourceProblem::Unreadable};
        EXPECT_EQ(series.sources.problems, problems);
    };
    expectFused("as they are", {0, 1});
    const auto size = fs::file_size(path);
    const auto later = fs::last_write_time(path) + std::chrono::seconds(5);
    series.pictures[1] = FlatPicture(kWidth, kHeight, 8, {10, 20, 30});
    series.SavePacked(1, false);
    ASSERT_EQ(fs::file_size(path), size);
    fs::last_write_time(path, later);
    expectFused("changed, of the same size", {0, 1});
    series.pictures[1] = FlatPicture(kWidth, kHeight, 8, {200, 90, 30});
    series.SavePacked(1, true);
    fs::last_write_time(path, later);
    expectFused("changed at the same time", {0, 1});
    EXPECT_EQ(series.sources.keptBytes, 2 * int64_t(kWidth) * kHeight * 3) << "the old one stays";
    fs::rename(path, away);
    expectFused("gone", {0});
    EXPECT_FALSE(LoadFusionSource(&series.sources, 1, region));
    fs::rename(away, path);
    expectFused("back", {0, 1});
    EXPECT_GT(FusionSourceBudget(), int64_t(1) << 24);
    EXPECT_LT(FusionSourceBudget(), int64_t(1) << 44);
}

// Bytes that an accumulator and a source that was taken apart really hold.
static int64_t BytesHeld(const VcFusionAccumulator& sums)
{
    int64_t samples = 0;
    for (unsigned c = 0; c < sums.channels; ++c)
        for (unsigned k = 0; k <= sums.levels; ++k)
            for (const float* plane : {WeightPlane(sums, c, k), SumPlane(sums, c, k)})
                samples += plane ? int64_t(sums.levelWidth[k]) * sums.levelHeight[k] : 0;
    return samples * 4;
}

static int64_t BytesHeld(const PreparedSource& source, const VcFusionAccumulator& sums)
{
    int64_t bytes = 0;
    for (int c = 0; c < source.levels.count; ++c)
    {
        bytes += source.levels.finest[c].size;
        for (unsigned k = 1; k <= sums.levels; ++k)
            if (source.levels.gauss[c][k])
                bytes += int64_t(sums.levelWidth[k]) * sums.levelHeight[k] * 4;
    }
    return bytes;
}

// Sources are taken apart where there is room for that, for what the three threads sum up, and for
// whole pictures if those stay, too.
TEST(PreparedSources, FillTheBudgetAndNeverMore)
{
    for (const int components : {1, 3})
        for (const int bits : {8, 16})
        {
            Series series(9, bits, components);
            const CBxRect<int> region = {10, 20, 90, 80};
            const TestPicture part = series.Blank(region);
            FusionSums sums;
            ASSERT_FALSE(VcInitAccumulator(&sums.acc, part, 100));
            const int64_t held =
                9 * BytesHeld(*VcPrepareSource(sums.acc, part), sums.acc) + 3 * BytesHeld(sums.acc);
            const int64_t wholes = 9 * int64_t(series.pictures[0]->size);
            bool everPrepared = false;
            for (int64_t budget = held / 2; budget < 3 * (held + wholes); budget += budget / 50)
            {
                series.Open(budget);
                PrepareForRegion(&series.sources, region);
                const int64_t needed = held + (budget >= wholes ? wholes : 0);
                const bool prepared = !series.sources.prepared.empty();
                if (prepared)
                    EXPECT_LE(needed, budget) << components << " x " << bits;
                else
                    EXPECT_GT(needed + needed / 20, budget) << components << " x " << bits;
                everPrepared |= prepared;
            }
            EXPECT_TRUE(everPrepared);
        }
}
