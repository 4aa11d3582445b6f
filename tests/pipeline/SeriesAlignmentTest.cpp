#include "pipeline/SeriesAlignment.h"

#include "alignment/Warp.h"

#include "tests/alignment/MovedScene.h"
#include "tests/support/TestFiles.h"

constexpr CBxSize<int> kFrame = {400, 300};
constexpr int kFrames = 3;

static Homography MotionOf(int number)
{
    return Translation(7.0 * (number - 1), 4.0 * (1 - number));
}

// Only the middle one has neither blocked nor blown places.
static double ExposureOf(int number)
{
    return 2.5 * number - 3.5;
}

// Three exposures that a hand has moved by whole pixels; the middle one stays.
struct MovedSeries
{
    TempFolder folder;
    std::vector<TestPicture> pictures;
    std::vector<std::string> paths;
    SeriesAlignment alignment;

    explicit MovedSeries(int bits = 8)
    {
        const SceneLight scene = BlockScene(kFrame, 3);
        for (int i = 0; i < kFrames; ++i)
        {
            pictures.push_back(
                Photograph(scene, kFrame, MotionOf(i), ExposureOf(i), uint32_t(i), 3, bits));
            paths.push_back(folder.File("frame" + std::to_string(i) + ".tif"));
            Save(pictures.back(), paths.back(), kFormatTiff);
        }
    }

    Outcome Align(AlignmentBorder border, bool ahead = true)
    {
        return AlignSeries(&alignment, paths, border, ahead, nullptr);
    }
};

// The mean difference of green in the middle, of what the step makes of a frame from what the scene
// looks like from where the camera stayed.
static double DifferenceFromUnmoved(const SBxPicBuf& made, const CBxRect<int>& area, int number,
                                    int bits)
{
    const TestPicture meant = Photograph(BlockScene(kFrame, 3), kFrame, {}, ExposureOf(number),
                                         uint32_t(number), 3, bits);
    double sum = 0;
    for (int y = 50; y < 250; ++y)
        for (int x = 50; x < 350; ++x)
            sum += std::abs(SampleOf(made, x - area.left, y - area.top, 1) - meant.At(x, y, 1));
    return sum / (200 * 300) / (bits == 8 ? 1 : 257);
}

TEST(SeriesAlignment, BringsEverySourceToTheOneThatStays)
{
    for (const int bits : {8, 16})
    {
        MovedSeries series(bits);
        ASSERT_EQ(series.Align(AlignmentBorder::Crop, bits == 8), Outcome::Done);
        const SeriesAlignment& alignment = series.alignment;
        ASSERT_TRUE(alignment.changesSource);
        ASSERT_EQ(alignment.found.stays, 1);
        const CBxRect<int>& area = alignment.area;
        EXPECT_NEAR(area.right - area.left, 400 - 14, 5);
        EXPECT_NEAR(area.bottom - area.top, 300 - 8, 5);
        const SourceStep step = StepOf(alignment);
        SourceReader reader(series.paths, step, true);
        for (int i = 0; i < kFrames; ++i)
        {
            const DecodedSource source = reader.Next();
            EXPECT_EQ(source.picture->width, area.right - area.left);
            EXPECT_EQ(source.picture->height, area.bottom - area.top);
            // Grain differs by two or three grey levels; seven pixels off would be 15.
            EXPECT_LT(DifferenceFromUnmoved(source.picture, area, i, bits), 4) << i;
        }
    }
}

TEST(SeriesAlignment, MirrorsInsteadOfCroppingAndTakesAlphaAlong)
{
    MovedSeries series;
    ASSERT_EQ(series.Align(AlignmentBorder::Mirror), Outcome::Done);
    EXPECT_TRUE(SameRect(series.alignment.area, {0, 0, kFrame.cx, kFrame.cy}));
    const SourceStep step = StepOf(series.alignment);
    Picture picture = std::move(series.pictures[2]);
    TestPicture alpha =
        PictureOf(kFrame.cx, kFrame.cy, 1, 8, [](int x, int, int) { return x / 2; });
    ASSERT_EQ(step(&picture, &alpha, 2), Outcome::Done);
    EXPECT_EQ(picture->width, kFrame.cx);
    EXPECT_LT(DifferenceFromUnmoved(picture, series.alignment.area, 2, 8), 4);
    EXPECT_NEAR(alpha.At(200, 100), (200 + 7) / 2, 1);
    TestPicture stays = TestPicture::Like(series.pictures[1]), none;
    CBxPicBufAPI::Copy(stays.Record(), series.pictures[1]);
    ASSERT_EQ(step(&stays, &none, 1), Outcome::Done);
    ExpectSamePicture(stays, series.pictures[1]);
    TestPicture other(64, 48, 3, 8);
    ASSERT_EQ(step(&other, &none, 0), Outcome::Done);
    EXPECT_EQ(other->width, 64) << "whoever fuses refuses it and says why";
}

// What cannot be compared is left to be fused, or refused, as it is.
TEST(SeriesAlignment, LeavesASeriesThatItCannotLookAt)
{
    MovedSeries series;
    const auto isLeft = [&](const std::vector<std::string>& paths)
    {
        SeriesAlignment alignment;
        const Outcome outcome =
            AlignSeries(&alignment, paths, AlignmentBorder::Crop, true, nullptr);
        return outcome == Outcome::Done && !alignment.changesSource && !StepOf(alignment);
    };
    const std::string small = series.folder.File("small.tif"), other = series.folder.File("o.tif");
    Save(ScenePicture(90, 300, 3, 8, 0), small, kFormatTiff);
    Save(ScenePicture(kFrame.cx, kFrame.cy, 1, 8, 0), other, kFormatTiff);
    EXPECT_TRUE(isLeft({}));
    EXPECT_TRUE(isLeft({series.paths[0]}));
    EXPECT_TRUE(isLeft({small, small}));
    EXPECT_TRUE(isLeft({series.paths[0], other}));
    EXPECT_TRUE(isLeft({series.paths[0], series.folder.File("none.tif"), series.paths[1]}));
    EXPECT_TRUE(isLeft({series.paths[0], series.paths[0]})) << "it stands still";
    EXPECT_FALSE(isLeft(series.paths));
    int read = 0;
    const auto stop = [&](int) { return ++read == 2; };
    SeriesAlignment alignment;
    EXPECT_EQ(AlignSeries(&alignment, series.paths, AlignmentBorder::Crop, false, stop),
              Outcome::Cancelled);
}
