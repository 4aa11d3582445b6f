// Speed of the pyramid and of tone mapping. The remapping is shown by both methods on a small
// plane, where the phases end in reasonable time, and whole pictures by the direct one.

#include "bench/BenchPictures.h"
#include "multiscale/Pyramid.h"
#include "multiscale/RemapRegions.h"
#include "multiscale/ToneMap.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <vector>

static BenchPicture BenchPlane(int width, int height)
{
    BenchPicture plane = BenchScene(width, height, 1, 8, 0);
    CBxPicBufAPI::ConvertBpcComp(&plane.pic, 32, 1);
    return plane;
}

static void BenchPyrDown(benchmark::State& state)
{
    const BenchPicture src = BenchPlane(4064, 3040), dst = BenchPlane(2032, 1520);
    std::vector<char> scratch(size_t(PyrScratchBytes(4064)));
    for (auto _ : state)
        PyrDown(PicRow<float>(src.pic, 0), src.pic.stride, PicRow<float>(dst.pic, 0),
                dst.pic.stride, {4064, 3040}, scratch.data());
    if (std::fabs(double(PicRow<float>(dst.pic, 700)[900]) - 160.0) > 100.0)
        state.SkipWithError("wrong result");
    ReportPixels(state, 4064, 3040);
}

static void BenchPyrUp(benchmark::State& state)
{
    const BenchPicture src = BenchPlane(2032, 1520), dst = BenchPlane(4064, 3040);
    std::vector<char> scratch(size_t(PyrScratchBytes(4064)));
    for (auto _ : state)
        PyrUp(PicRow<float>(src.pic, 0), src.pic.stride, PicRow<float>(dst.pic, 0), dst.pic.stride,
              {2032, 1520}, scratch.data());
    if (std::fabs(double(PicRow<float>(dst.pic, 700)[900]) - 160.0) > 100.0)
        state.SkipWithError("wrong result");
    ReportPixels(state, 4064, 3040);
}

// A plane of 512 x 512 by both methods, checked against each other.
static void RemapPlane(benchmark::State& state)
{
    const ToneMapMethod method = ToneMapMethod(state.range(0));
    const ToneMapParams p = ToneMapParamsOf(10, 10, 10, 10);
    const BenchPicture plane = BenchPlane(512, 512);
    BenchPicture out(512, 512, 1, 32), direct(512, 512, 1, 32);
    bool failed = ToneMapPlane(&direct.pic, plane.pic, kToneMapLevels, p.p1, p.p2, p.p3, p.p4);
    for (auto _ : state)
        failed = failed || ToneMapPlane(&out.pic, plane.pic, kToneMapLevels, p.p1, p.p2, p.p3, p.p4,
                                        {}, method);
    for (int y = 0; y < 512; ++y)
        for (int x = 0; x < 512; ++x)
            failed = failed || std::fabs(double(PicRow<float>(out.pic, y)[x] -
                                                PicRow<float>(direct.pic, y)[x])) > 1e-3;
    if (failed)
        state.SkipWithError("wrong result");
    state.SetLabel(method == ToneMapMethod::Direct ? "direct" : "phases");
    ReportPixels(state, 512, 512);
}

// 12 megapixels, 8 bits; arguments: instruction set (0 the best), chroma too.
static void ToneMap12MP(benchmark::State& state)
{
    if (!ForceRemapVariant(int(state.range(0))))
    {
        state.SkipWithError("not on this processor");
        return;
    }
    const ToneMapParams p = ToneMapParamsOf(10, 10, 10, 10);
    const BenchPicture source = BenchScene(4000, 3000, 3, 8, 0);
    BenchPicture out(4000, 3000, 3, 8);
    int result = kToneMapDone;
    for (auto _ : state)
        result |= ToneMapPicture(&out.pic, source.pic, kToneMapLevels, p.p1, p.p2, p.p3, p.p4,
                                 state.range(1) != 0);
    const int change = LargestDifference(out.pic, source.pic);
    if (result != kToneMapDone || change < 10)
        state.SkipWithError("wrong result");
    ForceRemapVariant(0);
    ReportPixels(state, 4000, 3000);
}

using Clock = std::chrono::steady_clock;

static double SecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Seconds from the wish to stop, which comes after `wait` seconds, until the run has ended; below
// zero when it was done before.
static double StopAfter(double wait, SBxPicBuf* out, const SBxPicBuf& source, bool chroma)
{
    const ToneMapParams p = ToneMapParamsOf(10, 10, 10, 10);
    const auto start = Clock::now();
    RunControl control;
    control.cancelled = [&] { return SecondsSince(start) >= wait; };
    const int result =
        ToneMapPicture(out, source, kToneMapLevels, p.p1, p.p2, p.p3, p.p4, chroma, control);
    return result == kToneMapCancelled ? SecondsSince(start) - wait : -1.0;
}

// How soon a run over 24 megapixels ends when it is asked to, at moments spread evenly over it.
// Stopped runs write nothing.
static void StopToneMap24MP(benchmark::State& state)
{
    const bool chroma = state.range(0) != 0;
    const int moments = int(state.max_iterations);
    const BenchPicture source = BenchScene(6000, 4000, 3, 8, 0);
    BenchPicture out(6000, 4000, 3, 8), untouched(6000, 4000, 3, 8);
    std::fill_n(untouched.pic.data, untouched.pic.size, uint8_t(77));
    const auto start = Clock::now();
    StopAfter(1e9, &out.pic, source.pic, chroma);
    const double duration = SecondsSince(start);
    bool wrong = LargestDifference(out.pic, source.pic) < 10;
    std::vector<double> times;
    for (auto _ : state)
    {
        CBxPicBufAPI::Copy(&out.pic, untouched.pic);
        const double moment = (double(times.size()) + 0.5) / moments * duration;
        times.push_back(StopAfter(moment, &out.pic, source.pic, chroma));
        state.SetIterationTime(std::max(times.back(), 0.0));
        wrong |= times.back() >= 0.0 && LargestDifference(out.pic, untouched.pic) > 0;
    }
    std::sort(times.begin(), times.end());
    if (wrong || times[size_t(moments / 2)] < 0.0) // the first run may have been the slowest
        state.SkipWithError("wrong result");
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
BENCHMARK(ToneMap12MP)
    ->ArgsProduct({{1, 2, 3}, {0}})
    ->Args({0, 1})
    ->ArgNames({"set", "chroma"})
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(StopToneMap24MP)
    ->Arg(0)
    ->Arg(1)
    ->ArgName("chroma")
    ->Iterations(40)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
