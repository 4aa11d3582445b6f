#include "contrast/LevelsOfDetail.h"

#include "base/ParallelRows.h"
#include "contrast/LevelsOfDetailPadding.h"
#include "tests/support/Reference.h"
#include "tests/support/TestPictures.h"
#include "tests/support/Variants.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace
{

using Lods = int[kDetailLevels];
constexpr Lods kUnchanged = {10, 10, 10, 10, 10, 10, 10, 10};

TestPicture SmartContrast(const TestPicture& in, const Lods& lod)
{
    TestPicture out = TestPicture::Like(in);
    EXPECT_EQ(SmartContrastPicture(out.Record(), in, lod, {}), Outcome::Done);
    return out;
}

// From level `level` up: every detail times its gain.
ReferencePlane Recomposed(const ReferencePlane& gauss, int level, int levels, const float* gains)
{
    if (level == levels)
        return gauss;
    const ReferencePlane coarse = Halve(gauss), expanded = Enlarge(coarse, gauss.w, gauss.h);
    ReferencePlane result = Enlarge(Recomposed(coarse, level + 1, levels, gains), gauss.w, gauss.h);
    for (size_t i = 0; i < result.v.size(); ++i)
        result.v[i] += double(gains[level]) * (gauss.v[i] - expanded.v[i]);
    return result;
}

} // namespace

TEST(DetailPadding, FollowsTheShortSide)
{
    const int cases[][7] = {
        {4000, 3000, 8, 5120, 4096, 560, 548},
        {640, 480, 6, 896, 768, 128, 144},
        {100, 60, 3, 136, 96, 18, 18},
        {60, 100, 3, 96, 136, 18, 18},
        {11, 11, 1, 20, 20, 4, 4},
        {100, 10, 0, 104, 14, 2, 2},
        {1, 1, 0, 5, 5, 2, 2},
    };
    for (const auto& [width, height, levels, paddedWidth, paddedHeight, x, y] : cases)
    {
        const DetailPadding p = DetailPaddingOf(width, height);
        EXPECT_EQ((std::vector<int>{p.levels, p.width, p.height, p.x, p.y}),
                  (std::vector<int>{levels, paddedWidth, paddedHeight, x, y}))
            << width << "x" << height;
    }
}

TEST(DetailPadding, RepeatsTheNearestPixel)
{
    for (int bits : {8, 16})
        for (int components : {1, 3})
        {
            const auto value = [&](int x, int y, int c) { return 20 * y + 8 * x + c + bits; };
            TestPicture padded = PictureOf(9, 7, components, bits, value);
            const TestPicture expected =
                PictureOf(9, 7, components, bits,
                          [&](int x, int y, int c)
                          { return value(std::clamp(x, 3, 5), std::clamp(y, 2, 3), c); });
            if (bits == 8)
                ReplicateBorder8(padded.Record(), 3, 2, 3, 2);
            else
                ReplicateBorder16(padded.Record(), 3, 2, 3, 2);
            ExpectSamePicture(padded, expected);
        }
}

TEST(SmartContrast, GivesBackEveryPictureAtTenAndFlatOnesAlways)
{
    const int sizes[][2] = {{1, 1}, {4, 5}, {10, 40}, {11, 12}, {23, 22}, {97, 64}, {130, 45}};
    for (const auto& size : sizes)
        for (int components : {1, 3})
            for (int bits : {8, 16})
            {
                SCOPED_TRACE(testing::Message() << size[0] << "x" << size[1] << " " << bits);
                const TestPicture scene = ScenePicture(size[0], size[1], components, bits, 0);
                ExpectSamePicture(SmartContrast(scene, kUnchanged), scene);
                const std::vector<double> levels = {201, 0, 255};
                const TestPicture flat = FlatPicture(size[0], size[1], bits,
                                                     {levels.begin(), levels.begin() + components});
                ExpectSamePicture(SmartContrast(flat, {0, 30, 7, 0, 30, 30, 0, 0}), flat);
            }
}

TEST(SmartContrast, HasOnlyTheLevelsThatThePictureHas)
{
    const TestPicture tiny = ScenePicture(10, 200, 3, 8, 0);
    ExpectSamePicture(SmartContrast(tiny, {0, 30, 0, 30, 0, 30, 0, 30}), tiny);

    const TestPicture small = ScenePicture(100, 60, 1, 8, 0); // 3 levels
    const TestPicture changed = SmartContrast(small, {20, 5, 15, 10, 10, 10, 10, 10});
    ExpectSamePicture(SmartContrast(small, {20, 5, 15, 0, 30, 0, 30, 0}), changed);
    EXPECT_NE(HashOf(SmartContrast(small, {20, 5, 10, 10, 10, 10, 10, 10})), HashOf(changed));
}

