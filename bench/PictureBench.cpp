// Speed of picture operations and image files. Results are checked before a time is reported.

#include "bench/BenchPictures.h"
#include "bench/BenchRun.h"
#include "files/ImageFile.h"
#include "picture/PicMap.h"

#include <cmath>
#include <cstdlib>
#include <string>

static int Width()
{
    return BenchSide(4000);
}

static int Height()
{
    return BenchSide(3000);
}

static bool IsGreyOf(const SBxPicBuf& grey, const SBxPicBuf& colour)
{
    for (int i = 0; i < colour.width * colour.height; i += 1234)
    {
        const uint16_t* pixel = PicRow<uint16_t>(colour, 0) + 3 * i;
        const int meant = (pixel[0] * 11 + pixel[1] * 59 + pixel[2] * 30) / 100;
        if (std::abs(grey.data[i] * 256 - meant) >= 512)
            return false;
    }
    return true;
}

// 16 bits to 8 and colour to grey in one call; only the conversion is timed.
static void Convert(benchmark::State& state)
{
    const int width = Width(), height = Height();
    const Picture source = BenchScene(width, height, 3, 16, 0);
    bool right = true;
    for (auto _ : state)
    {
        state.PauseTiming();
        Picture picture(width, height, 3, 16);
        CBxPicBufAPI::Copy(picture.Record(), source);
        state.ResumeTiming();
        right = right && CBxPicBufAPI::ConvertBpcComp(picture.Record(), 8, 1);
        state.PauseTiming();
        right = right && IsGreyOf(picture, source);
        state.ResumeTiming();
    }
    CheckResult(state, right);
    ReportPixels(state, width, height);
}

static void YuvAndBack(benchmark::State& state)
{
    const Picture source = BenchScene(Width(), Height(), 3, int(state.range(0)), 0);
    Picture picture(Width(), Height(), 3, int(state.range(0)));
    for (auto _ : state)
    {
        (void)CBxPicBufAPI::ConvertRGBtoYUV(picture.Record(), source);
        (void)CBxPicBufAPI::ConvertYUVtoRGB(picture.Record(), picture);
    }
    CheckResult(state, LargestDifference(picture, source) <= 1);
    ReportPixels(state, Width(), Height());
}

// Whether the area shows the middle of a ramp. At its edges a filter may meet the ramp's.
static bool ShowsTheRamp(const SBxPicBuf& area, const SBxPicBuf& ramp, const CBxPicMap& map)
{
    for (int y = 5; y < area.height; y += 17)
        for (int x = 3; x < area.width; x += 21)
        {
            double sx, sy;
            map.MapPointDstToSrc(&sx, &sy, x, y);
            const double meant = BenchRampAt(sx, sy, ramp.width, ramp.height);
            const bool inside = sx >= 8 && sy >= 8 && sx < ramp.width - 8 && sy < ramp.height - 8;
            if (inside && std::fabs(PicRow<uint8_t>(area, y)[3 * x + 1] - meant) > 3)
                return false;
        }
    return true;
}

// A 24-megapixel picture into a 1920 x 1080 area; arguments: filter, scale in percent.
static void TransformView(benchmark::State& state)
{
    using TransformFn = void (*)(SBxPicBuf*, const SBxPicBuf&, const CBxPicMap&);
    static const TransformFn filters[] = {CBxPicBufAPI::TransformConstantFast,
                                          CBxPicBufAPI::TransformBilinearFast,
                                          CBxPicBufAPI::TransformBicubicFast};
    const Picture source = BenchRamp(BenchSide(6000), BenchSide(4000), 8);
    Picture area(BenchSide(1920), BenchSide(1080), 3, 8);
    CBxPicMap map;
    map.Compute(area->width / 2.0, area->height / 2.0, source->width / 2.0, source->height / 2.0,
                0.0, double(state.range(1)) / 100.0);
    for (auto _ : state)
        filters[state.range(0)](area.Record(), source, map);
    CheckResult(state, ShowsTheRamp(area, source, map));
    static const char* const names[] = {"nearest", "bilinear", "bicubic"};
    state.SetLabel(names[state.range(0)]);
    ReportPixels(state, area->width, area->height);
}

// Arguments: format, bits. Saved files are read back.
static void SaveAndLoad(benchmark::State& state, bool timeSave)
{
    const auto format = FormatId(state.range(0));
    const int bits = int(state.range(1));
    const BenchFolder folder;
    const std::string path = folder.path + "picture";
    const Picture source = BenchScene(Width(), Height(), 3, bits, 0);
    Picture loaded, alpha;
    SaveReport report;
    bool failed = SavePicturePair(source, alpha, path.c_str(), "", format, &report);
    for (auto _ : state)
    {
        if (timeSave)
            SavePicturePair(source, alpha, path.c_str(), "", format, &report);
        else
            failed = failed || LoadPicturePair(path.c_str(), loaded.Record(), alpha.Record());
        failed = failed || !report.written;
    }
    if (timeSave)
        failed = failed || LoadPicturePair(path.c_str(), loaded.Record(), alpha.Record());
    CheckResult(state,
                !failed && LargestDifference(loaded, source) <= (format == kFormatJpeg ? 90 : 0));
    ReportPixels(state, Width(), Height());
}

static void Save(benchmark::State& state)
{
    SaveAndLoad(state, true);
}

static void Load(benchmark::State& state)
{
    SaveAndLoad(state, false);
}

static void Files(benchmark::internal::Benchmark* bench)
{
    bench->Args({kFormatJpeg, 8})->Args({kFormatTiff, 8})->Args({kFormatTiff, 16});
    bench->ArgNames({"format", "bits"})
        ->Unit(benchmark::kMillisecond)
        ->MeasureProcessCPUTime()
        ->UseRealTime();
}

BENCHMARK(Convert)->Unit(benchmark::kMillisecond);
BENCHMARK(YuvAndBack)->Arg(8)->Arg(16)->Unit(benchmark::kMillisecond);
BENCHMARK(TransformView)
    ->ArgsProduct({{0, 1, 2}, {25, 100}})
    ->ArgNames({"filter", "percent"})
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(Load)->Apply(Files);
BENCHMARK(Save)->Apply(Files);
