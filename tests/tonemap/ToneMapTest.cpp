#include "tonemap/ToneMap.h"

#include "tests/support/TestPictures.h"
#include "tests/support/Variants.h"
#include "tonemap/Pyramid.h"
#include "tonemap/RemapRegions.h"
#include "tools/Parameters.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace
{

// Other numbers are where they start.
ToneMapParams Sliders(int contrast, int noiseAmplitude, int details, int equalization)
{
    ToneMapNumbers numbers = DefaultNumbers().toneMap;
    numbers.contrast = contrast;
    numbers.noiseAmplitude = noiseAmplitude;
    numbers.details = details;
    numbers.equalization = equalization;
    return ToneMapParamsOf(numbers);
}

const ToneMapParams kDefaults = Sliders(10, 10, 10, 10);

Outcome Map(SBxPicBuf* out, const SBxPicBuf& in, ToneMapParams params, bool useColors,
            ToneMapMethod method = ToneMapMethod::Direct, const RunControl& control = {})
{
    params.useColors = useColors;
    return ToneMapPicture(out, in, kToneMapLevels, params, control, method);
}

TestPicture Mapped(const TestPicture& in, const ToneMapParams& p, bool useColors,
                   ToneMapMethod method = ToneMapMethod::Direct)
{
    TestPicture out = TestPicture::Like(in);
    EXPECT_EQ(Map(out.Record(), in, p, useColors, method), Outcome::Done);
    return out;
}

TestPicture FloatPlaneOf(const TestPicture& scene)
{
    return PictureOf(scene->width, scene->height, 1, 32,
                     [&](int x, int y, int) { return scene.At(x, y); });
}

TestPicture MappedPlane(const TestPicture& plane, const ToneMapParams& p, ToneMapMethod method)
{
    TestPicture out = TestPicture::Like(plane);
    EXPECT_EQ(ToneMapPlane(out.Record(), plane, kToneMapLevels, p, {}, method), Outcome::Done);
    return out;
}

} // namespace

TEST(ToneMapParams, GiveTheConstantsOfTheSliders)
{
    EXPECT_NEAR(kDefaults.contrast, 0.22, 1e-7);
    EXPECT_NEAR(kDefaults.noiseAmplitude, 0.22, 1e-7);
    EXPECT_EQ(kDefaults.details, 0.5);
    EXPECT_NEAR(kDefaults.equalization, 0.8, 1e-7);
    const RemapConstants k = RemapConstantsOf(kDefaults);
    EXPECT_NEAR(k.sigma, 56.1001f, 1e-5);
    EXPECT_NEAR(k.noise, 2.805f, 1e-5);
    EXPECT_NEAR(k.curveStep, 0.0561001f, 1e-7);
    EXPECT_NEAR(k.beta, 1.6f, 1e-6);
    EXPECT_EQ(Sliders(1, 1, 50, 50).details, 0.0);
    EXPECT_EQ(Sliders(1, 1, 50, 50).equalization, 0.0);
}

TEST(Remapping, KeepsNoiseLiftsDetailAndScalesEdges)
{
    const RemapConstants k = RemapConstantsOf(kDefaults);
    std::vector<float> curve(kRemapCurveEntries);
    FillRemapCurve(curve.data(), k.alpha);
    const float cases[][2] = {{100, 100},      {101, 101},      {102, 102},      {104, 108.664f},
                              {106, 118.265f}, {110, 123.669f}, {120, 133.473f}, {156, 156.044f},
                              {157, 157.540f}, {200, 226.340f}, {90, 76.331f},   {20, 5.660f}};
    for (const auto& c : cases)
        EXPECT_NEAR(RemapSample(c[0], 100.0f, k, curve.data()), c[1], 2e-3) << c[0];
    // Exactly sigma away is an edge already, where both branches meet.
    EXPECT_EQ(RemapSample(k.sigma, 0.0f, k, curve.data()), k.sigma);

    FillRemapCurve(curve.data(), 0.0);
    EXPECT_EQ(curve[0], 1.0f) << "nothing to the power of nothing";
    EXPECT_NEAR(RemapSample(140.0f, 100.0f, k, curve.data()), 100.0f + k.sigma, 1e-4);
}

TEST(RemapGrid, HasNeighbourhoodsThatDoNotTouch)
{
    const int expected[][4] = {
        {0, 0, 9, 9}, {0, 1, 21, 11}, {0, 2, 45, 12}, {0, 3, 93, 12}, {1, 3, 93, 12}};
    for (int level = 0; level < 5; ++level)
    {
        const RemapGrid grid = RemapGridOf(level);
        EXPECT_EQ(grid.fine, expected[level][0]);
        EXPECT_EQ(grid.shift, expected[level][1]);
        EXPECT_EQ(grid.size, expected[level][2]);
        EXPECT_EQ(grid.step, expected[level][3]);
        EXPECT_GE(grid.step << grid.shift, grid.size);
    }
}

