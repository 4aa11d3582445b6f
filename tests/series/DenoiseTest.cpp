#include "series/Denoise.h"

#include "series/DenoiseNoise.h"
#include "series/ExposureSeries.h"
#include "tests/support/TestPictures.h"
#include "tests/support/Variants.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace
{

double TopOf(const SBxPicBuf& picture)
{
    return picture.bitsPerComponent == 8 ? 255.0 : 65535.0;
}

// The picture with Gaussian noise; sigma in 8-bit steps.
TestPicture Noisy(const TestPicture& clean, double sigma, bool alikeInAllComponents = false)
{
    std::mt19937 random(5);
    std::normal_distribution<double> noise(0.0, sigma * TopOf(clean) / 255.0);
    double here = 0.0;
    return PictureOf(clean->width, clean->height, clean->components, clean->bitsPerComponent,
                     [&](int x, int y, int c)
                     {
                         if (c == 0 || !alikeInAllComponents)
                             here = noise(random);
                         return std::clamp(std::floor(clean.At(x, y, c) + here + 0.5), 0.0,
                                           TopOf(clean));
                     });
}

// Slow shades in every colour, with sharp edges of both directions and a round one.
TestPicture Shapes(int width, int height, int components, int bits)
{
    const double unit = bits == 8 ? 1.0 : 257.0;
    return PictureOf(width, height, components, bits,
                     [=](int x, int y, int c)
                     {
                         double value = 90.0 + 30.0 * std::sin(x * 0.02 + c) + y * 30.0 / height;
                         if (x / 60 % 2)
                             value += 40.0 + 20.0 * c;
                         if (std::hypot(x % 100 - 50, y % 100 - 50) < 20)
                             value -= 45.0 - 20.0 * c;
                         return std::floor(value * unit);
                     });
}

TestPicture Denoised(const TestPicture& noisy, int radius, unsigned threads = 2)
{
    TestPicture result = TestPicture::Like(noisy);
    double cache[3] = {-1, -1, -1};
    EXPECT_EQ(
        DenoiseTiled(result.Record(), noisy, radius, radius, 1.0, cache, threads, RunControl()),
        Outcome::Done);
    return result;
}

// Root of the mean squared difference, in 8-bit steps.
double Error(const TestPicture& a, const TestPicture& b)
{
    double sum = 0.0;
    for (int y = 0; y < a->height; ++y)
        for (int x = 0; x < a->width; ++x)
            for (int c = 0; c < a->components; ++c)
                sum += std::pow(a.At(x, y, c) - b.At(x, y, c), 2);
    const double samples = double(a->width) * a->height * a->components;
    return std::sqrt(sum / samples) * 255.0 / TopOf(a);
}

double Decibels(double before, double after)
{
    return 20.0 * std::log10(before / after);
}

} // namespace

TEST(DenoiseTiles, CoverThePictureOnceAndAreAboutAlike)
{
    // Width, height, how many, and the size of the first.
    const int cases[][5] = {{1, 1, 1, 1, 1},           {999, 999, 1, 999, 999},
                            {1000, 40, 1, 1000, 40},   {1001, 40, 2, 501, 40},
                            {2832, 2128, 9, 944, 710}, {40, 2001, 3, 40, 667}};
    for (const auto& [width, height, count, tileWidth, tileHeight] : cases)
    {
        SCOPED_TRACE(testing::Message() << width << "x" << height);
        const std::vector<CBxRect<int>> tiles = DenoiseTiles(width, height);
        ASSERT_EQ(int(tiles.size()), count);
        EXPECT_EQ(tiles[0].right, tileWidth);
        EXPECT_EQ(tiles[0].bottom, tileHeight);
        int64_t area = 0;
        for (const CBxRect<int>& tile : tiles)
            area += int64_t(tile.right - tile.left) * (tile.bottom - tile.top);
        EXPECT_EQ(area, int64_t(width) * height);
        EXPECT_EQ(tiles.back().right, width);
        EXPECT_EQ(tiles.back().bottom, height);
    }
    const CBxRect<int> wide = WidenedTile({1000, 0, 2000, 1000}, 2050, 3000);
    EXPECT_EQ(wide.left, 900);
    EXPECT_EQ(wide.top, 0);
    EXPECT_EQ(wide.right, 2050);
    EXPECT_EQ(wide.bottom, 1100);
}

