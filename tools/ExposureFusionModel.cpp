#include "tools/ExposureFusionModel.h"

static constexpr unsigned kLeftArrow = 0x25, kRightArrow = 0x27;

ExposureFusionModel OpenExposureFusion(const ToolNumbers& stored, int seriesCount)
{
    return {OpenedNumbers(Tool::ExposureFusion, stored), seriesCount};
}

bool MoveExposure(ExposureFusionModel* model, SliderMove move, int thumb)
{
    return MoveNumber(&model->numbers, SliderRowOf(Tool::ExposureFusion), move, thumb);
}

void SetFusionDefaults(ExposureFusionModel* model)
{
    CopyNumbers(&model->numbers, Tool::ExposureFusion, DefaultNumbers());
}

FusionTask ExposureTask(const ExposureFusionModel& model, const CBxRect<int>& region)
{
    return {region, model.seriesCount, unsigned(model.numbers.fusionTool.exposure)};
}

void StoreExposureFusion(const ExposureFusionModel& model, ToolNumbers* stored)
{
    CopyNumbers(stored, Tool::ExposureFusion, model.numbers);
}

HookedKey KeyOfHook(int code, unsigned virtualKey, bool released)
{
    if (code < 0)
        return {true, 0};
    if (code > 0 || !released)
        return {false, 0};
    return {false, virtualKey == kLeftArrow ? -1 : virtualKey == kRightArrow ? 1 : 0};
}
