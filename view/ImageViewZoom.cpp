#include "view/ImageViewZoom.h"

#include <algorithm>
#include <cstdio>

static constexpr double kZoomStep = 1.2;

// Beyond these a scale could not come back: products would run into zero or infinity, and the map
// takes nothing below the smaller one.
static constexpr double kSmallestZoom = 1e-9, kLargestZoom = 1e15;

const ZoomPreset kZoomPresets[kZoomPresetCount] = {
    {L"10.0 %", 0.1},  {L"25.0 %", 0.25}, {L"50.0 %", 0.5},  {L"100.0 %", 1.0},
    {L"150.0 %", 1.5}, {L"200.0 %", 2.0}, {L"400.0 %", 4.0}, {L"800.0 %", 8.0},
};

static bool HasSize(const SBxPicBuf& picture)
{
    return picture.data && picture.width > 0 && picture.height > 0;
}

static bool MultiplyZoom(ImageView* view, const SBxPicBuf& picture, double factor)
{
    const double scale = view->state.scale * factor;
    if (!HasSize(picture) || !(scale >= kSmallestZoom && scale <= kLargestZoom))
        return false;
    view->state.scale = scale;
    return true;
}

bool ZoomIn(ImageView* view, const SBxPicBuf& picture)
{
    return MultiplyZoom(view, picture, kZoomStep);
}

bool ZoomOut(ImageView* view, const SBxPicBuf& picture)
{
    return MultiplyZoom(view, picture, 1.0 / kZoomStep);
}

bool ZoomAboutCursor(ImageView* view, const SBxPicBuf& picture, bool in, int cursorX, int cursorY)
{
    ViewState& state = view->state;
    double pointX, pointY;
    MapOfView(state).MapPointDstToSrc(&pointX, &pointY, cursorX, cursorY);
    if (!MultiplyZoom(view, picture, in ? kZoomStep : 1.0 / kZoomStep))
        return false;
    state.srcCentreX = pointX - (cursorX - state.dstCentreX) / state.scale;
    state.srcCentreY = pointY - (cursorY - state.dstCentreY) / state.scale;
    return true;
}

static void CentrePicture(ImageView* view, const SBxPicBuf& picture)
{
    RecentreView(view);
    view->state.srcCentreX = picture.width / 2.0;
    view->state.srcCentreY = picture.height / 2.0;
}

bool ZoomTo100(ImageView* view, const SBxPicBuf& picture)
{
    if (!HasSize(picture))
        return false;
    view->state.scale = 1.0;
    CentrePicture(view, picture);
    return true;
}

bool ZoomToFit(ImageView* view, const SBxPicBuf& picture)
{
    const CBxSize<int> size = SizeOfArea(view->area);
    if (!HasSize(picture) || size.cx <= 0 || size.cy <= 0)
        return false;
    const double widthRatio = (size.cx / 2.0) / (picture.width / 2.0);
    const double heightRatio = (size.cy / 2.0) / (picture.height / 2.0);
    view->state.scale = heightRatio < widthRatio ? heightRatio : widthRatio;
    CentrePicture(view, picture);
    return true;
}

bool ZoomToPreset(ImageView* view, const SBxPicBuf& picture, int index)
{
    if (!HasSize(picture))
        return false;
    const bool listed = index >= 0 && index < kZoomPresetCount;
    view->state.scale = listed ? kZoomPresets[index].scale : 1.0;
    RecentreView(view);
    return true;
}

bool ParseZoomText(double* scale, const std::wstring& text)
{
    constexpr size_t kMostCharacters = 10;
    int64_t value = 0, divisor = 1; // ten digits do not fit 32 bits
    bool behindPoint = false;
    for (size_t i = 0; i < std::min(text.size(), kMostCharacters); ++i)
    {
        const wchar_t c = text[i];
        if (c == L' ' || c == L'%')
            break;
        if (c == L'.' || c == L',')
            behindPoint = true;
        else if (c >= L'0' && c <= L'9')
        {
            value = value * 10 + (c - L'0');
            divisor *= behindPoint ? 10 : 1;
        }
        else
            return false;
    }
    *scale = std::clamp(double(value) / double(divisor), 10.0, 800.0) / 100.0;
    return true;
}

bool ZoomToTyped(ImageView* view, const SBxPicBuf& picture, const std::wstring& text)
{
    double scale;
    if (!HasSize(picture) || !ParseZoomText(&scale, text))
        return false;
    view->state.scale = scale;
    return true;
}

std::wstring ZoomText(double scale)
{
    char text[64];
    const int length = std::snprintf(text, sizeof text, "%.1f %%", scale * 100.0);
    return std::wstring(text, text + length);
}

bool PanView(ImageView* view, const SBxPicBuf& picture, int dx, int dy)
{
    if (!HasSize(picture) || (dx == 0 && dy == 0))
        return false;
    view->state.srcCentreX -= dx / view->state.scale;
    view->state.srcCentreY -= dy / view->state.scale;
    return true;
}

void StartDrag(ViewDrag* drag, int x, int y)
{
    *drag = {true, {x, y}};
}

bool DragTo(ViewDrag* drag, ImageView* view, const SBxPicBuf& picture, int x, int y)
{
    if (!drag->active)
        return false;
    const CBxPoint<int> last = drag->last;
    drag->last = {x, y};
    return PanView(view, picture, x - last.x, y - last.y);
}

void ForgetDrag(ViewDrag* drag)
{
    drag->active = false;
}
