#include "tools/ExposureFusionModel.h"

static constexpr int kDefaultStrength = 5, kDefaultExposure = 100;
static constexpr unsigned kLeftArrow = 0x25, kRightArrow = 0x27;

ExposureFusionModel OpenExposureFusion(const Settings& settings, int seriesCount)
{
    const auto& stored = settings.fusionTool;
    return {stored.sharpStrength, stored.satStrength, stored.expStrength, stored.exposure,
            seriesCount};
}

bool MoveExposure(ExposureFusionModel* model, SliderMove move, int thumb)
{
    const int before = model->exposure;
    model->exposure = MovedSlider(kTargetGreyRange, before, move, thumb);
    return model->exposure != before;
}

void SetFusionDefaults(ExposureFusionModel* model)
{
    model->sharpStrength = model->satStrength = model->expStrength = kDefaultStrength;
    model->exposure = kDefaultExposure;
}

FusionTask ExposureTask(const ExposureFusionModel& model, const CBxRect<int>& region)
{
    return {region, model.seriesCount, unsigned(model.exposure)};
}

void StoreExposureFusion(const ExposureFusionModel& model, Settings* settings)
{
    auto* stored = &settings->fusionTool;
    stored->sharpStrength = model.sharpStrength;
    stored->satStrength = model.satStrength;
    stored->expStrength = model.expStrength;
    stored->exposure = model.exposure;
}

HookedKey KeyOfHook(int code, unsigned virtualKey, bool released)
{
    if (code < 0)
        return {true, 0};
    if (code > 0 || !released)
        return {false, 0};
    return {false, virtualKey == kLeftArrow ? -1 : virtualKey == kRightArrow ? 1 : 0};
}