// The direct sums against the definition, on planes with and without partial steps.
TEST(ToneMapping, GivesWhatThePhasesGive)
{
    const ToneMapParams settings[] = {kDefaults, Sliders(35, 1, 45, 30), Sliders(3, 30, 1, 1)};
    const CBxSize<int> sizes[] = {{64, 64}, {96, 64}, {128, 160}, {320, 96}};
    for (const ToneMapParams& p : settings)
        for (const auto& size : sizes)
        {
            const TestPicture plane = FloatPlaneOf(ScenePicture(size.cx, size.cy, 1, 8, 1));
            const TestPicture direct = MappedPlane(plane, p, ToneMapMethod::Direct);
            const TestPicture phases = MappedPlane(plane, p, ToneMapMethod::Phases);
            SCOPED_TRACE(::testing::Message()
                         << size.cx << "x" << size.cy << ", contrast " << p.contrast);
            ExpectSamePicture(direct, phases, 1e-3);
        }
}

TEST(ToneMapping, LeavesFlatPicturesFlat)
{
    for (const auto& p : {kDefaults, Sliders(1, 1, 50, 50), Sliders(50, 50, 1, 1)})
    {
        const TestPicture flat = FlatPicture(40, 31, 8, {30, 140, 250});
        ExpectSamePicture(Mapped(flat, p, true), flat, 1);
        const TestPicture pixel = FlatPicture(1, 1, 16, {40000});
        ExpectSamePicture(Mapped(pixel, p, true), pixel, 1);
    }
}

TEST(ToneMapping, OfLuminanceAloneKeepsTheChromaPlanes)
{
    const TestPicture scene = PictureOf(80, 60, 3, 16,
                                        [](int x, int y, int c)
                                        {
                                            return 20000 + 150 * x + (y / 9 % 2) * 3000 +
                                                   1000 * c; // far from both ends of the range
                                        });
    TestPicture before(80, 60, 3, 16), after(80, 60, 3, 16);
    (void)CBxPicBufAPI::ConvertRGBtoYUV(before.Record(), scene);
    const TestPicture mapped = Mapped(scene, kDefaults, false);
    (void)CBxPicBufAPI::ConvertRGBtoYUV(after.Record(), mapped);
    double lumaChange = 0.0;
    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 80; ++x)
        {
            lumaChange = std::max(lumaChange, std::fabs(after.At(x, y, 0) - before.At(x, y, 0)));
            ASSERT_NEAR(after.At(x, y, 1), before.At(x, y, 1), 1) << x << ", " << y;
            ASSERT_NEAR(after.At(x, y, 2), before.At(x, y, 2), 1) << x << ", " << y;
        }
    EXPECT_GT(lumaChange, 500.0);
}

TEST(ToneMapping, StopsAtEveryLookAtTheFlagAndWritesNothing)
{
    const TestPicture scene = ScenePicture(90, 70, 3, 8, 0),
                      flat = FlatPicture(90, 70, 8, {1, 2, 3});
    LimitRemapThreads(1); // or the number of looks would vary
    for (const ToneMapMethod method : {ToneMapMethod::Direct, ToneMapMethod::Phases})
    {
        int looks = 0, allowed = 1 << 30;
        RunControl control;
        control.cancelled = [&] { return looks >= allowed || ++looks == allowed; };
        TestPicture out = TestPicture::Like(scene);
        ASSERT_EQ(Map(out.Record(), scene, kDefaults, true, method, control), Outcome::Done);
        const int all = looks;
        EXPECT_GT(all, 30);
        for (allowed = 1; allowed <= all; allowed += allowed < 12 ? 1 : (all - 12) / 8)
        {
            looks = 0;
            TestPicture untouched = FlatPicture(90, 70, 8, {1, 2, 3});
            ASSERT_EQ(Map(untouched.Record(), scene, kDefaults, true, method, control),
                      Outcome::Cancelled)
                << allowed << " of " << all;
            ExpectSamePicture(untouched, flat);
        }
    }
    LimitRemapThreads(0);
}

// Taken from the native build; holds for every instruction set, thread count and system.
TEST(ToneMapping, GivesTheSameBitsOnEveryBuild)
{
    const TestPicture scene = ScenePicture(301, 203, 3, 16, 0);
    ForEachVariant(
        [&]
        {
            for (const int threads : {1, 2, 8})
            {
                LimitRemapThreads(threads);
                EXPECT_EQ(HashOf(Mapped(scene, Sliders(20, 4, 33, 8), true)), 17465508449943024907u)
                    << threads << " threads";
            }
        },
        InstructionSet::Sse2);
    LimitRemapThreads(0);
}
