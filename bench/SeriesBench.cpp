// One photograph to a series of files and to the fusion of those files, as the window does it.

#include "bench/BenchPictures.h"
#include "bench/BenchRun.h"
#include "fusion/FusionAccumulator.h"
#include "pipeline/FusionJob.h"
#include "pipeline/FusionSources.h"
#include "series/SeriesRun.h"

static std::vector<std::string> PathsOf(const SeriesRun& run)
{
    std::vector<std::string> paths;
    for (const std::string& name : run.files)
        paths.push_back(run.folder + name);
    return paths;
}

constexpr unsigned kNoise = 1, kMid = 128;

// Adds the first `count` of a series, made in memory, to the sums. True when memory is short.
static bool AddSeries(VcFusionAccumulator* sums, const SBxPicBuf& scene, SeriesKind kind, int count)
{
    if (kind == SeriesKind::Single)
    {
        const SeriesSink add = [&](int, const SBxPicBuf& exposure, const char*)
        { return FailedIf(VcAccumulateImage(sums, exposure)); };
        return MakeExposureSeries(scene, kNoise, add, {}) != count;
    }
    bool failed = false;
    const DaylightMode mode = DaylightMode::Up;
    const std::vector<int> order = DaylightOrder(mode, DaylightKeys(scene, mode));
    Picture variant(scene.width, scene.height, scene.components, scene.bitsPerComponent);
    for (int i = 0; i < count; ++i)
    {
        MakeDaylightVariant(variant.Record(), scene, mode, order[size_t(i)]);
        failed = failed || VcAccumulateImage(sums, variant);
    }
    return failed;
}

// Arguments: kind of the series, how many of it are fused.
static void SeriesThroughFiles(benchmark::State& state)
{
    const auto kind = SeriesKind(state.range(0));
    const int count = int(state.range(1)), width = BenchSide(4000), height = BenchSide(3000);
    const BenchFolder folder;
    const Picture scene = BenchScene(width, height, 3, 8, -1);
    Picture result(width, height, 3, 8), expected(width, height, 3, 8);
    for (auto _ : state)
    {
        SeriesRun run;
        run.kind = kind;
        run.source = scene;
        run.noiseLevel = kNoise;
        run.folder = folder.path;
        MakeSeriesFiles(&run);
        FusionSources sources;
        OpenFusionSources(&sources, PathsOf(run), scene, 0);
        const FusionTask whole = {{}, count, kMid};
        if (FuseWhole(result.Record(), &sources, whole) != Outcome::Done)
            state.SkipWithError("not fused");
    }
    VcFusionAccumulator sums;
    const bool failed = VcInitAccumulator(&sums, scene, kMid) ||
                        AddSeries(&sums, scene, kind, count) ||
                        VcComposeResult(expected.Record(), sums);
    VcFreeAccumulator(&sums);
    // Files lose nothing. A series that was not fused would be the photograph.
    CheckResult(state, !failed && LargestDifference(result, expected) == 0 &&
                           LargestDifference(result, scene) >= 10);
    ReportPixels(state, width, height);
}

BENCHMARK(SeriesThroughFiles)
    ->Args({int(SeriesKind::Single), 11})
    ->Args({int(SeriesKind::DaylightUp), 15})
    ->ArgNames({"kind", "fused"})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
