// Speed of the fusion dialogs: eleven 12-megapixel photographs in files, looked at through a view
// of 1920 x 1080 at 100 %. First previews read the files; the following ones are what a slider
// costs.

#include "bench/BenchPictures.h"
#include "bench/BenchRun.h"
#include "files/ImageFile.h"
#include "fusion/FusionAccumulator.h"
#include "pipeline/FusionJob.h"

constexpr int kSources = 11;

static int Width()
{
    return BenchSide(4000);
}

static int Height()
{
    return BenchSide(3000);
}

// The files, for as long as the program runs.
struct SeriesFiles
{
    BenchFolder folder;
    std::vector<std::string> paths;

    SeriesFiles()
    {
        for (int i = 0; i < kSources; ++i)
        {
            const Picture photo = BenchScene(Width(), Height(), 3, 8, i - kSources / 2);
            paths.push_back(folder.path + "photo" + std::to_string(i) + ".jpg");
            SavePicturePair(photo, {}, paths.back().c_str(), "", kFormatJpeg);
        }
    }
};

// What the view shows of the middle of the photograph, and what surrounds it.
static CBxRect<int> ViewedRegion()
{
    const int viewWidth = BenchSide(1920), viewHeight = BenchSide(1080);
    ImageView view;
    view.area = {0, 0, viewWidth, viewHeight};
    view.state = {1.0, viewWidth / 2.0, viewHeight / 2.0, Width() / 2.0, Height() / 2.0};
    return FusionRegionOf(view, Width(), Height());
}

struct OpenSeries
{
    CBxRect<int> region = ViewedRegion();
    CBxSize<int> size = SizeOfArea(region);
    FusionSources sources;
    Picture preview{size.cx, size.cy, 3, 8};

    OpenSeries()
    {
        static const SeriesFiles files;
        SBxPicBuf geometry = {};
        geometry.width = Width();
        geometry.height = Height();
        geometry.components = 3;
        geometry.bitsPerComponent = 8;
        OpenFusionSources(&sources, files.paths, geometry, FusionSourceBudget());
    }

    void Fuse(benchmark::State& state, int count, unsigned mid)
    {
        const FusionTask task = {region, count, mid};
        if (FuseRegion(preview.Record(), &sources, task, nullptr) != Outcome::Done)
            state.SkipWithError("no preview");
    }

    // The engine, fed with the same region of the files. Threads add up in another order, which
    // comes to one step at most.
    bool ShowsTheFusionOf(int count, unsigned mid) const
    {
        Picture fused(size.cx, size.cy, 3, 8);
        VcFusionAccumulator sums;
        bool failed = VcInitAccumulator(&sums, fused, mid);
        for (int i = 0; i < count; ++i)
        {
            Picture photo, alpha;
            failed = failed || LoadPicturePair(sources.paths[size_t(i)].c_str(), photo.Record(),
                                               alpha.Record());
            if (!failed)
                CBxPicBufAPI::CopyRect(fused.Record(), photo, {0, 0}, {region.left, region.top},
                                       size);
            failed = failed || VcAccumulateImage(&sums, fused);
        }
        failed = failed || VcComposeResult(fused.Record(), sums);
        VcFreeAccumulator(&sums);
        return !failed && LargestDifference(fused, preview) <= 1;
    }
};

static void FuseFirstPreview(benchmark::State& state)
{
    bool right = true;
    for (auto _ : state)
    {
        OpenSeries series;
        series.Fuse(state, kSources, 100);
        state.PauseTiming();
        right = right && series.ShowsTheFusionOf(kSources, 100);
        state.ResumeTiming();
    }
    CheckResult(state, right);
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
    CheckResult(state, series.ShowsTheFusionOf(kSources, mid));
}

// The Power slider: one source more and one less in turn.
static void FuseNextPower(benchmark::State& state)
{
    OpenSeries series;
    series.Fuse(state, kSources - 1, 128);
    int count = kSources - 1;
    for (auto _ : state)
        series.Fuse(state, count = count == kSources ? kSources - 1 : kSources, 128);
    CheckResult(state, series.ShowsTheFusionOf(count, 128));
}

BENCHMARK(FuseFirstPreview)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
BENCHMARK(FuseNextExposure)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
BENCHMARK(FuseNextPower)->Unit(benchmark::kMillisecond)->UseRealTime()->MeasureProcessCPUTime();
