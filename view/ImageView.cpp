#include "view/ImageView.h"

#include "base/ParallelRows.h"
#include "view/ImageViewOverlay.h"
#include "view/ViewCache.h"

#include <algorithm>
#include <cmath>
#include <cstring>

CBxPicMap MapOfView(const ViewState& state)
{
    CBxPicMap map;
    map.Compute(state.dstCentreX, state.dstCentreY, state.srcCentreX, state.srcCentreY, 0.0,
                state.scale);
    return map;
}

// The same map for rasters that start at the view area's corner.
static CBxPicMap MapOfDisplay(const ImageView& view)
{
    ViewState state = view.state;
    state.dstCentreX -= view.area.left;
    state.dstCentreY -= view.area.top;
    return MapOfView(state);
}

void ReleaseImageView(ImageView* view)
{
    ForgetViewPicture(view);
    view->display = {}; // a wrapper
}

CBxRect<int> ViewAreaOf(int clientHeight, int toolbarClientHeight, int dockerLeft)
{
    constexpr int kToolbarGap = 3, kStatusHeight = 23;
    return {0, toolbarClientHeight + kToolbarGap, dockerLeft, clientHeight - kStatusHeight};
}

CBxSize<int> SizeOfArea(const CBxRect<int>& area)
{
    return {area.right - area.left, area.bottom - area.top};
}

// Clamped before the conversion, since far out at a small zoom the doubles leave the int range.
CBxRect<int> PictureInView(const ImageView& view, CBxSize<int> picture, int around)
{
    const CBxPicMap map = MapOfView(view.state);
    double left, top, right, bottom;
    map.MapPointDstToSrc(&left, &top, view.area.left, view.area.top);
    map.MapPointDstToSrc(&right, &bottom, view.area.right, view.area.bottom);
    const auto inside = [](double at, int size) { return int(std::clamp(at, 0.0, double(size))); };
    return {inside(std::floor(left) - around, picture.cx),
            inside(std::floor(top) - around, picture.cy),
            inside(std::ceil(right) + around, picture.cx),
            inside(std::ceil(bottom) + around, picture.cy)};
}

void SetViewArea(ImageView* view, const CBxRect<int>& area)
{
    const bool hadRoom = !IsEmptyRect(view->area);
    view->area = area;
    if (!hadRoom)
        RecentreView(view);
}

void RecentreView(ImageView* view)
{
    const CBxSize<int> size = SizeOfArea(view->area);
    view->state.dstCentreX = view->area.left + size.cx / 2.0;
    view->state.dstCentreY = view->area.top + size.cy / 2.0;
}

uint8_t ViewBackground(int colourScheme)
{
    return colourScheme == 2 || colourScheme == 3 ? 48 : 190;
}

// The part of the display that the area covers.
static SBxPicBuf VisibleDisplay(const ImageView& view)
{
    const CBxSize<int> size = SizeOfArea(view.area);
    SBxPicBuf visible = view.display;
    visible.width = std::clamp(size.cx, 0, view.display.width);
    visible.height = std::clamp(size.cy, 0, view.display.height);
    return visible;
}

static void CopyToDisplay(const ImageView& view)
{
    SBxPicBuf visible = VisibleDisplay(view);
    const SBxPicBuf& rendered = view.rendered;
    VcParallelRows(visible.height, visible.width * visible.components,
                   [&](int firstRow, int endRow) {
                       CBxPicBufAPI::Copy(&visible, rendered, {0, firstRow, visible.width, endRow});
                   });
}

static void FillRows(SBxPicBuf* picture, uint8_t value)
{
    VcParallelRows(picture->height, picture->stride,
                   [&](int firstRow, int endRow)
                   {
                       std::memset(picture->data + int64_t(firstRow) * picture->stride, value,
                                   size_t(endRow - firstRow) * size_t(picture->stride));
                   });
}

// True when there is no memory for it.
static bool SizeLike(SBxPicBuf* buffer, const CBxSize<int>& size, int components)
{
    if (!buffer->data || buffer->width != size.cx || buffer->height != size.cy)
        CBxPicBufAPI::ReinitHeap(buffer, size.cx, size.cy, components, 8);
    return !buffer->data;
}

using TransformFn = void (*)(SBxPicBuf*, const SBxPicBuf&, const CBxPicMap&);

static TransformFn TransformOf(ViewFilter filter)
{
    switch (filter)
    {
    case ViewFilter::Nearest: return CBxPicBufAPI::TransformConstantFast;
    case ViewFilter::Bicubic: return CBxPicBufAPI::TransformBicubicFast;
    default: return CBxPicBufAPI::TransformBilinearFast;
    }
}

