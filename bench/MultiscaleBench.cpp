// Speed of smart contrast, of making exposure series and of denoising, on 12 megapixels. Results
// are checked before a time is reported.

#include "bench/BenchPictures.h"
#include "fusion/FusionKernels.h"
#include "multiscale/DaylightSeries.h"
#include "multiscale/Denoise.h"
#include "multiscale/ExposureSeries.h"
#include "multiscale/LevelsOfDetail.h"

#include <benchmark/benchmark.h>

#include <algorithm>

constexpr int kWidth = 4000, kHeight = 3000;
constexpr float kUnchanged[kDetailLevels] = {1, 1, 1, 1, 1, 1, 1, 1};

static BenchPicture PaddedScene(const DetailPadding& padding)
{
    const BenchPicture scene = BenchScene(kWidth, kHeight, 3, 8, 0);
    BenchPicture padded(padding.width, padding.height, 3, 8);
    CBxPicBufAPI::CopyRect(&padded.pic, scene.pic, {padding.x, padding.y}, {0, 0},
                           {kWidth, kHeight});
    ReplicateBorder8(&padded.pic, padding.x, padding.y, kWidth, kHeight);
    return padded;
}

static void DecomposeColour(benchmark::State& state)
{
    const DetailPadding padding = DetailPaddingOf(kWidth, kHeight);
    const BenchPicture padded = PaddedScene(padding);
    LevelsOfDetail record;
    for (auto _ : state)
        if (Decompose(&record, padded.pic, padding.levels))
            state.SkipWithError("out of memory");
    BenchPicture again(padding.width, padding.height, 3, 8);
    if (Recompose(&again.pic, &record, kUnchanged) || LargestDifference(again.pic, padded.pic) > 0)
        state.SkipWithError("wrong result");
    ReportPixels(state, kWidth, kHeight);
}

// What a move of a slider costs.
static void RecomposeColour(benchmark::State& state)
{
    const DetailPadding padding = DetailPaddingOf(kWidth, kHeight);
    const BenchPicture padded = PaddedScene(padding);
    BenchPicture again(padding.width, padding.height, 3, 8);
    LevelsOfDetail record;
    if (Decompose(&record, padded.pic, padding.levels))
        return state.SkipWithError("out of memory");
    for (auto _ : state)
        if (Recompose(&again.pic, &record, kUnchanged))
            state.SkipWithError("refused");
    if (LargestDifference(again.pic, padded.pic) > 0)
        state.SkipWithError("wrong result");
    ReportPixels(state, kWidth, kHeight);
}

// The same when the view shows 1280 x 800 of the pixels, with an eighth of that around them.
static void RecomposeRegionColour(benchmark::State& state)
{
    const DetailPadding padding = DetailPaddingOf(kWidth, kHeight);
    const BenchPicture padded = PaddedScene(padding);
    BenchPicture again(padding.width, padding.height, 3, 8);
    LevelsOfDetail record;
    if (Decompose(&record, padded.pic, padding.levels) ||
        Recompose(&again.pic, &record, kUnchanged))
        return state.SkipWithError("out of memory");
    const CBxRect<int> region = {1700, 1500, 1700 + 1600, 1500 + 1000};
    CBxPicBufAPI::SetConst(&again.pic, region, 0);
    for (auto _ : state)
        if (RecomposeRegion(&again.pic, &record, kUnchanged, region))
            state.SkipWithError("refused");
    if (LargestDifference(again.pic, padded.pic) > 0)
        state.SkipWithError("wrong result");
    ReportPixels(state, region.right - region.left, region.bottom - region.top);
}

static void SmartContrastWhole(benchmark::State& state)
{
    const BenchPicture scene = BenchScene(kWidth, kHeight, 3, int(state.range(0)), 0);
    BenchPicture out(kWidth, kHeight, 3, int(state.range(0)));
    const int lod[kDetailLevels] = {10, 10, 10, 10, 10, 10, 10, 10};
    for (auto _ : state)
        if (SmartContrastPicture(&out.pic, scene.pic, lod, {}))
            state.SkipWithError("out of memory");
    if (LargestDifference(out.pic, scene.pic) > 0)
        state.SkipWithError("wrong result");
    ReportPixels(state, kWidth, kHeight);
}

static void MakeExposures(benchmark::State& state)
{
    const BenchPicture scene = BenchScene(kWidth, kHeight, 3, 8, -1);
    const unsigned noiseLevel = unsigned(state.range(0));
    const SeriesSink sink = [](int, const SBxPicBuf& picture, const char*)
    {
        benchmark::DoNotOptimize(picture.data);
        return false;
    };
    for (auto _ : state)
        if (MakeExposureSeries(scene.pic, noiseLevel, sink, {}) != kExposures)
            state.SkipWithError("incomplete");
    ReportPixels(state, kWidth, kHeight);
}

static void MakeDaylight(benchmark::State& state)
{
    const int bits = int(state.range(0));
    const BenchPicture scene = BenchScene(kWidth, kHeight, 3, bits, -1);
    const SeriesSink sink = [](int, const SBxPicBuf&, const char*) { return false; };
    for (auto _ : state)
        if (MakeDaylightSeries(scene.pic, DaylightMode::Up, sink, {}).size() != kDaylightVariants)
            state.SkipWithError("incomplete");
    ReportPixels(state, kWidth, kHeight);
}

// The order alone, as the command line wants it.
static void OrderDaylight(benchmark::State& state)
{
    const BenchPicture scene = BenchScene(kWidth, kHeight, 3, int(state.range(0)), -1);
    for (auto _ : state)
        if (DaylightKeys(scene.pic, DaylightMode::Down).size() != kDaylightVariants)
            state.SkipWithError("incomplete");
    ReportPixels(state, kWidth, kHeight);
}

// The first denoising of a series, with its noise estimate.
static void DenoiseLevel(benchmark::State& state)
{
    const FusionKernels* kernels = VcFusionKernelsOf(FusionVariant(state.range(0)));
    if (!kernels)
        return state.SkipWithError("not on this processor");
    VcForceFusionKernels(kernels);
    const BenchPicture scene = BenchScene(kWidth, kHeight, 3, 8, -1);
    BenchPicture out(kWidth, kHeight, 3, 8);
    const int radius = DenoiseRadius(2, unsigned(state.range(1)));
    double before[2], after[2];
    for (auto _ : state)
    {
        double cache[3] = {-1, -1, -1};
        if (DenoiseTiled(&out.pic, scene.pic, radius, radius, 1.0, cache, 0, {}))
            state.SkipWithError("out of memory");
    }
    EstimateNoise(before, scene.pic);
    EstimateNoise(after, out.pic);
    if (before[0] < 1.0 || after[0] > 0.7 * before[0])
        state.SkipWithError("the noise is still there");
    state.SetLabel(kernels->name);
    VcForceFusionKernels(nullptr);
    ReportPixels(state, kWidth, kHeight);
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
