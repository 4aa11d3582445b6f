// Speed of the fusion engine: its filters and weights with every set of loops side by side, and
// whole fusions of 12-megapixel brackets. Results are checked before a time is reported.

#include "bench/BenchPictures.h"
#include "bench/BenchRun.h"
#include "fusion/FusionAccumulator.h"
#include "fusion/FusionFilter.h"
#include "fusion/FusionKernels.h"
#include "fusion/FusionWeights.h"
#include "picture/FloatPlane.h"

#include <cmath>
#include <vector>

static int Width()
{
    return BenchSide(4000);
}

static int Height()
{
    return BenchSide(3000);
}

static Picture FilledPlane(int width, int height)
{
    Picture plane(width, height, 1, 32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            PicRow<float>(plane, y)[x] = float((x * 37 + y * 48) % 256);
    return plane;
}

static float* SamplesOf(const Picture& plane)
{
    return PicRow<float>(plane, 0);
}

static void MakeKernel(float kernel[5][5])
{
    const float tap[5] = {0.05f, 0.25f, 0.4f, 0.25f, 0.05f};
    for (int i = 0; i < 5; ++i)
        for (int j = 0; j < 5; ++j)
            kernel[i][j] = tap[i] * tap[j];
}

static void Reduce(benchmark::State& state)
{
    if (!UseInstructionSet(state, state.range(0)))
        return;
    const int width = Width(), height = Height();
    float kernel[5][5];
    MakeKernel(kernel);
    const Picture src = FilledPlane(width, height);
    const Picture dst(width / 2, height / 2, 1, 32);
    for (auto _ : state)
        VcReduce(SamplesOf(dst), SamplesOf(src), width / 2, height / 2, width, height, kernel);
    CheckResult(state, std::fabs(MeanOf(dst) - MeanOf(src)) < 0.5);
    ReportPixels(state, width, height);
}

static void Expand(benchmark::State& state)
{
    if (!UseInstructionSet(state, state.range(0)))
        return;
    const int width = Width(), height = Height();
    float kernel[5][5];
    MakeKernel(kernel);
    const Picture src = FilledPlane(width / 2, height / 2);
    const Picture dst(width, height, 1, 32);
    for (auto _ : state)
        VcExpand(SamplesOf(dst), SamplesOf(src), width, height, width / 2, height / 2, kernel);
    CheckResult(state, std::fabs(MeanOf(dst) - MeanOf(src)) < 0.5);
    ReportPixels(state, width, height);
}

// One band level of a full-size picture; arguments: variant, channels.
static void Weigh(benchmark::State& state)
{
    if (!UseInstructionSet(state, state.range(0)))
        return;
    const int width = Width(), height = Height();
    const unsigned channels = unsigned(state.range(1));
    float kernel[5][5];
    MakeKernel(kernel);
    // A coarse level of zeros: the band is the level itself.
    const FloatPlane coarse(VcAllocPlane(width * height / 4));
    const Picture gauss = FilledPlane(width, height);
    FloatPlane sums[3], weights(VcAllocPlane(width * height));
    FusionBandJob job = {};
    job.mid = 128.0f;
    job.weights = weights.get();
    job.kernel = kernel;
    job.coarseWidth = width / 2;
    job.coarseHeight = height / 2;
    for (unsigned c = 0; c < channels; ++c)
    {
        sums[c].reset(VcAllocPlane(width * height));
        job.gauss[c] = {SamplesOf(gauss), width, height};
        job.coarse[c] = coarse.get();
        job.sums[c] = sums[c].get();
    }
    for (auto _ : state)
        VcWeighBand(job, kFusionFloats, channels, 8, 0, height);
    bool right = true;
    for (int i = 0; i < width * height; i += 4321)
        for (unsigned c = 0; c < channels; ++c)
            right = right && std::fabs(double(sums[c].get()[i]) / double(weights.get()[i]) -
                                       double(SamplesOf(gauss)[i])) < 0.01;
    CheckResult(state, right);
    ReportPixels(state, width, height);
}

static void Accumulate(benchmark::State& state)
{
    if (!UseInstructionSet(state, state.range(0)))
        return;
    const Picture source = BenchScene(Width(), Height(), 3, 8, 0);
    VcFusionAccumulator acc;
    bool failed = VcInitAccumulator(&acc, source, 128);
    for (auto _ : state)
        failed = failed || VcAccumulateImage(&acc, source);
    Picture result = Picture(Width(), Height(), 3, 8);
    failed = failed || VcComposeResult(result.Record(), acc);
    CheckResult(state, !failed && LargestDifference(result, source) <= 1);
    VcFreeAccumulator(&acc);
    ReportPixels(state, Width(), Height());
}

static void Compose(benchmark::State& state)
{
    if (!UseInstructionSet(state, state.range(0)))
        return;
    const Picture source = BenchScene(Width(), Height(), 3, 8, 0);
    Picture result = Picture(Width(), Height(), 3, 8);
    VcFusionAccumulator acc;
    bool failed = VcInitAccumulator(&acc, source, 128);
    failed = failed || VcAccumulateImage(&acc, source);
    for (auto _ : state)
        failed = failed || VcComposeResult(result.Record(), acc);
    CheckResult(state, !failed && LargestDifference(result, source) <= 1);
    VcFreeAccumulator(&acc);
    ReportPixels(state, Width(), Height());
}

// True when memory is short.
static bool FuseAll(SBxPicBuf* result, const std::vector<Picture>& sources)
{
    VcFusionAccumulator acc;
    bool failed = VcInitAccumulator(&acc, sources[0], 100);
    for (const Picture& source : sources)
        failed = failed || VcAccumulateImage(&acc, source);
    failed = failed || VcComposeResult(result, acc);
    VcFreeAccumulator(&acc);
    return failed;
}

// A bracket in memory, from nothing to the blend; arguments: sources, width, height, bits.
static void FuseBracket(benchmark::State& state)
{
    UseBestInstructionSet();
    const int count = int(state.range(0)), width = BenchSide(int(state.range(1))),
              height = BenchSide(int(state.range(2))), bits = int(state.range(3));
    std::vector<Picture> sources;
    for (int i = 0; i < count; ++i)
        sources.push_back(BenchScene(width, height, 3, bits, 2 * (i - count / 2)));
    Picture result(width, height, 3, bits), plain(width, height, 3, bits);
    bool failed = false;
    for (auto _ : state)
        failed = FuseAll(result.Record(), sources) || failed;
    ForceInstructionSet(InstructionSet::Plain);
    failed = FuseAll(plain.Record(), sources) || failed;
    UseBestInstructionSet();
    // A blend lies between its sources. The plain loops give it but for the rounding of floats,
    // which shows where all sources are black or white and the weights next to nothing.
    const int step = (1 << bits) / 64;
    const double mean = MeanOf(result);
    CheckResult(state, !failed && mean > 1.1 * MeanOf(sources[0]) &&
                           mean < 0.9 * MeanOf(sources.back()) &&
                           LargestDifference(result, plain) <= step);
    ReportPixels(state, width, height * count);
}

static void EveryInstructionSet(benchmark::internal::Benchmark* bench)
{
    for (int set = 0; set < kInstructionSets; ++set)
        bench->Arg(set);
}

BENCHMARK(Reduce)
    ->Apply(EveryInstructionSet)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(Expand)
    ->Apply(EveryInstructionSet)
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
    ->Apply(EveryInstructionSet)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(Compose)
    ->Apply(EveryInstructionSet)
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
