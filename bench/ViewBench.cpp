// Speed of the image view: a 24-megapixel picture in an area of 1920 x 1080, as when it is opened
// (caches made anew) and as when it is dragged (caches kept). A frame must be ready well before the
// next refresh of the screen, 16 ms later. The display is checked before a time is reported.

#include "bench/BenchPictures.h"
#include "picture/ImageViewZoom.h"
#include "picture/PicTransformRows.h"

constexpr int kAreaWidth = 1920, kAreaHeight = 1080, kAreaTop = 37;

// A picture whose samples tell where they are, so that any filter at any scale can be predicted.
static const BenchPicture& Ramp(int bits)
{
    static const auto make = [](int depth)
    {
        BenchPicture picture(6000, 4000, 3, depth);
        const int unit = depth == 8 ? 1 : 256;
        for (int y = 0; y < 4000; ++y)
            for (int x = 0; x < 6000; ++x)
                for (int c = 0; c < 3; ++c)
                {
                    const int value = (x * 160 / 6000 + y * 80 / 4000 + c) * unit;
                    if (depth == 8)
                        PicRow<uint8_t>(picture.pic, y)[3 * x + c] = uint8_t(value);
                    else
                        PicRow<uint16_t>(picture.pic, y)[3 * x + c] = uint16_t(value);
                }
        return picture;
    };
    static const BenchPicture eight = make(8), sixteen = make(16);
    return bits == 8 ? eight : sixteen;
}

static bool ShowsTheRamp(const ImageView& view)
{
    const CBxPicMap map = MapOfView(view.state);
    for (int y = 5; y < kAreaHeight; y += 97)
        for (int x = 3; x < kAreaWidth; x += 101)
        {
            double sx, sy;
            map.MapPointDstToSrc(&sx, &sy, x, y + kAreaTop);
            const bool inside = sx >= 4 && sy >= 4 && sx < 5996 && sy < 3996;
            const bool outside = sx < -4 || sy < -4 || sx > 6004 || sy > 4004;
            const double meant = inside ? sx * 160 / 6000 + sy * 80 / 4000 + 1 : 190;
            const int shown = PicRow<uint8_t>(view.display, y)[3 * x + 1];
            if ((inside || outside) && std::abs(shown - meant) > 3)
                return false;
        }
    return true;
}

struct BenchView
{
    BenchPicture display{3000, 2000, 3, 8};
    ImageView view;

    BenchView()
    {
        view.display = display.pic;
        SetViewArea(&view, {0, kAreaTop, kAreaWidth, kAreaTop + kAreaHeight});
    }
    ~BenchView() { ReleaseImageView(&view); }
};

static void RenderFrames(benchmark::State& state, ViewRebuild rebuild, int bits, int filter,
                         int percent, const SBxPicBuf* alpha)
{
    const BenchPicture& picture = Ramp(bits);
    BenchView bench;
    ImageView& view = bench.view;
    ZoomTo100(&view, picture.pic);
    view.state.scale = percent / 100.0;
    view.filter = ViewFilter(filter);
    bool failed =
        VcRenderView(&view, ViewRebuild::Rebuild, &picture.pic, ViewShows::Result, true, alpha);
    for (auto _ : state)
    {
        PanView(&view, picture.pic, -3, 2);
        failed |= VcRenderView(&view, rebuild, &picture.pic, ViewShows::Result, true, alpha);
    }
    if (failed || (!alpha && !ShowsTheRamp(view)))
        state.SkipWithError("wrong result");
    static const char* const names[] = {"nearest", "bilinear", "bicubic"};
    state.SetLabel(names[filter]);
    ReportPixels(state, kAreaWidth, kAreaHeight);
}

static void Drag(benchmark::State& state)
{
    const TransformRows* rows = VcTransformRowsOf(TransformVariant(state.range(2)));
    if (!rows)
    {
        state.SkipWithError("not on this processor");
        return;
    }
    VcForceTransformRows(rows);
    RenderFrames(state, ViewRebuild::Keep, 8, int(state.range(0)), int(state.range(1)), nullptr);
    VcForceTransformRows(nullptr);
}

static void Rebuild(benchmark::State& state)
{
    RenderFrames(state, ViewRebuild::Rebuild, int(state.range(2)), int(state.range(0)),
                 int(state.range(1)), nullptr);
}

// Over the checkerboard.
static void DragTransparent(benchmark::State& state)
{
    BenchPicture alpha(6000, 4000, 1, 8);
    CBxPicBufAPI::SetConst(&alpha.pic, 128);
    RenderFrames(state, ViewRebuild::Keep, 8, int(state.range(0)), int(state.range(1)), &alpha.pic);
}

BENCHMARK(Drag)
    ->ArgsProduct({{0, 1, 2}, {25, 100, 200}, {0, 1}})
    ->ArgNames({"filter", "percent", "variant"})
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(DragTransparent)
    ->ArgsProduct({{1}, {25, 200}})
    ->ArgNames({"filter", "percent"})
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
BENCHMARK(Rebuild)
    ->ArgsProduct({{0, 1, 2}, {25, 100, 200}, {8}})
    ->ArgsProduct({{1}, {25}, {16}})
    ->ArgNames({"filter", "percent", "bits"})
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime()
    ->UseRealTime();
