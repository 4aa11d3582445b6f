#include "multiscale/DaylightSeries.h"

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
    double means = 0.0;
    for (int c = 0; c < 3; ++c)
    {
        double sum = 0.0;
        for (int y = 0; y < picture.height; ++y)
            for (int x = 0; x < picture.width; ++x)
            {
                const int i = x * picture.components + (picture.components == 3 ? c : 0);
                sum += picture.bitsPerComponent == 8 ? PicRow<const uint8_t>(picture, y)[i]
                                                     : PicRow<const uint16_t>(picture, y)[i];
            }
        means += sum / (double(picture.width) * picture.height);
    }
    return unsigned(means + 0.5);
}

std::vector<double> StepsOf(const TestPicture& source, DaylightMode mode, int first, int count)
{
    std::vector<double> values;
    TestPicture variant(source.pic.width, source.pic.height, source.pic.components,
                        source.pic.bitsPerComponent);
    for (int n = first; n < first + count; ++n)
    {
        MakeDaylightVariant(&variant.pic, source.pic, mode, n);
        values.push_back(variant.At(0, 0));
    }
    return values;
}

std::vector<std::string> OrderedNames(const TestPicture& source, DaylightMode mode)
{
    std::vector<std::string> names;
    for (int number : DaylightOrder(mode, DaylightKeys(source.pic, mode)))
        names.push_back(DaylightFileName(number));
    return names;
}

} // namespace

TEST(DaylightSeries, NumbersItsVariantsStepByStep)
{
    const std::pair<int, std::string> names[] = {
        {0, "file_000_000.tif"},  {8, "file_000_008.tif"},  {9, "file_001_000.tif"},
        {16, "file_001_007.tif"}, {17, "file_002_000.tif"}, {24, "file_003_000.tif"},
        {30, "file_004_000.tif"}, {35, "file_005_000.tif"}, {38, "file_005_003.tif"},
    };
    for (const auto& name : names)
        EXPECT_EQ(DaylightFileName(name.first), name.second);
}

TEST(DaylightSeries, BendsAndClipsAMiddleGreyAsListed)
{
    const TestPicture grey = FlatPicture(8, 8, 8, {128});
    const std::vector<double> up = {128, 138, 151, 167, 186, 210, 241, 255, 255};
    const std::vector<double> down = {128, 121, 114, 107, 98, 88, 78, 65, 51};
    EXPECT_EQ(StepsOf(grey, DaylightMode::Up, 0, 9), up);
    EXPECT_EQ(StepsOf(grey, DaylightMode::Down, 0, 9), down);
    const double gammaUp[] = {144, 158, 171, 183, 193}, gammaDown[] = {118, 107, 97, 86, 76};
    const int firsts[] = {9, 17, 24, 30, 35};
    for (int k = 0; k < 5; ++k)
    {
        EXPECT_EQ(StepsOf(grey, DaylightMode::Up, firsts[k], 1)[0], gammaUp[k]);
        EXPECT_EQ(StepsOf(grey, DaylightMode::Down, firsts[k], 1)[0], gammaDown[k]);
    }
    // With 16 bits the range of Up ends at 255 * 256, so even its first variant brightens a little.
    const TestPicture fine = FlatPicture(2, 2, 16, {30000});
    EXPECT_EQ(StepsOf(fine, DaylightMode::Up, 0, 1)[0], 30117);
    EXPECT_EQ(StepsOf(fine, DaylightMode::Down, 0, 1)[0], 30000);
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

TEST(DaylightOrder, RunsFromDarkToBright)
{
    const TestPicture grey = FlatPicture(8, 8, 8, {128});
    const std::vector<std::string> up = OrderedNames(grey, DaylightMode::Up);
    ASSERT_EQ(up.size(), 39u);
    EXPECT_EQ(
        std::vector<std::string>(up.begin(), up.begin() + 6),
        (std::vector<std::string>{"file_000_000.tif", "file_000_001.tif", "file_001_000.tif",
                                  "file_000_002.tif", "file_001_001.tif", "file_002_000.tif"}));
    const std::vector<unsigned> keys = DaylightKeys(grey.pic, DaylightMode::Up);
    EXPECT_EQ(keys[0], 384u);
    EXPECT_EQ(keys[9], 432u);
    EXPECT_EQ(keys[17], 474u);
    EXPECT_EQ(DaylightKeys(FlatPicture(3, 3, 8, {10, 20, 30}).pic, DaylightMode::Up)[0], 60u);
}

TEST(DaylightOrder, OfDownGoesThroughReversedNumbers)
{
    const std::vector<std::string> down =
        OrderedNames(FlatPicture(8, 8, 8, {128}), DaylightMode::Down);
    EXPECT_EQ(
        std::vector<std::string>(down.end() - 3, down.end()),
        (std::vector<std::string>{"file_003_005.tif", "file_005_002.tif", "file_005_003.tif"}));
    std::vector<std::string> darkest(down.begin(), down.begin() + 2); // equal keys: either order
    std::sort(darkest.begin(), darkest.end());
    EXPECT_EQ(darkest, (std::vector<std::string>{"file_000_000.tif", "file_000_004.tif"}));

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
                    return false;
                };
                EXPECT_EQ(MakeDaylightSeries(scene.pic, mode, sink, {}), fromPixels);
                EXPECT_EQ(DaylightKeys(scene.pic, mode), fromPixels);
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
            return false;
        };
        EXPECT_EQ(MakeDaylightSeries(grey.pic, DaylightMode::Up, sink, control).size(), 2u);
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
    { return number == 5; };
    EXPECT_EQ(MakeDaylightSeries(grey.pic, DaylightMode::Down, refusing, {}).size(), 5u);
}