// What lies outside of the picture is opaque: the background shows there, not the checkerboard.
static bool RenderAlpha(ImageView* view, const CBxPicMap& map)
{
    if (SizeLike(view->alphaScreen.Record(), SizeOfArea(view->area), 1))
        return true;
    FillRows(view->alphaScreen.Record(), 255);
    TransformOf(view->filter)(view->alphaScreen.Record(), view->alphaCache, map);
    BlendOverChecker(view->rendered.Record(), view->alphaScreen);
    return false;
}

static Picture* CacheOf(ImageView* view, ViewShows which)
{
    switch (which)
    {
    case ViewShows::Source: return &view->sourceCache;
    case ViewShows::Result: return &view->resultCache;
    default: return nullptr;
    }
}

static bool HasPixels(const SBxPicBuf* picture)
{
    return picture && picture->data;
}

// The checkerboard is blended before the copy, so that what CopyOnly brings back has it too.
static bool RenderPicture(ImageView* view, const SBxPicBuf* cache, bool withAlpha)
{
    if (IsEmptyRect(view->area) || SizeLike(view->rendered.Record(), SizeOfArea(view->area), 3))
        return true;
    FillRows(view->rendered.Record(), ViewBackground(view->colourScheme));
    bool failed = false;
    if (HasPixels(cache))
    {
        const CBxPicMap map = MapOfDisplay(*view);
        TransformOf(view->filter)(view->rendered.Record(), *cache, map);
        failed = withAlpha && RenderAlpha(view, map);
    }
    CopyToDisplay(*view);
    DrawViewOverlays(view);
    return failed;
}

static bool CopyRendered(const ImageView& view)
{
    const CBxSize<int> size = SizeOfArea(view.area);
    const SBxPicBuf& rendered = view.rendered;
    if (!rendered.data || rendered.width != size.cx || rendered.height != size.cy)
        return true;
    CopyToDisplay(view);
    return false;
}

bool VcRenderView(ImageView* view, ViewRebuild rebuild, const SBxPicBuf* picture, ViewShows which,
                  bool draw, const SBxPicBuf* alpha)
{
    if (rebuild == ViewRebuild::CopyOnly)
        return CopyRendered(*view);

    Picture* cache = CacheOf(view, which);
    bool failed = false;
    if (cache && rebuild == ViewRebuild::Rebuild)
        failed = RebuildViewCache(cache, picture, 3) != Outcome::Done;
    bool withAlpha = cache && HasPixels(alpha);
    // A caller may show the alpha plane for the first time while keeping the picture.
    if (withAlpha && (rebuild == ViewRebuild::Rebuild || view->alphaCache.Empty()))
        withAlpha = RebuildViewCache(&view->alphaCache, alpha, 1) == Outcome::Done;
    if (!draw)
        return failed;
    if (RenderPicture(view, cache ? cache->Record() : nullptr, withAlpha))
        return true;
    return cache && cache->Empty();
}

void UpdatePointPositions(ImageView* view)
{
    const CBxPicMap map = MapOfView(view->state);
    view->screenPoints.reserve(view->points.capacity());
    view->screenPoints.clear();
    for (const ViewPoint& point : view->points)
    {
        ScreenPoint screen = {0, 0, point.selected};
        map.MapPointSrcToDst(&screen.x, &screen.y, point.x, point.y);
        view->screenPoints.push_back(screen);
    }
}

void DrawViewOverlays(ImageView* view)
{
    SBxPicBuf visible = VisibleDisplay(*view);
    if (view->showPoints && !view->points.empty())
    {
        UpdatePointPositions(view);
        const CBxPoint<int> origin = {view->area.left, view->area.top};
        DrawPointCurve(&visible, view->screenPoints, origin);
        DrawPointMarkers(&visible, view->screenPoints, origin);
    }
    if (view->previewRect)
    {
        const CBxPicMap map = MapOfDisplay(*view);
        const CBxRect<int>& rect = *view->previewRect;
        CBxRect<int> frame;
        map.MapPointSrcToDst(&frame.left, &frame.top, rect.left, rect.top);
        map.MapPointSrcToDst(&frame.right, &frame.bottom, rect.right, rect.bottom);
        InvertFrame(&visible, frame);
    }
}

void ForgetViewPicture(ImageView* view)
{
    for (Picture* picture : {&view->sourceCache, &view->resultCache, &view->alphaCache,
                             &view->alphaScreen, &view->rendered})
        picture->Free();
    view->points.clear();
    view->screenPoints.clear();
    view->previewRect = nullptr;
    view->filter = ViewFilter::Bilinear;
}