TEST(NoiseEstimate, FindsWhiteNoiseUnderShapesAndBesideClippedAreas)
{
    for (int bits : {8, 16})
        for (int components : {1, 3})
            for (double sigma : {3.0, 9.0})
            {
                SCOPED_TRACE(testing::Message() << bits << ", " << components << ", " << sigma);
                TestPicture picture = Noisy(Shapes(400, 300, components, bits), sigma);
                for (int y = 0; y < 300; ++y)
                    for (int x = 0; x < 200; ++x)
                        for (int c = 0; c < components; ++c)
                            picture.Set(x, y, c, TopOf(picture));
                double noise[2];
                ASSERT_EQ(EstimateNoise(noise, picture), Outcome::Done);
                // The grey of three independent channels has 0.668 of the noise of each.
                const double expected = components == 1 ? sigma : 0.668 * sigma;
                EXPECT_NEAR(noise[0], expected, 0.1 * expected);
                EXPECT_NEAR(noise[1], expected, 0.15 * expected);
            }
}

TEST(NoiseEstimate, TellsCoarseNoiseFromWhiteAndNothingFromNothing)
{
    const TestPicture grain = Noisy(FlatPicture(256, 256, 8, {120}), 12.0);
    const TestPicture coarse =
        PictureOf(255, 255, 1, 8,
                  [&](int x, int y, int)
                  {
                      return std::floor((grain.At(x, y) + grain.At(x + 1, y) + grain.At(x, y + 1) +
                                         grain.At(x + 1, y + 1)) /
                                        4);
                  });
    double noise[2];
    ASSERT_EQ(EstimateNoise(noise, coarse), Outcome::Done);
    EXPECT_NEAR(noise[1], 1.5 * noise[0], 1e-9);
    for (int side : {1, 2, 5, 64})
    {
        ASSERT_EQ(EstimateNoise(noise, FlatPicture(side, side, 8, {120})), Outcome::Done);
        EXPECT_EQ(noise[0], 0.0);
        EXPECT_EQ(noise[1], 0.0);
    }
}

TEST(Denoise, TakesAwayNoiseMoreWithALargerRadius)
{
    for (int bits : {8, 16})
        for (int components : {1, 3})
        {
            SCOPED_TRACE(testing::Message() << bits << " bits, " << components);
            const TestPicture clean = Shapes(300, 240, components, bits);
            const TestPicture noisy = Noisy(clean, 8.0);
            const double before = Error(noisy, clean);
            const double low = Decibels(before, Error(Denoised(noisy, 4), clean));
            const double medium = Decibels(before, Error(Denoised(noisy, 14), clean));
            EXPECT_GT(low, 4.0);
            EXPECT_GT(medium, low + 1.0);
        }
}

// A photograph whose shadows were stretched: the noise is in the source and grows with it.
TEST(Denoise, FollowsTheNoiseOfASeries)
{
    const TestPicture clean = Shapes(300, 240, 3, 8), noisy = Noisy(clean, 2.5);
    TestPicture cleanStretch(300, 240, 3, 8), stretch(300, 240, 3, 8), result(300, 240, 3, 8);
    double cache[3] = {-1, -1, -1}, first[3];
    for (int k = 2; k <= 4; ++k)
    {
        MakeExposure(cleanStretch.Record(), clean, k);
        MakeExposure(stretch.Record(), noisy, k);
        const int r = DenoiseRadius(k, 2);
        ASSERT_EQ(DenoiseTiled(result.Record(), stretch, r, r, 1.0, cache, 2, RunControl()),
                  Outcome::Done);
        EXPECT_GT(Decibels(Error(stretch, cleanStretch), Error(result, cleanStretch)), 4.0) << k;
        if (k == 2)
            std::copy(cache, cache + 3, first);
        EXPECT_TRUE(std::equal(cache, cache + 3, first)) << "estimated once";
    }
    EXPECT_NEAR(first[0], 0.668 * 2.5 * 255 / 160, 0.4);
}

TEST(Denoise, KeepsEdgesWhereTheyAre)
{
    const TestPicture clean = PictureOf(
        200, 200, 3, 8, [](int x, int, int c) { return x < 100 ? 60 + 20 * c : 170 - 30 * c; });
    const TestPicture result = Denoised(Noisy(clean, 8.0), 14);
    for (int c = 0; c < 3; ++c)
        for (int x : {97, 98, 99, 100, 101, 102})
        {
            double mean = 0.0;
            for (int y = 0; y < 200; ++y)
                mean += result.At(x, y, c) / 200.0;
            // Steps of 110, 60 and 10: the weakest is what the filter may soften most.
            EXPECT_NEAR(mean, clean.At(x, 0, c), 5.0) << "column " << x << ", component " << c;
        }
}