// 23x17 has one level; 50x41 has two; 16 bits to have five digits to compare.
TEST(Recompose, FollowsTheFormulas)
{
    const int sizes[][2] = {{23, 17}, {50, 41}};
    for (const auto& size : sizes)
    {
        const TestPicture scene = ScenePicture(size[0], size[1], 1, 16, 0);
        LevelsOfDetail record;
        ASSERT_EQ(Decompose(&record, scene, 2), Outcome::Done);
        const float gains[kDetailLevels] = {1.7f, 0.2f};
        TestPicture result(size[0], size[1], 1, 16);
        ASSERT_EQ(Recompose(result.Record(), &record, gains), Outcome::Done);
        const ReferencePlane expected = Recomposed(ComponentOf(scene, 0), 0, record.levels, gains);
        for (int y = 0; y < size[1]; ++y)
            for (int x = 0; x < size[0]; ++x)
                // Half a step of rounding, and single precision at 65536.
                ASSERT_NEAR(result.At(x, y), std::clamp(expected.At(x, y), 0.0, 65535.0), 0.5 + 0.1)
                    << x << ", " << y;
    }
}

TEST(Recompose, OfARegionGivesThePixelsOfTheWhole)
{
    const CBxSize<int> sizes[] = {{301, 203}, {64, 97}, {130, 45}};
    const float gains[kDetailLevels] = {1.7f, 0.2f, 2.5f, 0.0f, 3.0f};
    for (const auto& [w, h] : sizes)
        for (const int components : {1, 3})
        {
            const TestPicture scene = ScenePicture(w, h, components, 16, 0);
            LevelsOfDetail record;
            ASSERT_EQ(Decompose(&record, scene, kDetailLevels), Outcome::Done);
            TestPicture whole = TestPicture::Like(scene);
            ASSERT_EQ(Recompose(whole.Record(), &record, gains), Outcome::Done);
            const CBxRect<int> regions[] = {{0, 0, 1, 1},         {w - 1, h - 1, w, h},
                                            {0, h - 6, 7, h},     {w / 2 - 1, 3, w / 2, 4},
                                            {5, 3, w - 4, h - 1}, {-9, -9, w + 9, h / 2},
                                            {w - 3, 0, w + 1, h}, {17, 11, 54, 40},
                                            {40, 20, 40, 30}};
            for (const CBxRect<int>& r : regions)
            {
                // The planes hold what other numbers have left.
                const float others[kDetailLevels] = {0.1f, 3.0f, 0.5f, 2.0f, 0.3f};
                TestPicture out = TestPicture::Like(scene), expected = TestPicture::Like(scene);
                ASSERT_EQ(Recompose(out.Record(), &record, others), Outcome::Done);
                CBxPicBufAPI::SetConst(out.Record(), 3);
                CBxPicBufAPI::SetConst(expected.Record(), 3);
                const CBxPoint<int> at = {std::max(r.left, 0), std::max(r.top, 0)};
                CBxPicBufAPI::CopyRect(expected.Record(), whole, at, at,
                                       {std::min(r.right, w) - at.x, std::min(r.bottom, h) - at.y});
                ASSERT_EQ(RecomposeRegion(out.Record(), &record, gains, r), Outcome::Done);
                SCOPED_TRACE(testing::Message()
                             << w << "x" << h << ": " << r.left << ", " << r.top);
                ExpectSamePicture(out, expected);
            }
        }
}

TEST(Recompose, RefusesAnotherGeometry)
{
    const TestPicture scene = ScenePicture(32, 30, 3, 8, 0);
    LevelsOfDetail record;
    ASSERT_EQ(Decompose(&record, scene, 1), Outcome::Done);
    EXPECT_EQ(record.levels, 1) << "never more than asked for";
    const float gains[kDetailLevels] = {};
    TestPicture others[] = {{32, 30, 1, 8}, {31, 30, 3, 8}, {32, 31, 3, 8}, {32, 30, 3, 16}};
    for (TestPicture& other : others)
    {
        EXPECT_EQ(Recompose(other.Record(), &record, gains), Outcome::Failed);
        EXPECT_EQ(RecomposeRegion(other.Record(), &record, gains, {0, 0, 1, 1}), Outcome::Failed);
    }
    ReleaseLevelsOfDetail(&record);
    ReleaseLevelsOfDetail(&record);
    TestPicture same(32, 30, 3, 8);
    EXPECT_EQ(Recompose(same.Record(), &record, gains), Outcome::Failed)
        << "nothing left to put together";
}

