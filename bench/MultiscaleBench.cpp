// Speed of smart contrast, of making exposure series and of denoising, on 12 megapixels. Results
// are checked before a time is reported.

#include "bench/BenchPictures.h"
#include "bench/BenchRun.h"
#include "contrast/LevelsOfDetail.h"
#include "contrast/LevelsOfDetailPadding.h"
#include "series/DaylightSeries.h"
#include "series/Denoise.h"
#include "series/DenoiseNoise.h"
#include "series/ExposureSeries.h"

#include <cmath>
#include <numeric>
#include <vector>

static int Width()
{
    return BenchSide(4000);
}

static int Height()
{
    return BenchSide(3000);
}

constexpr float kUnchanged[kDetailLevels] = {1, 1, 1, 1, 1, 1, 1, 1};

static Picture PaddedScene(const DetailPadding& padding)
{
    const Picture scene = BenchScene(Width(), Height(), 3, 8, 0);
    Picture padded(padding.width, padding.height, 3, 8);
    CBxPicBufAPI::CopyRect(padded.Record(), scene, {padding.x, padding.y}, {0, 0},
                           {Width(), Height()});
    ReplicateBorder8(padded.Record(), padding.x, padding.y, Width(), Height());
    return padded;
}

static void DecomposeColour(benchmark::State& state)
{
    const DetailPadding padding = DetailPaddingOf(Width(), Height());
    const Picture padded = PaddedScene(padding);
    LevelsOfDetail record;
    for (auto _ : state)
        if (Decompose(&record, padded, padding.levels) != Outcome::Done)
            state.SkipWithError("out of memory");
    Picture again(padding.width, padding.height, 3, 8);
    CheckResult(state, Recompose(again.Record(), &record, kUnchanged) == Outcome::Done &&
                           LargestDifference(again, padded) == 0);
    ReportPixels(state, Width(), Height());
}

// What a move of a slider costs.
static void RecomposeColour(benchmark::State& state)
{
    const DetailPadding padding = DetailPaddingOf(Width(), Height());
    const Picture padded = PaddedScene(padding);
    Picture again(padding.width, padding.height, 3, 8);
    LevelsOfDetail record;
    if (Decompose(&record, padded, padding.levels) != Outcome::Done)
        return state.SkipWithError("out of memory");
    for (auto _ : state)
        if (Recompose(again.Record(), &record, kUnchanged) != Outcome::Done)
            state.SkipWithError("refused");
    CheckResult(state, LargestDifference(again, padded) == 0);
    ReportPixels(state, Width(), Height());
}

// The same when the view shows 1280 x 800 of the pixels, with an eighth of that around them.
static void RecomposeRegionColour(benchmark::State& state)
{
    const DetailPadding padding = DetailPaddingOf(Width(), Height());
    const Picture padded = PaddedScene(padding);
    Picture again(padding.width, padding.height, 3, 8);
    LevelsOfDetail record;
    if (Decompose(&record, padded, padding.levels) != Outcome::Done ||
        Recompose(again.Record(), &record, kUnchanged) != Outcome::Done)
        return state.SkipWithError("out of memory");
    const CBxRect<int> region = {BenchSide(1700), BenchSide(1500), BenchSide(3300),
                                 BenchSide(2500)};
    CBxPicBufAPI::SetConst(again.Record(), region, 0);
    for (auto _ : state)
        if (RecomposeRegion(again.Record(), &record, kUnchanged, region) != Outcome::Done)
            state.SkipWithError("refused");
    CheckResult(state, LargestDifference(again, padded) == 0);
    ReportPixels(state, region.right - region.left, region.bottom - region.top);
}

static void SmartContrastWhole(benchmark::State& state)
{
    const Picture scene = BenchScene(Width(), Height(), 3, int(state.range(0)), 0);
    Picture out(Width(), Height(), 3, int(state.range(0)));
    const int lod[kDetailLevels] = {10, 10, 10, 10, 10, 10, 10, 10};
    for (auto _ : state)
        if (SmartContrastPicture(out.Record(), scene, lod, {}) != Outcome::Done)
            state.SkipWithError("out of memory");
    CheckResult(state, LargestDifference(out, scene) == 0);
    ReportPixels(state, Width(), Height());
}

// Some samples of a picture, spread over it.
static std::vector<int> SomeSamples(const SBxPicBuf& picture)
{
    std::vector<int> samples;
    for (int64_t i = 7; i < int64_t(picture.width) * picture.height * 3; i += 499)
        samples.push_back(picture.bitsPerComponent == 8 ? picture.data[i]
                                                        : PicRow<uint16_t>(picture, 0)[i]);
    return samples;
}

