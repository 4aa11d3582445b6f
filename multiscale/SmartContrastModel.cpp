#include "multiscale/SmartContrastModel.h"

#include <algorithm>

// The padded picture is also the one that the record is put together into: once it has been taken
// apart, nobody needs its pixels any more.
static bool TakeApart(SmartContrastModel* model, const SBxPicBuf& picture)
{
    const DetailPadding& at = model->padding;
    CBxPicBufAPI::ReinitHeap(&model->padded, at.width, at.height, picture.components,
                             picture.bitsPerComponent);
    if (!model->padded.data)
        return true;
    CBxPicBufAPI::CopyRect(&model->padded, picture, {at.x, at.y}, {0, 0}, model->size);
    if (picture.bitsPerComponent == 8)
        ReplicateBorder8(&model->padded, at.x, at.y, model->size.cx, model->size.cy);
    else
        ReplicateBorder16(&model->padded, at.x, at.y, model->size.cx, model->size.cy);
    return Decompose(&model->record, model->padded, at.levels);
}

bool OpenSmartContrast(SmartContrastModel* model, const SBxPicBuf& picture,
                       const int lod[kDetailLevels])
{
    ReleaseSmartContrast(model);
    std::transform(lod, lod + kDetailLevels, model->lod, ClampLevelOfDetail);
    model->size = {picture.width, picture.height};
    model->padding = DetailPaddingOf(picture.width, picture.height);
    if (!TakeApart(model, picture))
        return false;
    ReleaseSmartContrast(model);
    return true;
}

void ReleaseSmartContrast(SmartContrastModel* model)
{
    CBxPicBufAPI::DoneHeap(&model->padded);
    *model = SmartContrastModel();
}

bool SmartContrastSliderMoved(SmartContrastModel* model, int level, SliderMove move, int thumb)
{
    model->lod[level] = MovedSlider(kLevelOfDetailRange, model->lod[level], move, thumb);
    if (move == SliderMove::Drag)
        return false;
    return move == SliderMove::Drop || IsSmartContrastBehind(*model);
}

bool IsSmartContrastBehind(const SmartContrastModel& model)
{
    return !model.anyMade || !std::equal(model.lod, model.lod + kDetailLevels, model.made);
}

bool RecomposeSmartContrast(SBxPicBuf* out, SmartContrastModel* model)
{
    const SBxPicBuf& padded = model->padded;
    if (!out->data || out->width != model->size.cx || out->height != model->size.cy ||
        out->components != padded.components || out->bitsPerComponent != padded.bitsPerComponent)
        return true;
    float gains[kDetailLevels];
    std::transform(model->lod, model->lod + kDetailLevels, gains, LevelGain);
    if (Recompose(&model->padded, &model->record, gains))
        return true;
    CBxPicBufAPI::CopyRect(out, padded, {0, 0}, {model->padding.x, model->padding.y}, model->size);
    std::copy_n(model->lod, kDetailLevels, model->made);
    model->anyMade = true;
    return false;
}