TEST(ToInteger, RoundsClampsAndStretches)
{
    const float plane[6] = {-3.0f, 0.4f, 0.5f, 99.6f, 300.0f, 70000.0f};
    TestPicture narrow(3, 2, 1, 8), wide(3, 2, 3, 16);
    ToInteger8(narrow.Record(), 0, plane, false);
    ToInteger16(wide.Record(), 1, plane, false);
    const double clamped8[6] = {0, 0, 1, 100, 255, 255}, clamped16[6] = {0, 0, 1, 100, 300, 65535};
    for (int i = 0; i < 6; ++i)
    {
        EXPECT_EQ(narrow.At(i % 3, i / 3), clamped8[i]);
        EXPECT_EQ(wide.At(i % 3, i / 3, 1), clamped16[i]);
    }

    const float range[6] = {-10, 0, 10, 20, 30, 40}, flat[6] = {5, 5, 5, 5, 5, 5};
    ToInteger8(narrow.Record(), 0, range, true);
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(narrow.At(i % 3, i / 3), 51.0 * i);
    ToInteger8(narrow.Record(), 0, flat, true);
    EXPECT_EQ(narrow.At(1, 1), 0);
}

TEST(SmartContrast, WorksInPlaceAndCountsItsSteps)
{
    const TestPicture scene = ScenePicture(120, 75, 3, 8, 1);
    const Lods lod = {25, 3, 14, 8, 10, 10, 10, 10};
    int steps = 0;
    RunControl control;
    control.progress = [&](int n) { steps += n; };
    TestPicture inPlace = ScenePicture(120, 75, 3, 8, 1);
    ASSERT_EQ(SmartContrastPicture(inPlace.Record(), inPlace, lod, control), Outcome::Done);
    ExpectSamePicture(inPlace, SmartContrast(scene, lod));
    EXPECT_EQ(steps, 3 * kSmartContrastSteps);
    VcLimitThreads(1);
    ExpectSamePicture(inPlace, SmartContrast(scene, lod)); // on one thread
    VcLimitThreads(0);
}

// Taken from the native build; holds for every tuned set, every number of threads and system.
TEST(SmartContrast, GivesTheSameBitsOnEveryBuild)
{
    const struct
    {
        int components, bits;
        uint64_t hash;
    } cases[] = {{1, 8, 5999227711677231069u},
                 {3, 8, 3437363608020523056u},
                 {1, 16, 13816655331068028806u},
                 {3, 16, 14175605173933798608u}};
    for (const auto& c : cases)
    {
        const TestPicture scene = ScenePicture(333, 222, c.components, c.bits, 0);
        ForEachVariant(
            [&]
            {
                if (InstructionSetInUse() == InstructionSet::Plain)
                    return;
                for (const int threads : {1, 3, 0})
                {
                    VcLimitThreads(threads);
                    EXPECT_EQ(HashOf(SmartContrast(scene, {25, 3, 14, 8, 22, 17, 5, 30})), c.hash)
                        << c.components << " x " << c.bits;
                }
            });
    }
}

TEST(SmartContrast, StopsBetweenLevels)
{
    const TestPicture scene = ScenePicture(100, 60, 3, 8, 0); // 3 levels, there and back
    TestPicture out(100, 60, 3, 8);
    for (int allowed : {0, 2, 4, 17})
    {
        int polls = 0;
        RunControl control;
        control.cancelled = [&] { return polls++ >= allowed; };
        EXPECT_EQ(SmartContrastPicture(out.Record(), scene, kUnchanged, control),
                  Outcome::Cancelled);
        EXPECT_EQ(polls, allowed + 1) << "nothing is asked or done after a stop";

        LevelsOfDetail record;
        polls = 0;
        EXPECT_EQ(Decompose(&record, scene, 3, control),
                  allowed < 9 ? Outcome::Cancelled : Outcome::Done);
        EXPECT_EQ(record.laplace[0][0] == nullptr, allowed < 9);
    }
}
