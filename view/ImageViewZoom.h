#pragma once

#include "view/ImageView.h"

#include <string>

// Zooming and panning. Each returns whether the view has changed, that is, whether to update the
// zoom box and to repaint; without a picture nothing ever changes.

// One step of 1.2 about the view's centre, without a limit that anybody could reach.
bool ZoomIn(ImageView* view, const SBxPicBuf& picture);
bool ZoomOut(ImageView* view, const SBxPicBuf& picture);

// One step in (or out) that keeps the picture point under the cursor (client coordinates).
bool ZoomAboutCursor(ImageView* view, const SBxPicBuf& picture, bool in, int cursorX, int cursorY);

// 100 % and fit put the picture's centre into the area's.
bool ZoomTo100(ImageView* view, const SBxPicBuf& picture);
bool ZoomToFit(ImageView* view, const SBxPicBuf& picture);

// The zoom box's list. A selection outside of it counts as 100 %. The picture point in the middle
// stays there.
struct ZoomPreset
{
    const wchar_t* text;
    double scale;
};
constexpr int kZoomPresetCount = 8;
constexpr int kInitialZoomPreset = 3;
extern const ZoomPreset kZoomPresets[kZoomPresetCount];
bool ZoomToPreset(ImageView* view, const SBxPicBuf& picture, int index);

// What was typed into the zoom box: percent, of which the first ten characters count, cut to
// 10 .. 800. Text that is no number is refused; then the box gets the present zoom's text again.
bool ZoomToTyped(ImageView* view, const SBxPicBuf& picture, const std::wstring& text);
bool ParseZoomText(double* scale, const std::wstring& text); // true when it is valid

// "120.0 %"
std::wstring ZoomText(double scale);

// Moves the picture by that many screen pixels.
bool PanView(ImageView* view, const SBxPicBuf& picture, int dx, int dy);

// A drag of the picture in progress. Commands that place the picture anew end it by forgetting it.
struct ViewDrag
{
    bool active = false;
    CBxPoint<int> last = {0, 0};
};
void StartDrag(ViewDrag* drag, int x, int y);
bool DragTo(ViewDrag* drag, ImageView* view, const SBxPicBuf& picture, int x, int y);
void ForgetDrag(ViewDrag* drag);
