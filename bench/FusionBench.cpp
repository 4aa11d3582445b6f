// Speed of the fusion engine: its filters and weights with every set of loops side by side, and
// whole fusions of 12-megapixel brackets. Results are checked before a time is reported.

#include "bench/BenchPictures.h"
#include "fusion/FusionAccumulator.h"
#include "fusion/FusionFilter.h"
#include "fusion/FusionKernels.h"
#include "fusion/FusionWeights.h"
#include "picture/FloatPlane.h"

#include <benchmark/benchmark.h>

#include <cmath>

constexpr int kWidth = 4000, kHeight = 3000;

// Forces the set of the benchmark's first argument; false when the processor cannot run it.
static bool UseVariant(benchmark::State& state)
{
    const FusionKernels* kernels = VcFusionKernelsOf(FusionVariant(state.range(0)));
    VcForceFusionKernels(kernels);
    if (!kernels)
        state.SkipWithError("not on this processor");
    else
        state.SetLabel(kernels->name);
    return kernels != nullptr;
}

static FloatPlane FilledPlane(int width, int height)
{
    FloatPlane plane(VcAllocPlane(int64_t(width) * height));
    for (int64_t i = 0; i < int64_t(width) * height; ++i)
        plane.get()[i] = float((i * 37 + i / width * 11) % 256);
    return plane;
}

static void MakeKernel(float kernel[5][5])
{
    const float tap[5] = {0.05f, 0.25f, 0.4f, 0.25f, 0.05f};
    for (int i = 0; i < 5; ++i)
        for (int j = 0; j < 5; ++j)
            kernel[i][j] = tap[i] * tap[j];
}

// Mean of a plane: filters keep it, so a wrong one shows.
static double MeanOf(const float* plane, int64_t samples)
{
    double sum = 0.0;
    for (int64_t i = 0; i < samples; ++i)
        sum += double(plane[i]);
    return sum / double(samples);
}

static void Reduce(benchmark::State& state)
{
    if (!UseVariant(state))
        return;
    float kernel[5][5];
    MakeKernel(kernel);
    const FloatPlane src = FilledPlane(kWidth, kHeight);
    const FloatPlane dst = FilledPlane(kWidth / 2, kHeight / 2);
    for (auto _ : state)
        VcReduce(dst.get(), src.get(), kWidth / 2, kHeight / 2, kWidth, kHeight, kernel);
    if (std::fabs(MeanOf(dst.get(), kWidth * kHeight / 4) - 127.5) > 0.5)
        state.SkipWithError("wrong result");
    ReportPixels(state, kWidth, kHeight);
}

static void Expand(benchmark::State& state)
{
    if (!UseVariant(state))
        return;
    float kernel[5][5];
    MakeKernel(kernel);
    const FloatPlane src = FilledPlane(kWidth / 2, kHeight / 2);
    const FloatPlane dst = FilledPlane(kWidth, kHeight);
    for (auto _ : state)
        VcExpand(dst.get(), src.get(), kWidth, kHeight, kWidth / 2, kHeight / 2, kernel);
    if (std::fabs(MeanOf(dst.get(), kWidth * kHeight) - 127.5) > 0.5)
        state.SkipWithError("wrong result");
    ReportPixels(state, kWidth, kHeight);
}

// One band level of a full-size picture; arguments: variant, channels.
static void Weigh(benchmark::State& state)
{
    if (!UseVariant(state))
        return;
    const unsigned channels = unsigned(state.range(1));
    float kernel[5][5];
    MakeKernel(kernel);
    // A coarse level of zeros: the band is the level itself.
    const FloatPlane coarse(VcAllocPlane(kWidth * kHeight / 4));
    FloatPlane gauss[3], sums[3], weights(VcAllocPlane(kWidth * kHeight));
    FusionBandJob job = {};
    job.mid = 128.0f;
    job.weights = weights.get();
    job.kernel = kernel;
    job.coarseWidth = kWidth / 2;
    job.coarseHeight = kHeight / 2;
    for (unsigned c = 0; c < channels; ++c)
    {
        gauss[c] = FilledPlane(kWidth, kHeight);
        sums[c].reset(VcAllocPlane(kWidth * kHeight));
        job.gauss[c] = {gauss[c].get(), kWidth, kHeight};
        job.coarse[c] = coarse.get();
        job.sums[c] = sums[c].get();
    }
    for (auto _ : state)
        VcWeighBand(job, kFusionFloats, channels, 8, 0, kHeight);
    const double ratio = double(sums[0].get()[4321]) / double(weights.get()[4321]);
    if (std::fabs(ratio - double(gauss[0].get()[4321])) > 0.01)
        state.SkipWithError("wrong result");
    ReportPixels(state, kWidth, kHeight);
}

