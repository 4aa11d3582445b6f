// Speed of the fusion dialogs: eleven 12-megapixel photographs in files, looked at through a view
// of 1920 x 1080 at 100 %. First previews read the files; the following ones are what a slider
// costs.

#include "bench/BenchPictures.h"
#include "fusion/FusionJob.h"
#include "picture/ImageFile.h"

#include <filesystem>

namespace fs = std::filesystem;

constexpr int kWidth = 4000, kHeight = 3000, kSources = 11;
constexpr int kViewWidth = 1920, kViewHeight = 1080;

// The files, for as long as the program runs.
struct SeriesFiles
{
    fs::path folder = fs::temp_directory_path() / "plenoviz-preview-bench";
    std::vector<std::string> paths;

    SeriesFiles()
    {
        fs::create_directories(folder);
        for (int i = 0; i < kSources; ++i)
        {
            const BenchPicture photo = BenchScene(kWidth, kHeight, 3, 8, i - kSources / 2);
            paths.push_back((folder / ("photo" + std::to_string(i) + ".jpg")).u8string());
            SavePicturePair(photo.pic, {}, paths.back().c_str(), "", kFormatJpeg);
        }
    }
    ~SeriesFiles()
    {
        std::error_code error;
        fs::remove_all(folder, error);
    }
    SeriesFiles(const SeriesFiles&) = delete;
    SeriesFiles& operator=(const SeriesFiles&) = delete;
};

// What the view shows of the middle of the photograph, and what surrounds it.
static CBxRect<int> ViewedRegion()
{
    ImageView view;
    view.area = {0, 0, kViewWidth, kViewHeight};
    view.state = {1.0, kViewWidth / 2.0, kViewHeight / 2.0, kWidth / 2.0, kHeight / 2.0};
    return FusionRegionOf(view, kWidth, kHeight);
}

struct OpenSeries
{
    CBxRect<int> region = ViewedRegion();
    FusionSources sources;
    BenchPicture preview{region.right - region.left, region.bottom - region.top, 3, 8};

    OpenSeries()
    {
        static const SeriesFiles files;
        SBxPicBuf geometry = {};
        geometry.width = kWidth;
        geometry.height = kHeight;
        geometry.components = 3;
        geometry.bitsPerComponent = 8;
        OpenFusionSources(&sources, files.paths, geometry, FusionSourceBudget());
    }

    void Fuse(benchmark::State& state, int count, unsigned mid)
    {
        const FusionTask task = {region, count, mid};
        if (FuseRegion(&preview.pic, &sources, task, nullptr) != FusionOutcome::Done)
            state.SkipWithError("no preview");
    }
};

static void FuseFirstPreview(benchmark::State& state)
{
    for (auto _ : state)
    {
        OpenSeries series;
        series.Fuse(state, kSources, 100);
    }
}

// The Exposure slider: another target grey every time.
static void FuseNextExposure(benchmark::State& state)
{
    OpenSeries series;
    series.Fuse(state, kSources, 100);
    unsigned mid = 100;
    for (auto _ : state)
        series.Fuse(state, kSources, mid = mid == 100 ? 108 : 100);
    if (series.sources.filesRead != kSources)
        state.SkipWithError("a file was read twice");
}

// The Power slider: one source more and one less in turn.
static void FuseNextPower(benchmark::State& state)
{
    OpenSeries series;
    series.Fuse(state, kSources - 1, 128);
    int count = kSources - 1;
    for (auto _ : state)
        series.Fuse(state, count = count == kSources ? kSources - 1 : kSources, 128);
}

BENCHMARK(FuseFirstPreview)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
BENCHMARK(FuseNextExposure)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
BENCHMARK(FuseNextPower)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
