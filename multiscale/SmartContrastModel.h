#pragma once

#include "app/SliderRules.h"
#include "multiscale/LevelsOfDetail.h"

// What the Smart Contrast dialog knows: the picture taken apart once, for as long as the dialog is
// open, and the number of each level. No windows here; everything runs on the dialog's thread.

constexpr SliderRange kLevelOfDetailRange = {0, 30};

struct SmartContrastModel
{
    CBxSize<int> size = {0, 0};   // of the picture
    DetailPadding padding = {};   // where it lies in the padded one
    SBxPicBuf padded = {};        // what the record is put together into
    LevelsOfDetail record;        // the picture taken apart
    int lod[kDetailLevels] = {};  // what the sliders show
    int made[kDetailLevels] = {}; // of the picture that was put together last
    bool anyMade = false;
};

// Takes the picture apart and starts from the stored numbers. True when memory is short: the model
// is released then.
[[nodiscard]] bool OpenSmartContrast(SmartContrastModel* model, const SBxPicBuf& picture,
                                     const int lod[kDetailLevels]);

// Frees pictures and planes; copes with a half-opened model.
void ReleaseSmartContrast(SmartContrastModel* model);

// Moves a slider. True when the picture is to be put together again: not while the thumb is being
// dragged, always when it is let go, and otherwise when the numbers are not those of the picture.
bool SmartContrastSliderMoved(SmartContrastModel* model, int level, SliderMove move, int thumb);

// Whether the picture put together last, if any, has other numbers than the sliders.
bool IsSmartContrastBehind(const SmartContrastModel& model);

// Puts the picture together with the sliders' numbers. True, with `out` untouched, when it has not
// the geometry of the picture that was opened.
[[nodiscard]] bool RecomposeSmartContrast(SBxPicBuf* out, SmartContrastModel* model);