static void Accumulate(benchmark::State& state)
{
    if (!UseVariant(state))
        return;
    const BenchPicture source = BenchScene(kWidth, kHeight, 3, 8, 0);
    VcFusionAccumulator acc;
    bool failed = VcInitAccumulator(&acc, source.pic, 128);
    for (auto _ : state)
        failed = failed || VcAccumulateImage(&acc, source.pic);
    BenchPicture result = BenchPicture(kWidth, kHeight, 3, 8);
    failed = failed || VcComposeResult(&result.pic, acc);
    if (failed || LargestDifference(result.pic, source.pic) > 1)
        state.SkipWithError("wrong result");
    VcFreeAccumulator(&acc);
    ReportPixels(state, kWidth, kHeight);
}

static void Compose(benchmark::State& state)
{
    if (!UseVariant(state))
        return;
    const BenchPicture source = BenchScene(kWidth, kHeight, 3, 8, 0);
    BenchPicture result = BenchPicture(kWidth, kHeight, 3, 8);
    VcFusionAccumulator acc;
    bool failed = VcInitAccumulator(&acc, source.pic, 128);
    failed = failed || VcAccumulateImage(&acc, source.pic);
    for (auto _ : state)
        failed = failed || VcComposeResult(&result.pic, acc);
    if (failed || LargestDifference(result.pic, source.pic) > 1)
        state.SkipWithError("wrong result");
    VcFreeAccumulator(&acc);
    ReportPixels(state, kWidth, kHeight);
}

// A bracket in memory, from nothing to the blend; arguments: sources, width, height, bits.
static void FuseBracket(benchmark::State& state)
{
    VcForceFusionKernels(nullptr);
    const int count = int(state.range(0)), width = int(state.range(1)),
              height = int(state.range(2)), bits = int(state.range(3));
    std::vector<BenchPicture> sources;
    for (int i = 0; i < count; ++i)
        sources.push_back(BenchScene(width, height, 3, bits, 2 * (i - count / 2)));
    BenchPicture result(width, height, 3, bits);
    bool failed = false;
    for (auto _ : state)
    {
        VcFusionAccumulator acc;
        failed = failed || VcInitAccumulator(&acc, sources[0].pic, 100);
        for (const BenchPicture& source : sources)
            failed = failed || VcAccumulateImage(&acc, source.pic);
        failed = failed || VcComposeResult(&result.pic, acc);
        VcFreeAccumulator(&acc);
    }
    // A blend lies within its sources, and is none of them.
    if (failed || LargestDifference(result.pic, sources[0].pic) < 10 ||
        LargestDifference(result.pic, sources.back().pic) < 10)
        state.SkipWithError("wrong result");
    ReportPixels(state, width, height * count);
}

static void EveryVariant(benchmark::internal::Benchmark* bench)
{
    for (int variant = 0; variant < kFusionVariants; ++variant)
        bench->Arg(variant);
}

BENCHMARK(Reduce)
    ->Apply(EveryVariant)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(Expand)
    ->Apply(EveryVariant)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(Weigh)
    ->ArgsProduct({{0, 1, 2, 3}, {1, 3}})
    ->ArgNames({"variant", "channels"})
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(Accumulate)
    ->Apply(EveryVariant)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(Compose)
    ->Apply(EveryVariant)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(FuseBracket)
    ->Args({3, 4000, 3000, 8})
    ->Args({3, 4000, 3000, 16})
    ->Args({11, 2000, 1500, 8})
    ->ArgNames({"sources", "width", "height", "bits"})
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
