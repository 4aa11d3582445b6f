// Speed of the image view: a 24-megapixel picture in an area of 1920 x 1080, as when it is opened
// (caches made anew) and as when it is dragged (caches kept). A frame must be ready well before the
// next refresh of the screen, 16 ms later. The display is checked before a time is reported.

#include "bench/BenchPictures.h"
#include "bench/BenchRun.h"
#include "view/ImageViewZoom.h"

#include <cmath>

constexpr int kAreaTop = 37;

static const Picture& Ramp(int bits)
{
    static const int width = BenchSide(6000), height = BenchSide(4000);
    static const Picture eight = BenchRamp(width, height, 8);
    static const Picture sixteen = BenchRamp(width, height, 16);
    return bits == 8 ? eight : sixteen;
}

// What the view is to show at a point of the picture: half of the checkerboard where there is
// transparency, which alternates every 15 pixels, and the background outside. Below zero near the
// edges, where filters mix picture and background.
static double ShownAt(double sx, double sy, const SBxPicBuf& ramp, bool transparent, int x, int y)
{
    if (sx < -8 || sy < -8 || sx > ramp.width + 8 || sy > ramp.height + 8)
        return 190;
    if (sx < 8 || sy < 8 || sx >= ramp.width - 8 || sy >= ramp.height - 8)
        return -1;
    const double shade = BenchRampAt(sx, sy, ramp.width, ramp.height);
    const double board = x / 15 % 2 == y / 15 % 2 ? 190 : 220;
    return transparent ? (shade * 128 + board * 127) / 255 : shade;
}

static bool ShowsTheRamp(const ImageView& view, const SBxPicBuf& ramp, bool transparent)
{
    const CBxPicMap map = MapOfView(view.state);
    int seen = 0;
    for (int y = 5; y < view.area.bottom - view.area.top; y += 17)
        for (int x = 3; x < view.area.right; x += 21)
        {
            double sx, sy;
            map.MapPointDstToSrc(&sx, &sy, x, y + kAreaTop);
            const double meant = ShownAt(sx, sy, ramp, transparent, x, y);
            const int shown = PicRow<uint8_t>(view.display, y)[3 * x + 1];
            if (meant >= 0 && std::fabs(shown - meant) > 3)
                return false;
            seen += meant >= 0;
        }
    return seen > 0;
}

struct BenchView
{
    Picture display{3000, 2000, 3, 8};
    ImageView view;

    BenchView()
    {
        view.display = display;
        SetViewArea(&view, {0, kAreaTop, BenchSide(1920), kAreaTop + BenchSide(1080)});
    }
    ~BenchView() { ReleaseImageView(&view); }
};

static void RenderFrames(benchmark::State& state, ViewRebuild rebuild, int bits, int filter,
                         int percent, const SBxPicBuf* alpha)
{
    const Picture& picture = Ramp(bits);
    BenchView bench;
    ImageView& view = bench.view;
    ZoomTo100(&view, picture);
    view.state.scale = percent / 100.0;
    view.filter = ViewFilter(filter);
    bool failed =
        VcRenderView(&view, ViewRebuild::Rebuild, picture.Record(), ViewShows::Result, true, alpha);
    for (auto _ : state)
    {
        PanView(&view, picture, -3, 2);
        failed |= VcRenderView(&view, rebuild, picture.Record(), ViewShows::Result, true, alpha);
    }
    CheckResult(state, !failed && ShowsTheRamp(view, picture, alpha != nullptr));
    static const char* const names[] = {"nearest", "bilinear", "bicubic"};
    state.SetLabel(names[filter]);
    ReportPixels(state, BenchSide(1920), BenchSide(1080));
}

static void Drag(benchmark::State& state)
{
    if (!UseInstructionSet(state, state.range(2)))
        return;
    RenderFrames(state, ViewRebuild::Keep, 8, int(state.range(0)), int(state.range(1)), nullptr);
    UseBestInstructionSet();
}

static void Rebuild(benchmark::State& state)
{
    RenderFrames(state, ViewRebuild::Rebuild, int(state.range(2)), int(state.range(0)),
                 int(state.range(1)), nullptr);
}

// Over the checkerboard.
static void DragTransparent(benchmark::State& state)
{
    Picture alpha(BenchSide(6000), BenchSide(4000), 1, 8);
    CBxPicBufAPI::SetConst(alpha.Record(), 128);
    RenderFrames(state, ViewRebuild::Keep, 8, int(state.range(0)), int(state.range(1)),
                 alpha.Record());
}

BENCHMARK(Drag)
    ->ArgsProduct({{0, 1, 2}, {25, 100, 200}, {0, 2}})
    ->ArgNames({"filter", "percent", "set"})
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
