#pragma once

#include "base/Geometry.h"
#include "picture/PicMap.h"
#include "picture/Picture.h"

#include <vector>

// The image view: the picture, scaled and moved, over a plain background. It renders into the
// display bitmap and knows no windows; the frame tells it where the view area lies and blits.
// Everything here runs on the thread that owns the windows, except that rendering splits its rows.
//
// Three rasters occur. Client coordinates are those of the frame's client area; mouse positions
// and screen points use them. Display coordinates start at the view area's top-left corner;
// rendered view, display bitmap and overlays use them. Picture coordinates are pixels of the
// picture, with the corners on whole numbers.

// Where the picture stands on the screen. One set, which everybody maps by.
struct ViewState
{
    double scale = 1.0;                    // screen pixels per picture pixel
    double dstCentreX = 0, dstCentreY = 0; // a point of the view area, client coordinates;
    double srcCentreX = 0, srcCentreY = 0; // the picture point shown there
};

// Picture coordinates to client coordinates and back.
CBxPicMap MapOfView(const ViewState& state);

enum class ViewFilter
{
    Nearest = 0,
    Bilinear = 1,
    Bicubic = 2,
};

struct ViewPoint
{
    double x, y; // picture coordinates
    bool selected;
};

struct ScreenPoint
{
    int x, y;
    bool selected;
};

// Release it with ReleaseImageView.
struct ImageView
{
    void* owner = nullptr;  // handle of the frame window
    SBxPicBuf display = {}; // wrapper of the display document's bitmap
    ViewFilter filter = ViewFilter::Bilinear;
    Picture sourceCache, resultCache; // 8 bits, 3 components
    Picture alphaCache;               // 8 bits, 1 component
    Picture rendered;                 // size of the view area, without overlays
    std::vector<ViewPoint> points;
    std::vector<ScreenPoint> screenPoints;     // client coordinates
    const CBxRect<int>* previewRect = nullptr; // picture coordinates; belongs to a tool
    bool showPoints = false;                   // the point overlay
    CBxRect<int> area = {0, 0, 0, 0};          // the view area, client coordinates
    ViewState state;
    int colourScheme = 0; // of the controls: 2 and 3 are dark
    Picture alphaScreen;  // scratch of rendering
};

void ReleaseImageView(ImageView* view);

// The view area: from the client area's left edge to the docker, from 3 pixels below the toolbar's
// client area to 23 pixels above the bottom, where the status bar is. Empty or turned around while
// the frame is minimised.
CBxRect<int> ViewAreaOf(int clientHeight, int toolbarClientHeight, int dockerLeft);

// Tells the view its area (on every resize and docking). The picture stays where it is, except
// when there was no room for it before: then the centre of the area is taken.
void SetViewArea(ImageView* view, const CBxRect<int>& area);

// Takes the centre of the present area, keeps scale and picture point.
void RecentreView(ImageView* view);

CBxSize<int> SizeOfArea(const CBxRect<int>& area);

// The part of a picture that the view shows, with so many pixels around it, in picture coordinates.
// Empty when none of that is in sight.
CBxRect<int> PictureInView(const ImageView& view, CBxSize<int> picture, int around);

// Grey of the background.
uint8_t ViewBackground(int colourScheme);

enum class ViewRebuild
{
    Rebuild = 0,  // make the cache of what is shown anew from the picture
    Keep = 1,     // use the caches as they are (while dragging, and while a tool shows a preview)
    CopyOnly = 2, // only copy the rendered view back into the display, which removes the overlays
};

enum class ViewShows
{
    Nothing = 0, // the background
    Source = 1,
    Result = 2,
};

// Renders into the display bitmap, with overlays. The picture is looked at only for a rebuild; the
// alpha plane, when there is one with pixels, puts the picture over a checkerboard. Without `draw`
// only the cache is rebuilt.
//
// True when nothing could be drawn: the area is empty (minimised), memory is short, there is no
// such picture (the display then has the background), or the area's size has changed since what
// CopyOnly was to copy. An area larger than the display bitmap loses its right and lower part.
[[nodiscard]] bool VcRenderView(ImageView* view, ViewRebuild rebuild, const SBxPicBuf* picture,
                                ViewShows which, bool draw, const SBxPicBuf* alpha);

// Draws points and preview frame into the display; a second call would undo the frame.
void DrawViewOverlays(ImageView* view);

// Recomputes the screen points from the picture points.
void UpdatePointPositions(ImageView* view);

// Frees what was shown, forgets points and preview rectangle, and goes back to bilinear. The
// caller renders the background.
void ForgetViewPicture(ImageView* view);
