#include "series/ExposureSeries.h"

#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

// What a series did: the files in order, and what the panel would have shown.
struct SeriesRun
{
    int count = 0;
    std::vector<std::string> names;
    std::vector<TestPicture> pictures;
    std::vector<int> percents;
    std::vector<bool> texts;
};

enum class StopBy
{
    Nobody,
    Cancel,
    Stop,
    Sink,
};

// Runs a series that is stopped while exposure `when` is being made.
SeriesRun RunSeries(const TestPicture& source, unsigned noiseLevel, StopBy by = StopBy::Nobody,
                    int when = -1)
{
    SeriesRun run;
    bool reached = false;
    SeriesControl control;
    control.cancelRequested = [&] { return reached && by == StopBy::Cancel; };
    control.stopped = [&] { return reached && by == StopBy::Stop; };
    control.progress = [&](const SeriesProgress& progress)
    {
        EXPECT_EQ(progress.percent, progress.position);
        run.percents.push_back(progress.percent);
        run.texts.push_back(progress.newText);
    };
    const SeriesSink sink = [&](int number, const SBxPicBuf& picture, const char* name)
    {
        EXPECT_EQ(number, int(run.names.size()));
        run.names.push_back(name);
        run.pictures.push_back(TestPicture::Like(picture));
        CBxPicBufAPI::Copy(run.pictures.back().Record(), picture);
        reached = reached || number == when;
        return FailedIf(reached && by == StopBy::Sink);
    };
    run.count = MakeExposureSeries(source, noiseLevel, sink, control);
    return run;
}

} // namespace

TEST(ExposureSeries, StretchesEverySampleAsListed)
{
    const struct
    {
        int bits;
        double sample;
        double expected[kExposures];
    } cases[] = {
        {8, 60, {63, 76, 95, 127, 191, 60, 23, 0, 0, 0, 0}},
        {8, 100, {106, 127, 159, 212, 255, 100, 71, 29, 0, 0, 0}},
        {8, 200, {212, 255, 255, 255, 255, 200, 189, 174, 151, 107, 0}},
        {8, 240, {255, 255, 255, 255, 255, 240, 237, 233, 226, 214, 185}},
        {16, 30000, {31999, 38399, 47999, 63999, 65535, 30000, 23419, 13847, 0, 0, 0}},
    };
    for (const auto& c : cases)
        for (size_t components : {1u, 3u})
        {
            const SeriesRun run =
                RunSeries(FlatPicture(4, 3, c.bits, std::vector<double>(components, c.sample)), 0);
            ASSERT_EQ(run.count, kExposures);
            for (int k = 0; k < kExposures; ++k)
                EXPECT_EQ(run.pictures[size_t(k)].At(3, 2, int(components) - 1), c.expected[k])
                    << c.sample << " in exposure " << k;
        }
}

TEST(ExposureSeries, HoldsThePhotographItself)
{
    for (int bits : {8, 16})
    {
        const TestPicture every = PictureOf(256, bits == 8 ? 1 : 256, 1, bits,
                                            [](int x, int y, int) { return 256 * y + x; });
        TestPicture exposure = TestPicture::Like(every);
        MakeExposure(exposure.Record(), every, 5);
        ExpectSamePicture(exposure, every);
        MakeExposure(exposure.Record(), every, 10);
        EXPECT_EQ(exposure.At(0, 0), 0);
        EXPECT_EQ(exposure.At(255, every->height - 1), bits == 8 ? 255 : 65535);
    }
}

TEST(ExposureSeries, HasElevenFilesAndSpeaksAsThePanelExpects)
{
    const TestPicture source = FlatPicture(5, 4, 8, {50});
    const SeriesRun run = RunSeries(source, 0);
    EXPECT_EQ(run.count, 11);
    ASSERT_EQ(run.names.size(), 11u);
    EXPECT_EQ(run.names[7], "file_007.tif");
    EXPECT_EQ(run.percents, (std::vector<int>{5, 30, 55, 80, 82, 84, 86, 88, 90, 92}));
    EXPECT_EQ(run.texts, std::vector<bool>(10, true));
    // The exposure at hand is finished and does not count.
    for (StopBy by : {StopBy::Cancel, StopBy::Stop, StopBy::Sink})
        for (int when : {0, 1, 4, 5, 7, 10})
        {
            const SeriesRun stopped = RunSeries(source, 0, by, when);
            EXPECT_EQ(stopped.count, when);
            EXPECT_EQ(int(stopped.names.size()), when + 1);
        }
    EXPECT_EQ(RunSeries(source, 0, StopBy::Cancel, 2).percents, (std::vector<int>{5}))
        << "brightened exposures say nothing";
    const SeriesRun dark = RunSeries(source, 0, StopBy::Cancel, 6);
    EXPECT_EQ(dark.percents, (std::vector<int>{5, 30, 55, 80, 82, 84})) << "the bar still moves";
    EXPECT_EQ(dark.texts, (std::vector<bool>{true, true, true, true, true, false}));
    EXPECT_EQ(RunSeries(source, 0, StopBy::Stop, 2).texts, (std::vector<bool>{true, true}))
        << "a stop is not a cancel";
}

TEST(ExposureSeries, DenoisesTheThreeBrightestExposures)
{
    const int radii[kNoiseLevels][3] = {{0, 0, 0}, {4, 5, 6}, {8, 11, 14}, {10, 14, 18}};
    for (unsigned level = 0; level < kNoiseLevels; ++level)
        for (int k = 0; k < kExposures; ++k)
            EXPECT_EQ(DenoiseRadius(k, level), k >= 2 && k <= 4 ? radii[level][k - 2] : 0)
                << level << ", " << k;

    const TestPicture grainy = ScenePicture(60, 50, 3, 8, -1);
    const SeriesRun plain = RunSeries(grainy, 0), low = RunSeries(grainy, 1);
    ASSERT_EQ(low.count, kExposures);
    for (int k = 0; k < kExposures; ++k)
        EXPECT_EQ(HashOf(plain.pictures[size_t(k)]) != HashOf(low.pictures[size_t(k)]),
                  DenoiseRadius(k, 1) > 0)
            << k;
}

// The picture goes on as far as it got; the series finds the stop afterwards.
TEST(ExposureSeries, HandsOnAPictureWhoseDenoisingWasStopped)
{
    const TestPicture grainy = ScenePicture(60, 50, 1, 8, -1);
    TestPicture stretched(60, 50, 1, 8);
    MakeExposure(stretched.Record(), grainy, 2);
    int made = 0, polls = 0;
    SeriesControl control;
    control.stopped = [&] { return made >= 2 && ++polls > 1; }; // the next after exposure 1's own
    const SeriesSink sink = [&](int number, const SBxPicBuf& picture, const char*)
    {
        if (number == 2)
            ExpectSamePicture(picture, stretched);
        ++made;
        return Outcome::Done;
    };
    EXPECT_EQ(MakeExposureSeries(grainy, 1, sink, control), 2);
    EXPECT_EQ(made, 3);
}

TEST(ProcessorCount, IsThePlaceOfTheHighestCommonBit)
{
    EXPECT_EQ(ProcessorCount(0x0A, 0xFF), 4);
    EXPECT_EQ(ProcessorCount(0xFF, 0x80), 8);
    EXPECT_EQ(ProcessorCount(~0ull, ~0ull), 64);
    EXPECT_EQ(ProcessorCount(0xF0, 0x0F), 0);
}
