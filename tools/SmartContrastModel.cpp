#include "tools/SmartContrastModel.h"

#include <algorithm>

// The padded picture is also the one that the record is put together into: once it has been taken
// apart, nobody needs its pixels any more.
static Outcome TakeApart(SmartContrastModel* model, const SBxPicBuf& picture)
{
    const DetailPadding& at = model->padding;
    CBxPicBufAPI::ReinitHeap(model->padded.Record(), at.width, at.height, picture.components,
                             picture.bitsPerComponent);
    if (model->padded.Empty())
        return Outcome::Failed;
    CBxPicBufAPI::CopyRect(model->padded.Record(), picture, {at.x, at.y}, {0, 0}, model->size);
    if (picture.bitsPerComponent == 8)
        ReplicateBorder8(model->padded.Record(), at.x, at.y, model->size.cx, model->size.cy);
    else
        ReplicateBorder16(model->padded.Record(), at.x, at.y, model->size.cx, model->size.cy);
    return Decompose(&model->record, model->padded, at.levels);
}

Outcome OpenSmartContrast(SmartContrastModel* model, const SBxPicBuf& picture,
                          const ToolNumbers& stored)
{
    *model = {};
    model->numbers = OpenedNumbers(Tool::SmartContrast, stored);
    model->size = {picture.width, picture.height};
    model->padding = DetailPaddingOf(picture.width, picture.height);
    const Outcome outcome = TakeApart(model, picture);
    if (outcome != Outcome::Done)
        *model = {};
    return outcome;
}

static bool HasItsNumbers(const SmartContrastModel& model)
{
    return !IsEmptyRect(model.madePart) &&
           SameNumbers(Tool::SmartContrast, model.numbers, model.made);
}

bool SmartContrastSliderMoved(SmartContrastModel* model, const ParameterRow& level, SliderMove move,
                              int thumb)
{
    MoveNumber(&model->numbers, level, move, thumb);
    if (move == SliderMove::Drag)
        return false;
    return move == SliderMove::Drop || !HasItsNumbers(*model);
}

CBxRect<int> SmartContrastVisible(const ImageView& view, CBxSize<int> picture)
{
    return PictureInView(view, picture, 3); // bicubic scaling looks at two of them
}

bool HasSmartContrast(const SmartContrastModel& model, const CBxRect<int>& part)
{
    const CBxRect<int>& made = model.madePart;
    return HasItsNumbers(model) && part.left >= made.left && part.top >= made.top &&
           part.right <= made.right && part.bottom <= made.bottom;
}

static Outcome RecomposePart(SBxPicBuf* out, SmartContrastModel* model, const CBxRect<int>& part)
{
    const SBxPicBuf& padded = model->padded;
    if (!out->data || out->width != model->size.cx || out->height != model->size.cy ||
        out->components != padded.components || out->bitsPerComponent != padded.bitsPerComponent)
        return Outcome::Failed;
    float gains[kDetailLevels];
    const int* lod = model->numbers.levelsOfDetail;
    std::transform(lod, lod + kDetailLevels, gains, LevelGain);
    const int x = model->padding.x, y = model->padding.y;
    if (RecomposeRegion(model->padded.Record(), &model->record, gains,
                        {part.left + x, part.top + y, part.right + x, part.bottom + y}) !=
        Outcome::Done)
        return Outcome::Failed;
    CBxPicBufAPI::CopyRect(out, padded, {part.left, part.top}, {part.left + x, part.top + y},
                           {part.right - part.left, part.bottom - part.top});
    model->made = model->numbers;
    model->madePart = part;
    return Outcome::Done;
}

Outcome RecomposeSmartContrast(SBxPicBuf* out, SmartContrastModel* model,
                               const CBxRect<int>& visible)
{
    const int x = (visible.right - visible.left) / 8, y = (visible.bottom - visible.top) / 8;
    return RecomposePart(out, model,
                         {std::max(visible.left - x, 0), std::max(visible.top - y, 0),
                          std::min(visible.right + x, model->size.cx),
                          std::min(visible.bottom + y, model->size.cy)});
}

Outcome CompleteSmartContrast(SBxPicBuf* out, SmartContrastModel* model)
{
    const CBxRect<int> whole = {0, 0, model->size.cx, model->size.cy};
    return HasSmartContrast(*model, whole) ? Outcome::Done : RecomposePart(out, model, whole);
}