// Exposures 0 to 4 are ever brighter than the photograph, which is 5; from there they
// get darker, until nothing is left of a dark photograph.
static bool AreExposuresOf(const std::vector<int>& photo, const std::vector<std::vector<int>>& made)
{
    const int order[kExposures] = {4, 3, 2, 1, 0, 5, 6, 7, 8, 9, 10};
    const auto sum = [](const std::vector<int>& samples)
    { return std::accumulate(samples.begin(), samples.end(), 0); };
    for (size_t i = 1; i < kExposures; ++i)
    {
        const int light = sum(made[size_t(order[i])]);
        if (light > 0 && light >= sum(made[size_t(order[i - 1])]))
            return false;
    }
    return made[5] == photo;
}

static void MakeExposures(benchmark::State& state)
{
    const Picture scene = BenchScene(Width(), Height(), 3, 8, -1);
    const unsigned noiseLevel = unsigned(state.range(0));
    std::vector<std::vector<int>> made(kExposures);
    const SeriesSink sink = [&](int number, const SBxPicBuf& picture, const char*)
    {
        made[size_t(number)] = SomeSamples(picture);
        return Outcome::Done;
    };
    for (auto _ : state)
        if (MakeExposureSeries(scene, noiseLevel, sink, {}) != kExposures)
            state.SkipWithError("incomplete");
    CheckResult(state, AreExposuresOf(SomeSamples(scene), made));
    ReportPixels(state, Width(), Height());
}

static void MakeDaylight(benchmark::State& state)
{
    const int bits = int(state.range(0));
    const Picture scene = BenchScene(Width(), Height(), 3, bits, -1);
    std::vector<std::vector<int>> made(kDaylightVariants);
    const SeriesSink sink = [&](int number, const SBxPicBuf& picture, const char*)
    {
        made[size_t(number)] = SomeSamples(picture);
        return Outcome::Done;
    };
    for (auto _ : state)
        if (MakeDaylightSeries(scene, DaylightMode::Up, sink, {}).size() != kDaylightVariants)
            state.SkipWithError("incomplete");
    bool right = true;
    for (int number = 0; number < kDaylightVariants; ++number)
    {
        std::vector<int> meant = SomeSamples(scene);
        const std::vector<uint16_t> table = DaylightTable(DaylightMode::Up, number, bits);
        for (int& sample : meant)
            sample = table[size_t(sample)];
        right = right && made[size_t(number)] == meant;
    }
    CheckResult(state, right);
    ReportPixels(state, Width(), Height());
}

// The order alone, as the command line wants it. Keys are the brightness of pictures not yet made.
static void OrderDaylight(benchmark::State& state)
{
    const int bits = int(state.range(0));
    const Picture scene = BenchScene(Width(), Height(), 3, bits, -1);
    std::vector<unsigned> keys;
    for (auto _ : state)
        keys = DaylightKeys(scene, DaylightMode::Down);
    Picture variant(Width(), Height(), 3, bits);
    bool right = keys.size() == kDaylightVariants;
    for (int number = 0; right && number < kDaylightVariants; number += 13)
    {
        MakeDaylightVariant(variant.Record(), scene, DaylightMode::Down, number);
        right = std::fabs(keys[size_t(number)] - 3 * MeanOf(variant)) <= 1.0;
    }
    CheckResult(state, right);
    ReportPixels(state, Width(), Height());
}

// The first denoising of a series, with its noise estimate.
static void DenoiseLevel(benchmark::State& state)
{
    if (!UseInstructionSet(state, state.range(0)))
        return;
    const Picture scene = BenchScene(Width(), Height(), 3, 8, -1);
    Picture out(Width(), Height(), 3, 8);
    const int radius = DenoiseRadius(2, unsigned(state.range(1)));
    double before[2], after[2];
    for (auto _ : state)
    {
        double cache[3] = {-1, -1, -1};
        if (DenoiseTiled(out.Record(), scene, radius, radius, 1.0, cache, 0, {}) != Outcome::Done)
            state.SkipWithError("out of memory");
    }
    if (EstimateNoise(before, scene) != Outcome::Done || EstimateNoise(after, out) != Outcome::Done)
        state.SkipWithError("out of memory");
    else if (before[0] < 1.0 || after[0] > 0.7 * before[0])
        state.SkipWithError("the noise is still there");
    UseBestInstructionSet();
    ReportPixels(state, Width(), Height());
}

BENCHMARK(DecomposeColour)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
BENCHMARK(RecomposeColour)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
BENCHMARK(RecomposeRegionColour)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(SmartContrastWhole)
    ->Arg(8)
    ->Arg(16)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(MakeExposures)
    ->DenseRange(0, kNoiseLevels - 1)
    ->ArgName("noise")
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(MakeDaylight)
    ->Arg(8)
    ->Arg(16)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(OrderDaylight)
    ->Arg(8)
    ->Arg(16)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(DenoiseLevel)
    ->ArgsProduct({{1, 2}, {1, 2, 3}})
    ->ArgNames({"variant", "noise"})
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
