#include "tools/ExposureFusionModel.h"
#include "tools/PowerFusionModel.h"

#include <gtest/gtest.h>

#include <vector>

static ToolNumbers StoredPower(int power)
{
    ToolNumbers settings = DefaultNumbers();
    settings.powerTool = {100, 3, power};
    return settings;
}

static ToolNumbers StoredExposure(int exposure)
{
    ToolNumbers settings = DefaultNumbers();
    settings.fusionTool = {1, 2, 3, exposure};
    return settings;
}

TEST(PowerModel, FusesAsManySourcesAsItSaysWithAFixedGrey)
{
    const CBxRect<int> region = {1, 2, 30, 40};
    PowerFusionModel model = OpenPowerFusion(StoredPower(15), 39);
    const FusionTask task = PowerTask(model, region);
    EXPECT_TRUE(SameRect(task.region, region));
    EXPECT_EQ(task.sources, 15);
    EXPECT_EQ(task.exposureMid, 128u); // although 100 is stored
    model.seriesCount = 7;             // of a series that was stopped
    EXPECT_EQ(PowerTask(model, region).sources, 7);
    ToolNumbers settings = StoredPower(21);
    StorePower(model, &settings);
    EXPECT_EQ(settings.powerTool.power, 15);
    EXPECT_EQ(settings.powerTool.exposure, 100) << "not its own value";
}

TEST(ExposureModel, GivesTheSlidersValueToAllSourcesAndKeepsTheStrengths)
{
    ToolNumbers settings = StoredExposure(120);
    ExposureFusionModel model = OpenExposureFusion(settings, 11);
    EXPECT_TRUE(MoveExposure(&model, SliderMove::Drag, 128));
    const FusionTask task = ExposureTask(model, {0, 0, 5, 5});
    EXPECT_EQ(task.sources, 11);
    EXPECT_EQ(task.exposureMid, 128u);
    EXPECT_TRUE(MoveExposure(&model, SliderMove::Drop, 999));
    const auto stored = [&]
    {
        StoreExposureFusion(model, &settings);
        const auto& tool = settings.fusionTool;
        return std::vector<int>{tool.sharpStrength, tool.satStrength, tool.expStrength,
                                tool.exposure};
    };
    EXPECT_EQ(stored(), (std::vector<int>{1, 2, 3, 160}));
    SetFusionDefaults(&model);
    EXPECT_EQ(stored(), (std::vector<int>{5, 5, 5, 100}));
}

TEST(ExposureModel, SwallowsKeysAndPagesOnReleasedArrowsOnce)
{
    const unsigned left = 0x25, right = 0x27, letter = 'A';
    EXPECT_TRUE(KeyOfHook(-1, left, true).passOn);
    for (const unsigned key : {left, right, letter})
        for (const int code : {0, 3})
            for (const bool released : {false, true})
            {
                const HookedKey hooked = KeyOfHook(code, key, released);
                const bool arrow = code == 0 && released && key != letter;
                EXPECT_FALSE(hooked.passOn);
                EXPECT_EQ(hooked.page, !arrow ? 0 : key == left ? -1 : 1);
            }
}
