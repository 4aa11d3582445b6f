#include "tools/PowerFusionModel.h"

#include <algorithm>

PowerFusionModel OpenPowerFusion(const ToolNumbers& stored, int seriesCount)
{
    return {OpenedNumbers(Tool::PowerFusion, stored), seriesCount};
}

bool MovePower(PowerFusionModel* model, SliderMove move, int thumb)
{
    return MoveNumber(&model->numbers, SliderRowOf(Tool::PowerFusion), move, thumb);
}

FusionTask PowerTask(const PowerFusionModel& model, const CBxRect<int>& region)
{
    return {region, std::min(model.numbers.powerTool.power, model.seriesCount), kPowerTargetGrey};
}

void StorePower(const PowerFusionModel& model, ToolNumbers* stored)
{
    CopyNumbers(stored, Tool::PowerFusion, model.numbers);
}
