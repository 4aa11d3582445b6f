// One photograph to a series of files and to the fusion of those files, as the window does it.

#include "bench/BenchPictures.h"
#include "fusion/FusionJob.h"
#include "fusion/FusionSources.h"
#include "multiscale/SeriesRun.h"

#include <benchmark/benchmark.h>

#include <filesystem>

constexpr int kWidth = 4000, kHeight = 3000;

static std::vector<std::string> PathsOf(const SeriesRun& run)
{
    std::vector<std::string> paths;
    for (const std::string& name : run.files)
        paths.push_back(run.folder + name);
    return paths;
}

// Arguments: kind of the series, how many of it are fused.
static void SeriesThroughFilesMP(benchmark::State& state)
{
    const auto kind = SeriesKind(state.range(0));
    const auto folder = std::filesystem::temp_directory_path() / "plenoviz-series-bench";
    std::filesystem::create_directories(folder);
    const BenchPicture scene = BenchScene(kWidth, kHeight, 3, 8, -1);
    BenchPicture result(kWidth, kHeight, 3, 8);
    for (auto _ : state)
    {
        SeriesRun run;
        run.kind = kind;
        run.source = scene.pic;
        run.noiseLevel = 1;
        run.folder = folder.u8string() + "/";
        MakeSeriesFiles(&run);
        FusionSources sources;
        OpenFusionSources(&sources, PathsOf(run), scene.pic, 0);
        const FusionTask whole = {{}, int(state.range(1)), 128};
        if (FuseWhole(&result.pic, &sources, whole) != FusionOutcome::Done)
            state.SkipWithError("not fused");
    }
    if (LargestDifference(result.pic, scene.pic) < 10)
        state.SkipWithError("nothing has changed");
    std::filesystem::remove_all(folder);
    ReportPixels(state, kWidth, kHeight);
}

BENCHMARK(SeriesThroughFilesMP)
    ->Args({int(SeriesKind::Single), 11})
    ->Args({int(SeriesKind::DaylightUp), 15})
    ->ArgNames({"kind", "fused"})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
