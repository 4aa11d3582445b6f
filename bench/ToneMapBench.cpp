// Speed of the pyramid and of tone mapping. The remapping is shown by both methods on a small
// plane, where the phases end in reasonable time, and whole pictures by the direct one.

#include "base/Stopwatch.h"
#include "bench/BenchPictures.h"
#include "bench/BenchRun.h"
#include "tonemap/Pyramid.h"
#include "tonemap/RemapRegions.h"
#include "tonemap/ToneMap.h"
#include "tools/Parameters.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

static Picture BenchPlane(int width, int height)
{
    Picture plane = BenchScene(width, height, 1, 8, 0);
    (void)CBxPicBufAPI::ConvertBpcComp(plane.Record(), 32, 1);
    return plane;
}

static void BenchPyrDown(benchmark::State& state)
{
    const int width = BenchSide(4064), height = BenchSide(3040);
    const Picture src = BenchPlane(width, height), dst(width / 2, height / 2, 1, 32);
    std::vector<char> scratch(size_t(PyrScratchBytes(width)));
    for (auto _ : state)
        PyrDown(PicRow<float>(src, 0), src->stride, PicRow<float>(dst, 0), dst->stride,
                {width, height}, scratch.data());
    CheckResult(state, std::fabs(MeanOf(dst) - MeanOf(src)) < 0.5);
    ReportPixels(state, width, height);
}

static void BenchPyrUp(benchmark::State& state)
{
    const int width = BenchSide(4064), height = BenchSide(3040);
    const Picture src = BenchPlane(width / 2, height / 2), dst(width, height, 1, 32);
    std::vector<char> scratch(size_t(PyrScratchBytes(width)));
    for (auto _ : state)
        PyrUp(PicRow<float>(src, 0), src->stride, PicRow<float>(dst, 0), dst->stride,
              {width / 2, height / 2}, scratch.data());
    CheckResult(state, std::fabs(MeanOf(dst) - MeanOf(src)) < 0.5);
    ReportPixels(state, width, height);
}

// The tool's defaults.
static ToneMapParams Params(bool chroma)
{
    ToneMapParams params = ToneMapParamsOf(DefaultNumbers().toneMap);
    params.useColors = chroma;
    return params;
}

// A plane of 512 x 512 by both methods, checked against each other. What the phases take
// hardly depends on the size, but on the number of levels.
static void RemapPlane(benchmark::State& state)
{
    const ToneMapMethod method = ToneMapMethod(state.range(0));
    const ToneMapParams p = Params(false);
    const int side = BenchSide(512), levels = SmallBench() ? 3 : kToneMapLevels;
    const Picture plane = BenchPlane(side, side);
    Picture out(side, side, 1, 32), direct(side, side, 1, 32);
    bool failed = ToneMapPlane(direct.Record(), plane, levels, p) != Outcome::Done;
    for (auto _ : state)
        failed =
            failed || ToneMapPlane(out.Record(), plane, levels, p, {}, method) != Outcome::Done;
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            failed =
                failed ||
                std::fabs(double(PicRow<float>(out, y)[x] - PicRow<float>(direct, y)[x])) > 1e-3;
    CheckResult(state, !failed);
    state.SetLabel(method == ToneMapMethod::Direct ? "direct" : "phases");
    ReportPixels(state, side, side);
}

// 12 megapixels, 8 bits; arguments: instruction set, chroma too. All sets give the
// same bits.
static void ToneMapPhotograph(benchmark::State& state)
{
    if (!UseInstructionSet(state, state.range(0)))
        return;
    const int width = BenchSide(4000), height = BenchSide(3000);
    const bool chroma = state.range(1) != 0;
    const ToneMapParams p = Params(chroma);
    const Picture source = BenchScene(width, height, 3, 8, 0);
    Picture out(width, height, 3, 8), expected(width, height, 3, 8);
    bool done = true;
    for (auto _ : state)
        done = done && ToneMapPicture(out.Record(), source, kToneMapLevels, p) == Outcome::Done;
    ForceInstructionSet(InstructionSet::Sse2);
    done = done && ToneMapPicture(expected.Record(), source, kToneMapLevels, p) == Outcome::Done;
    UseBestInstructionSet();
    CheckResult(state, done && LargestDifference(out, expected) == 0 &&
                           LargestDifference(out, source) >= 10);
    ReportPixels(state, width, height);
}

// Seconds from the wish to stop, which comes after `wait` seconds, until the run has ended; below
// zero when it was done before.
static double StopAfter(double wait, SBxPicBuf* out, const SBxPicBuf& source, bool chroma)
{
    const ToneMapParams p = Params(chroma);
    const Stopwatch watch;
    RunControl control;
    control.cancelled = [&] { return watch.Seconds() >= wait; };
    const Outcome outcome = ToneMapPicture(out, source, kToneMapLevels, p, control);
    return outcome == Outcome::Cancelled ? watch.Seconds() - wait : -1.0;
}

// How soon a run over 24 megapixels ends when it is asked to, at moments spread evenly over it.
// Stopped runs write nothing.
static void StopToneMap(benchmark::State& state)
{
    const int width = BenchSide(6000), height = BenchSide(4000);
    const bool chroma = state.range(0) != 0;
    const int moments = SmallBench() ? 6 : 40;
    const Picture source = BenchScene(width, height, 3, 8, 0);
    Picture out(width, height, 3, 8), untouched(width, height, 3, 8);
    std::fill_n(untouched->data, untouched->size, uint8_t(77));
    const Stopwatch watch;
    StopAfter(1e9, out.Record(), source, chroma);
    const double duration = watch.Seconds();
    bool wrong = LargestDifference(out, source) < 10;
    std::vector<double> times;
    for (auto _ : state)
    {
        for (int i = 0; i < moments; ++i)
        {
            CBxPicBufAPI::Copy(out.Record(), untouched);
            const double moment = (i + 0.5) / moments * duration;
            times.push_back(StopAfter(moment, out.Record(), source, chroma));
            wrong |= times.back() >= 0.0 && LargestDifference(out, untouched) > 0;
        }
        std::sort(times.begin(), times.end());
        state.SetIterationTime(std::accumulate(times.begin(), times.end(), 0.0) / moments);
    }
    // The first run may have been the slowest, and a run over a small picture by far.
    const int stopped = SmallBench() ? moments - 1 : moments / 2;
    CheckResult(state, !wrong && times[size_t(stopped)] >= 0.0);
    state.counters["p95_ms"] = 1e3 * times[size_t(moments * 95 / 100)];
    state.counters["worst_ms"] = 1e3 * times.back();
    state.counters["run_ms"] = 1e3 * duration;
}

BENCHMARK(BenchPyrDown)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
BENCHMARK(BenchPyrUp)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();
BENCHMARK(RemapPlane)
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(ToneMapPhotograph)
    ->ArgsProduct({{1, 2, 3}, {0}})
    ->Args({2, 1})
    ->ArgNames({"set", "chroma"})
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(StopToneMap)
    ->Arg(0)
    ->Arg(1)
    ->ArgName("chroma")
    ->Iterations(1)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
