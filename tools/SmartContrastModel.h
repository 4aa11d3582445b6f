#pragma once

#include "contrast/LevelsOfDetail.h"
#include "contrast/LevelsOfDetailPadding.h"
#include "picture/Picture.h"
#include "tools/Parameters.h"
#include "view/ImageView.h"

// What the Smart Contrast dialog knows: the picture taken apart once, for as long as the dialog is
// open, and the number of each level. No windows here; everything runs on the dialog's thread.

struct SmartContrastModel
{
    CBxSize<int> size = {0, 0}; // of the picture
    DetailPadding padding = {}; // where it lies in the padded one
    Picture padded;             // what the record is put together into
    LevelsOfDetail record;      // the picture taken apart
    ToolNumbers numbers = {};   // what the sliders show
    ToolNumbers made = {};      // of what was put together last
    CBxRect<int> madePart = {}; // and where that is; empty before the first time
};

// Takes the picture apart and starts from the stored numbers. Fails when memory is short: the model
// is empty then.
Outcome OpenSmartContrast(SmartContrastModel* model, const SBxPicBuf& picture,
                          const ToolNumbers& stored);

// Moves a slider. True when the picture is to be put together again: not while the thumb is being
// dragged, always when it is let go, and otherwise when the numbers are not those of the picture.
bool SmartContrastSliderMoved(SmartContrastModel* model, const ParameterRow& level, SliderMove move,
                              int thumb);

// What the view shows of a picture, and a few pixels around it that scaling looks at.
CBxRect<int> SmartContrastVisible(const ImageView& view, CBxSize<int> picture);

// Whether that part of the picture has been put together with the sliders' numbers.
bool HasSmartContrast(const SmartContrastModel& model, const CBxRect<int>& part);

// Puts a part of the picture together with the sliders' numbers: at least what is visible, and
// somewhat more, so that a short way of panning does without. What is put together is as in the
// whole picture; the rest of `out` is left as it is. Fails, with `out` untouched, when it has not
// the geometry of the picture that was opened.
Outcome RecomposeSmartContrast(SBxPicBuf* out, SmartContrastModel* model,
                               const CBxRect<int>& visible);

// The whole of it into the same `out`, unless that has been done: what OK keeps.
Outcome CompleteSmartContrast(SBxPicBuf* out, SmartContrastModel* model);
