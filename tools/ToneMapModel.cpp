#include "tools/ToneMapModel.h"

#include "picture/Picture.h"

#include <algorithm>
#include <cmath>

static bool IsBehind(const ToneMapModel& model)
{
    return IsPreviewShown(model) && !(SameRect(model.renderedRect, model.previewRect) &&
                                      SameNumbers(Tool::ToneMap, model.rendered, model.numbers));
}

static void MoveRectTo(ToneMapModel* model, CBxPoint<double> centre)
{
    model->centre = {std::clamp(centre.x, 0.0, double(model->picture.cx)),
                     std::clamp(centre.y, 0.0, double(model->picture.cy))};
    model->previewRect = PreviewRectAround(model->centre, model->picture);
}

void StartToneMapModel(ToneMapModel* model, const SBxPicBuf& picture, const ToolNumbers& stored)
{
    *model = ToneMapModel();
    model->picture = {picture.width, picture.height};
    model->hasColors = picture.components == 3;
    model->numbers = OpenedNumbers(Tool::ToneMap, stored);
}

bool ToneMapSliderMoved(ToneMapModel* model, const ParameterRow& slider, SliderMove move, int thumb)
{
    if (model->state != ToneMapState::Editing)
        return false;
    MoveNumber(&model->numbers, slider, move, thumb);
    if (move == SliderMove::Drag)
        return false;
    return move == SliderMove::Drop ? IsPreviewShown(*model) : IsBehind(*model);
}

bool ToneMapBoxToggled(ToneMapModel* model, const ParameterRow& box, bool on)
{
    *NumberAt(&model->numbers, box) = on;
    return IsBehind(*model);
}

bool ToneMapPreviewToggled(ToneMapModel* model, bool on, CBxPoint<double> viewCentre)
{
    model->previewOn = on;
    model->dragging = false;
    model->viewCentre = viewCentre;
    MoveRectTo(model, viewCentre);
    return on;
}

bool ToneMapViewMoved(ToneMapModel* model, CBxPoint<double> viewCentre)
{
    const bool moved = viewCentre.x != model->viewCentre.x || viewCentre.y != model->viewCentre.y;
    model->viewCentre = viewCentre;
    if (!moved || !model->previewOn)
        return false;
    model->dragging = false;
    MoveRectTo(model, viewCentre);
    return IsBehind(*model);
}

static void ClipSide(int* start, int* end, double centre, int size)
{
    const int middle = int(std::floor(std::clamp(centre, 0.0, double(size))));
    *start = middle - kPreviewReach < 1 ? 0 : middle - kPreviewReach;
    *end = std::min(middle + kPreviewReach, size);
}

CBxRect<int> PreviewRectAround(CBxPoint<double> centre, CBxSize<int> picture)
{
    CBxRect<int> rect;
    ClipSide(&rect.left, &rect.right, centre.x, picture.cx);
    ClipSide(&rect.top, &rect.bottom, centre.y, picture.cy);
    return rect;
}

bool IsPreviewShown(const ToneMapModel& model)
{
    return model.previewOn && model.state == ToneMapState::Editing;
}

static bool Contains(const CBxRect<int>& rect, CBxPoint<double> at)
{
    return at.x >= rect.left && at.x < rect.right && at.y >= rect.top && at.y < rect.bottom;
}

bool GrabPreviewRect(ToneMapModel* model, CBxPoint<double> at, const CBxRect<int>& visible)
{
    const CBxRect<int>& rect = model->previewRect;
    const bool edgeInView = rect.left > visible.left || rect.right < visible.right ||
                            rect.top > visible.top || rect.bottom < visible.bottom;
    model->dragging = IsPreviewShown(*model) && edgeInView && Contains(rect, at);
    model->grabOffset = {model->centre.x - at.x, model->centre.y - at.y};
    return model->dragging;
}

bool DragPreviewRect(ToneMapModel* model, CBxPoint<double> at)
{
    if (!model->dragging)
        return false;
    const CBxRect<int> before = model->previewRect;
    MoveRectTo(model, {at.x + model->grabOffset.x, at.y + model->grabOffset.y});
    return !SameRect(before, model->previewRect);
}

bool DropPreviewRect(ToneMapModel* model)
{
    const bool wasDragging = model->dragging;
    model->dragging = false;
    return wasDragging && IsBehind(*model);
}

static void RestoreRendered(SBxPicBuf* preview, ToneMapModel* model, const SBxPicBuf& source)
{
    if (!IsEmptyRect(model->renderedRect))
        CBxPicBufAPI::Copy(preview, source, model->renderedRect);
    ForgetToneMapPreview(model);
}

void ForgetToneMapPreview(ToneMapModel* model)
{
    model->renderedRect = {};
}

static Outcome FilterRect(SBxPicBuf* preview, const ToneMapModel& model, const SBxPicBuf& source)
{
    const CBxRect<int>& rect = model.previewRect;
    const CBxSize<int> size = {rect.right - rect.left, rect.bottom - rect.top};
    Picture crop(size.cx, size.cy, source.components, source.bitsPerComponent);
    if (crop.Empty())
        return Outcome::Failed;
    CBxPicBufAPI::CopyRect(crop.Record(), source, {0, 0}, {rect.left, rect.top}, size);
    const ToneMapParams params = ToneMapParamsOf(model.numbers.toneMap);
    const Outcome outcome = ToneMapPicture(crop.Record(), crop, kToneMapLevels, params);
    if (outcome == Outcome::Done)
        CBxPicBufAPI::CopyRect(preview, crop, {rect.left, rect.top}, {0, 0}, size);
    return outcome;
}

Outcome RenderToneMapPreview(SBxPicBuf* preview, ToneMapModel* model, const SBxPicBuf& source)
{
    RestoreRendered(preview, model, source);
    if (!IsPreviewShown(*model) || IsEmptyRect(model->previewRect))
        return Outcome::Done;
    const Outcome outcome = FilterRect(preview, *model, source);
    if (outcome == Outcome::Done)
    {
        model->rendered = model->numbers;
        model->renderedRect = model->previewRect;
    }
    return outcome;
}

ToneMapStep ToneMapOk(const ToneMapModel& model)
{
    switch (model.state)
    {
    case ToneMapState::Editing: return ToneMapStep::StartRun;
    case ToneMapState::Finished: return ToneMapStep::Close;
    default: return ToneMapStep::Nothing;
    }
}

ToneMapStep ToneMapCancel(const ToneMapModel& model)
{
    switch (model.state)
    {
    case ToneMapState::Editing: return ToneMapStep::GiveUp;
    case ToneMapState::Finished: return ToneMapStep::Close;
    default: return ToneMapStep::Nothing;
    }
}

ToneMapStep ToneMapStop(const ToneMapModel& model)
{
    return model.state == ToneMapState::Running ? ToneMapStep::Stop : ToneMapStep::Nothing;
}

int ToneMapProgressEnd(const ToneMapModel& model)
{
    constexpr int kStepsPerPlane = 3 * kToneMapLevels, kRest = 2;
    return (model.hasColors && model.numbers.toneMap.useColors ? 3 : 1) * kStepsPerPlane + kRest;
}

void ToneMapRunStarted(ToneMapModel* model)
{
    model->state = ToneMapState::Running;
    model->dragging = false;
    ForgetToneMapPreview(model);
}

void ToneMapRunEnded(ToneMapModel* model, bool done)
{
    model->state = done ? ToneMapState::Finished : ToneMapState::Editing;
}