TEST(Denoise, GivesGreysNoColour)
{
    const TestPicture noisy = Noisy(Shapes(90, 70, 1, 8), 10.0);
    const TestPicture grey =
        PictureOf(90, 70, 3, 8, [&](int x, int y, int) { return noisy.At(x, y); });
    const TestPicture result = Denoised(grey, 8), single = Denoised(noisy, 8);
    for (int y = 0; y < 70; ++y)
        for (int x = 0; x < 90; ++x)
        {
            ASSERT_EQ(result.At(x, y, 0), result.At(x, y, 1)) << x << ", " << y;
            ASSERT_EQ(result.At(x, y, 0), result.At(x, y, 2)) << x << ", " << y;
            ASSERT_NEAR(result.At(x, y, 0), single.At(x, y), 1) << "luma of greys, once rounded";
        }
}

TEST(Denoise, LeavesCleanPicturesAloneAtEverySize)
{
    const int sizes[][2] = {{1, 1}, {2, 3}, {7, 9}, {8, 8}, {9, 40}, {17, 5}, {65, 64}};
    for (const auto& size : sizes)
        for (int components : {1, 3})
            for (int bits : {8, 16})
            {
                const std::vector<double> grey(size_t(components), 99);
                const TestPicture flat = FlatPicture(size[0], size[1], bits, grey);
                double cache[3] = {4.0, 4.0, 14.0}; // noise that is not there
                TestPicture result(size[0], size[1], components, bits);
                ASSERT_EQ(DenoiseTiled(result.Record(), flat, 14, 14, 1.0, cache, 1, RunControl()),
                          Outcome::Done);
                ExpectSamePicture(result, flat);

                const TestPicture noisy = Noisy(flat, 9.0);
                ExpectSamePicture(Denoised(noisy, 0), noisy);
            }
}

// The middle of a two-tile picture as part of a picture of one tile, on the same grid of blocks.
TEST(Denoise, ShowsNoSeamsBetweenTiles)
{
    const TestPicture noisy = Noisy(Shapes(1300, 60, 3, 8), 8.0);
    TestPicture part(960, 60, 3, 8), whole(1300, 60, 3, 8), alone(960, 60, 3, 8);
    CBxPicBufAPI::CopyRect(part.Record(), noisy, {0, 0}, {144, 0}, {960, 60});
    double cache[3] = {5.3, 5.3, 14.0};
    ASSERT_EQ(DenoiseTiled(whole.Record(), noisy, 14, 14, 1.0, cache, 2, RunControl()),
              Outcome::Done);
    ASSERT_EQ(DenoiseTiled(alone.Record(), part, 14, 14, 1.0, cache, 2, RunControl()),
              Outcome::Done);
    int differing = 0;
    for (int y = 0; y < 60; ++y)
        for (int x = 500; x < 800; ++x) // the seam is at 650
            for (int c = 0; c < 3; ++c)
            {
                const double difference = whole.At(x, y, c) - alone.At(x - 144, y, c);
                ASSERT_LE(std::abs(difference), 1.0) << x << ", " << y;
                differing += difference != 0.0;
            }
    EXPECT_LT(differing, 300 * 60 * 3 / 100) << "roundings";
}

// What a blur over 8 x 8 pixels leaves of white noise: waves that are longer than a block.
TEST(Denoise, TakesAwayNoiseThatIsTooCoarseForASingleSize)
{
    const TestPicture clean = FlatPicture(400, 300, 8, {120});
    const TestPicture grain = Noisy(FlatPicture(407, 307, 8, {120}), 25.0);
    const TestPicture noisy = PictureOf(400, 300, 1, 8,
                                        [&](int x, int y, int)
                                        {
                                            double sum = 32;
                                            for (int i = 0; i < 64; ++i)
                                                sum += grain.At(x + i % 8, y + i / 8);
                                            return std::floor(sum / 64);
                                        });
    // A single size comes to 4 or 5 decibels, one size too few to 1 or 2 less than these.
    for (const auto& [radius, least] : {std::pair(4, 7.2), {8, 11.4}, {14, 14.5}})
    {
        TestPicture result = TestPicture::Like(noisy);
        double cache[3] = {25.0, 25.0, double(radius)};
        ASSERT_EQ(DenoiseTiled(result.Record(), noisy, radius, radius, 1.0, cache, 2, RunControl()),
                  Outcome::Done);
        EXPECT_GT(Decibels(Error(noisy, clean), Error(result, clean)), least) << radius;
    }
}

