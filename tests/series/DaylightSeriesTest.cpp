#include "series/DaylightSeries.h"

#include "tests/support/TestPictures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

namespace
{

constexpr DaylightMode kModes[] = {DaylightMode::Up, DaylightMode::Down, DaylightMode::Darken};

// The formulas, sample by sample in double: gamma, a sample again, then the range.
double VariantSample(DaylightMode mode, int k, int j, double s, int bits)
{
    const double top = bits == 8 ? 255.0 : 65535.0, unit = bits == 8 ? 1.0 : 256.0;
    const double base = mode == DaylightMode::Down ? 1.12 : 1.2;
    const double gamma = std::pow(base, mode == DaylightMode::Up ? k : -k);
    const double bent = std::floor(std::min(top * std::pow(s / top, 1.0 / gamma) + 0.5, top));
    if (mode != DaylightMode::Down)
    {
        const double hi = (255 - 20 * j) * unit;
        return bent < hi ? std::floor(bent / hi * top) : top;
    }
    const double lo = 12 * j * unit;
    return bent >= top ? top : bent < lo ? 0.0 : std::floor((bent - lo) / (top - lo) * top);
}

// Straight from the pixels.
unsigned BrightnessKey(const SBxPicBuf& picture)
{
    double sum = 0.0;
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x)
            for (int c = 0; c < 3; ++c)
                sum += SampleOf(picture, x, y, picture.components == 3 ? c : 0);
    return unsigned(sum / (double(picture.width) * picture.height) + 0.5);
}

} // namespace

TEST(DaylightSeries, NumbersItsVariantsStepByStep)
{
    for (const auto& [number, name] : {std::pair(0, "file_000_000.tif"),
                                       {8, "file_000_008.tif"},
                                       {9, "file_001_000.tif"},
                                       {24, "file_003_000.tif"},
                                       {38, "file_005_003.tif"}})
        EXPECT_EQ(DaylightFileName(number), name);
}

TEST(DaylightSeries, BendsAndClipsAMiddleGreyAsListed)
{
    const int up[] = {128, 138, 151, 167, 186, 210, 241, 255, 255};
    const int down[] = {128, 121, 114, 107, 98, 88, 78, 65, 51};
    for (int n = 0; n < 9; ++n)
    {
        EXPECT_EQ(DaylightTable(DaylightMode::Up, n, 8)[128], up[n]) << n;
        EXPECT_EQ(DaylightTable(DaylightMode::Down, n, 8)[128], down[n]) << n;
    }
    const int gamma[][3] = {
        {9, 144, 118}, {17, 158, 107}, {24, 171, 97}, {30, 183, 86}, {35, 193, 76}};
    for (const auto& [number, brighter, darker] : gamma)
    {
        EXPECT_EQ(DaylightTable(DaylightMode::Up, number, 8)[128], brighter) << number;
        EXPECT_EQ(DaylightTable(DaylightMode::Down, number, 8)[128], darker) << number;
    }
    // With 16 bits the range of Up ends at 255 * 256, so even its first variant brightens a little.
    EXPECT_EQ(DaylightTable(DaylightMode::Up, 0, 16)[30000], 30117);
    EXPECT_EQ(DaylightTable(DaylightMode::Down, 0, 16)[30000], 30000);
}

TEST(DaylightSeries, FollowsTheFormulasForEveryValue)
{
    for (int bits : {8, 16})
        for (DaylightMode mode : kModes)
            for (int number : {0, 1, 8, 13, 24, 38})
            {
                const DaylightVariant v = DaylightVariantOf(number);
                const std::vector<uint16_t> table = DaylightTable(mode, number, bits);
                ASSERT_EQ(table.size(), bits == 8 ? 256u : 65536u);
                for (size_t s = 0; s < table.size(); s += bits == 8 ? 1 : 13)
                    ASSERT_EQ(table[s], VariantSample(mode, v.step, v.place, double(s), bits))
                        << "mode " << int(mode) << ", variant " << number << ", value " << s;
                EXPECT_EQ(table.back(), bits == 8 ? 255 : 65535);
            }
}

