// Speed of picture operations and image files. Results are checked before a time is reported.

#include "bench/BenchPictures.h"
#include "picture/ImageFile.h"
#include "picture/PicMap.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

constexpr int kWidth = 4000, kHeight = 3000;

// 16 bits to 8 and colour to grey in one call; only the conversion is timed.
static void Convert(benchmark::State& state)
{
    const BenchPicture source = BenchScene(kWidth, kHeight, 3, 16, 0);
    bool good = true;
    for (auto _ : state)
    {
        state.PauseTiming();
        BenchPicture picture(kWidth, kHeight, 3, 16);
        CBxPicBufAPI::Copy(&picture.pic, source.pic);
        state.ResumeTiming();
        good = good && CBxPicBufAPI::ConvertBpcComp(&picture.pic, 8, 1);
        const int grey = picture.pic.data[1234567];
        const uint16_t* pixel = PicRow<uint16_t>(source.pic, 0) + 3 * 1234567;
        good = good &&
               std::abs(grey * 256 - (pixel[0] * 11 + pixel[1] * 59 + pixel[2] * 30) / 100) < 512;
    }
    if (!good)
        state.SkipWithError("wrong result");
    ReportPixels(state, kWidth, kHeight);
}

static void YuvAndBack(benchmark::State& state)
{
    const BenchPicture source = BenchScene(kWidth, kHeight, 3, int(state.range(0)), 0);
    BenchPicture picture(kWidth, kHeight, 3, int(state.range(0)));
    for (auto _ : state)
    {
        CBxPicBufAPI::ConvertRGBtoYUV(&picture.pic, source.pic);
        CBxPicBufAPI::ConvertYUVtoRGB(&picture.pic, picture.pic);
    }
    if (LargestDifference(picture.pic, source.pic) > 1)
        state.SkipWithError("wrong result");
    ReportPixels(state, kWidth, kHeight);
}

// A 24-megapixel picture into a 1920 x 1080 area; arguments: filter, scale in percent.
static void TransformView(benchmark::State& state)
{
    using TransformFn = void (*)(SBxPicBuf*, const SBxPicBuf&, const CBxPicMap&);
    static const TransformFn filters[] = {CBxPicBufAPI::TransformConstantFast,
                                          CBxPicBufAPI::TransformBilinearFast,
                                          CBxPicBufAPI::TransformBicubicFast};
    const BenchPicture source = BenchScene(6000, 4000, 3, 8, 0);
    BenchPicture area(1920, 1080, 3, 8);
    CBxPicMap map;
    map.Compute(960, 540, 3000, 2000, 0.0, double(state.range(1)) / 100.0);
    for (auto _ : state)
        filters[state.range(0)](&area.pic, source.pic, map);
    double x, y;
    map.MapPointDstToSrc(&x, &y, 960, 540);
    const int shown = PicRow<uint8_t>(area.pic, 540)[3 * 960];
    const int meant = PicRow<uint8_t>(source.pic, int(y))[3 * int(x)];
    if (std::abs(shown - meant) > 60)
        state.SkipWithError("wrong result");
    static const char* const names[] = {"nearest", "bilinear", "bicubic"};
    state.SetLabel(names[state.range(0)]);
    ReportPixels(state, 1920, 1080);
}

// Arguments: format, bits. Files lie in the working folder and are removed.
static void SaveAndLoad(benchmark::State& state, bool timeSave)
{
    const int format = int(state.range(0)), bits = int(state.range(1));
    const std::string path = "PictureBench" + std::to_string(format) + ".tmp";
    const BenchPicture source = BenchScene(kWidth, kHeight, 3, bits, 0);
    SBxPicBuf loaded = {}, alpha = {};
    SaveReport report;
    bool failed = SavePicturePair(source.pic, alpha, path.c_str(), "", format, &report);
    for (auto _ : state)
    {
        if (timeSave)
            SavePicturePair(source.pic, alpha, path.c_str(), "", format, &report);
        else
            failed = failed || LoadPicturePair(path.c_str(), &loaded, &alpha);
        failed = failed || !report.written;
    }
    if (timeSave)
        failed = failed || LoadPicturePair(path.c_str(), &loaded, &alpha);
    if (failed || LargestDifference(loaded, source.pic) > (format == kFormatJpeg ? 90 : 0))
        state.SkipWithError("wrong result");
    CBxPicBufAPI::DoneHeap(&loaded);
    std::remove(path.c_str());
    ReportPixels(state, kWidth, kHeight);
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