// So that skin and walls do not look painted, a fifth at a radius of 4 and nothing from 12 on; and
// nothing of colour noise, which is the uglier.
TEST(Denoise, LeavesSomeOfTheOriginalInButNotOfItsColours)
{
    const TestPicture grey = FlatPicture(400, 300, 8, {120}), noisyGrey = Noisy(grey, 12.0);
    const auto left = [&](int radius)
    { return Error(Denoised(noisyGrey, radius), grey) / Error(noisyGrey, grey); };
    EXPECT_GT(left(4), 0.5); // else 0.44
    EXPECT_LT(left(12), 0.15);

    const TestPicture noisy = Noisy(FlatPicture(400, 300, 8, {120, 120, 120}), 8.0);
    const TestPicture result = Denoised(noisy, 8);
    double luma = 0, colour = 0;
    for (int y = 0; y < 300; ++y)
        for (int x = 0; x < 400; ++x)
        {
            const double blue = result.At(x, y, 0) - 120;
            const double here = 0.114 * blue + 0.587 * (result.At(x, y, 1) - 120) +
                                0.299 * (result.At(x, y, 2) - 120);
            luma += here * here;
            colour += (blue - here) * (blue - here);
        }
    EXPECT_LT(colour, 1.6 * luma) << "2.7 times of it before";
}

// Noise as integers, which every system makes alike.
static TestPicture RepeatableNoise(int components, int bits)
{
    uint32_t state = 1;
    return PictureOf(203, 121, components, bits,
                     [&](int x, int y, int c)
                     {
                         uint32_t sum = 0; // of four: nearly a bell
                         for (int i = 0; i < 4; ++i)
                             sum += (state = state * 1664525u + 1013904223u) >> 26;
                         const double value = 40.0 + (x / 60 + y / 50) % 2 * 60 + c * 10 + sum / 4;
                         return bits == 8 ? value : value * 256;
                     });
}

// Taken from the native build; holds for every tuned set, every number of threads and system. The
// filters of the plain set differ by float rounding.
TEST(Denoise, GivesTheSameBitsOnEveryBuild)
{
    const struct
    {
        int components, bits, radius; // three sizes and some of the original, or four and none
        uint64_t hash;
    } cases[] = {{3, 8, 4, 15515732746726759135u},
                 {1, 16, 8, 1226690592905076131u},
                 {3, 16, 14, 4092489574979396797u}};
    for (const auto& c : cases)
    {
        const TestPicture noisy = RepeatableNoise(c.components, c.bits);
        const TestPicture best = Denoised(noisy, c.radius, 1);
        EXPECT_EQ(HashOf(best), c.hash) << c.radius;
        for (const unsigned threads : {0u, 2u, 255u})
            ExpectSamePicture(Denoised(noisy, c.radius, threads), best);
        ForEachVariant(
            [&]
            {
                const bool plain = InstructionSetInUse() == InstructionSet::Plain;
                ExpectSamePicture(Denoised(noisy, c.radius), best,
                                  plain ? c.bits == 8 ? 1 : 257 : 0);
            });
    }
}

TEST(Denoise, StopsAtOnceAndKeepsWhatIsUnfinished)
{
    const TestPicture noisy = Noisy(Shapes(1100, 40, 1, 8), 8.0);
    const TestPicture marked = FlatPicture(1100, 40, 8, {3});
    int polls = 0, allowed = 1 << 20;
    RunControl control;
    control.cancelled = [&] { return polls++ >= allowed; };
    const auto run = [&](TestPicture* result)
    {
        double cache[3] = {8.0, 8.0, 8.0};
        polls = 0;
        CBxPicBufAPI::Copy(result->Record(), marked);
        return DenoiseTiled(result->Record(), noisy, 8, 8, 1.0, cache, 2, control);
    };
    TestPicture finished(1100, 40, 1, 8), stopped(1100, 40, 1, 8);
    ASSERT_EQ(run(&finished), Outcome::Done);
    const int all = polls;
    EXPECT_GE(all, 2 * 4) << "several times a tile";
    for (allowed = 0; allowed < all; allowed += 3)
    {
        EXPECT_EQ(run(&stopped), Outcome::Cancelled);
        EXPECT_EQ(polls, allowed + 1);
        const bool firstTile = stopped.At(0, 0) != 3.0;
        for (int x : {0, 549, 550, 1099})
            EXPECT_EQ(stopped.At(x, 20), x < 550 && firstTile ? finished.At(x, 20) : 3.0) << x;
    }
}