TEST(DaylightOrder, RunsFromDarkToBrightAndForDownThroughReversedNumbers)
{
    const TestPicture grey = FlatPicture(8, 8, 8, {128});
    const std::vector<unsigned> upKeys = DaylightKeys(grey, DaylightMode::Up);
    EXPECT_EQ(upKeys[0], 384u);
    EXPECT_EQ(upKeys[9], 432u);
    EXPECT_EQ(upKeys[17], 474u);
    EXPECT_EQ(DaylightKeys(FlatPicture(3, 3, 8, {10, 20, 30}), DaylightMode::Up)[0], 60u);
    std::vector<int> up = DaylightOrder(DaylightMode::Up, upKeys);
    ASSERT_EQ(up.size(), 39u);
    up.resize(6);
    EXPECT_EQ(up, (std::vector<int>{0, 1, 9, 2, 10, 17}));

    const std::vector<int> down =
        DaylightOrder(DaylightMode::Down, DaylightKeys(grey, DaylightMode::Down));
    EXPECT_EQ(std::vector<int>(down.end() - 3, down.end()), (std::vector<int>{29, 37, 38}));
    EXPECT_EQ(std::minmax(down[0], down[1]), std::minmax(0, 4)) << "equal keys: either order";

    // By hand, on a series that was stopped after four.
    const std::vector<unsigned> keys = {50, 10, 40, 20};
    EXPECT_EQ(DaylightOrder(DaylightMode::Up, keys), (std::vector<int>{1, 3, 2, 0}));
    EXPECT_EQ(DaylightOrder(DaylightMode::Down, keys), (std::vector<int>{2, 0, 1, 3}));
    EXPECT_EQ(DaylightOrder(DaylightMode::Up, {7, 7, 3}), (std::vector<int>{2, 0, 1}));
}

TEST(DaylightKeys, FromTheHistogramAreThoseOfThePixels)
{
    for (int components : {1, 3})
        for (int bits : {8, 16})
            for (DaylightMode mode : kModes)
            {
                const TestPicture scene = ScenePicture(61, 47, components, bits, 0);
                std::vector<unsigned> fromPixels;
                std::vector<std::string> names;
                const SeriesSink sink = [&](int, const SBxPicBuf& picture, const char* name)
                {
                    fromPixels.push_back(BrightnessKey(picture));
                    names.push_back(name);
                    return Outcome::Done;
                };
                EXPECT_EQ(MakeDaylightSeries(scene, mode, sink, {}), fromPixels);
                EXPECT_EQ(DaylightKeys(scene, mode), fromPixels);
                ASSERT_EQ(names.size(), 39u);
                EXPECT_EQ(names.back(), "file_005_003.tif");
            }
}

TEST(DaylightSeries, ShowsItsProgressAndStopsWhenAsked)
{
    const TestPicture grey = FlatPicture(8, 8, 8, {128});
    for (bool byCancel : {true, false})
    {
        std::vector<SeriesProgress> shown;
        int made = 0;
        SeriesControl control;
        control.progress = [&](const SeriesProgress& progress) { shown.push_back(progress); };
        (byCancel ? control.cancelRequested : control.stopped) = [&] { return made == 3; };
        const SeriesSink sink = [&](int, const SBxPicBuf&, const char*)
        {
            ++made;
            return Outcome::Done;
        };
        EXPECT_EQ(MakeDaylightSeries(grey, DaylightMode::Up, sink, control).size(), 2u);
        EXPECT_EQ(made, 3) << "the last one is made, but does not count";
        ASSERT_EQ(shown.size(), 3u);
        EXPECT_EQ(shown[1].percent, 7);
        EXPECT_EQ(shown[1].position, 2);
        EXPECT_TRUE(shown[1].newText);
        EXPECT_EQ(shown[2].percent, 10);
        EXPECT_EQ(shown[2].newText, !byCancel);
    }
    EXPECT_EQ(DaylightPercent(0), 5);
    EXPECT_EQ(DaylightPercent(37), 97);
    EXPECT_EQ(DaylightPercent(38), 100);
    const SeriesSink refusing = [](int number, const SBxPicBuf&, const char*)
    { return FailedIf(number == 5); };
    EXPECT_EQ(MakeDaylightSeries(grey, DaylightMode::Down, refusing, {}).size(), 5u);
}
