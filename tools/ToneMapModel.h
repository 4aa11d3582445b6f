#pragma once

#include "base/Geometry.h"
#include "tonemap/ToneMap.h"
#include "tools/Parameters.h"

// What the Tone Mapping dialog knows and decides: the numbers, the preview rectangle, and whether
// the filter runs. No windows here. All coordinates are those of the picture.

constexpr int kPreviewReach = 256; // of the preview rectangle, from its centre

enum class ToneMapState
{
    Editing,
    Running,  // over the whole picture
    Finished, // the result is there; the dialog only waits to be closed
};

// What a button leads to.
enum class ToneMapStep
{
    Nothing,
    StartRun,
    Close,  // and keep the result
    GiveUp, // close, without a result
    Stop,   // the run
};

struct ToneMapModel
{
    ToneMapState state = ToneMapState::Editing;
    CBxSize<int> picture = {0, 0};
    bool hasColors = false;   // three components: the chroma planes may be filtered too
    ToolNumbers numbers = {}; // what the controls show; those of other tools do not matter

    bool previewOn = false;
    CBxPoint<double> centre = {0, 0};     // of the preview rectangle
    CBxRect<int> previewRect = {};        // clipped to the picture
    CBxPoint<double> viewCentre = {0, 0}; // when the rectangle last followed the view

    // What the preview picture holds; outside of this rectangle it is the source.
    ToolNumbers rendered = {};
    CBxRect<int> renderedRect = {};

    bool dragging = false; // of the rectangle, by its inside
    CBxPoint<double> grabOffset = {0, 0};
};

void StartToneMapModel(ToneMapModel* model, const SBxPicBuf& picture, const ToolNumbers& stored);

// These four answer whether the preview is to be rendered anew. A slider asks for it as soon as it
// is not being dragged, and always when it is let go. Sliders and boxes are rows of the tool.
bool ToneMapSliderMoved(ToneMapModel* model, const ParameterRow& slider, SliderMove move,
                        int thumb);
bool ToneMapBoxToggled(ToneMapModel* model, const ParameterRow& box, bool on);
bool ToneMapPreviewToggled(ToneMapModel* model, bool on, CBxPoint<double> viewCentre);
bool ToneMapViewMoved(ToneMapModel* model, CBxPoint<double> viewCentre);

// The rectangle about a point, clipped to the picture. A point outside of it counts as the nearest
// one on its edge.
CBxRect<int> PreviewRectAround(CBxPoint<double> centre, CBxSize<int> picture);

// Whether the rectangle is to be seen.
bool IsPreviewShown(const ToneMapModel& model);

// Dragging the rectangle. Grabbing is refused outside of it, and when it reaches beyond the visible
// part on all sides: the drag moves the picture then. Drag answers whether the rectangle has moved,
// Drop whether the preview is to be rendered anew.
bool GrabPreviewRect(ToneMapModel* model, CBxPoint<double> at, const CBxRect<int>& visible);
bool DragPreviewRect(ToneMapModel* model, CBxPoint<double> at);
bool DropPreviewRect(ToneMapModel* model);

// Brings the preview picture (geometry of the source) to what the model says: the rectangle
// filtered, the rest as in the source. Fails when memory is short: all of it is the source then.
Outcome RenderToneMapPreview(SBxPicBuf* preview, ToneMapModel* model, const SBxPicBuf& source);

// The preview picture has become the source by other means.
void ForgetToneMapPreview(ToneMapModel* model);

ToneMapStep ToneMapOk(const ToneMapModel& model);
ToneMapStep ToneMapCancel(const ToneMapModel& model);
ToneMapStep ToneMapStop(const ToneMapModel& model);

// The run: its progress bar's range, its start, its end by itself or by a stop.
int ToneMapProgressEnd(const ToneMapModel& model);
void ToneMapRunStarted(ToneMapModel* model);
void ToneMapRunEnded(ToneMapModel* model, bool done);
