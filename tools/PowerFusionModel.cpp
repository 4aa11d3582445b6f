#include "tools/PowerFusionModel.h"

#include <algorithm>

PowerFusionModel OpenPowerFusion(const Settings& settings, int seriesCount)
{
    return {settings.powerTool.power, seriesCount};
}

bool MovePower(PowerFusionModel* model, SliderMove move, int thumb)
{
    const int before = model->power;
    model->power = MovedSlider(kPowerRange, before, move, thumb);
    return model->power != before;
}

FusionTask PowerTask(const PowerFusionModel& model, const CBxRect<int>& region)
{
    return {region, std::min(model.power, model.seriesCount), kPowerTargetGrey};
}

void StorePower(const PowerFusionModel& model, Settings* settings)
{
    settings->powerTool.power = model.power;
}
