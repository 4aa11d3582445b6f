#include "app/Settings.h"

#include "app/LanguageFile.h"
#include "tests/support/MemoryProfile.h"

#include <gtest/gtest.h>

#include <climits>

using Texts = std::vector<std::wstring>;

TEST(DecimalNumber, IsASignAndLeadingDigits)
{
    const struct
    {
        const wchar_t* text;
        int number;
    } cases[] = {{L"", 0},
                 {L"x5", 0},
                 {L"0042", 42},
                 {L"12px", 12},
                 {L"3.9", 3},
                 {L"-1", -1},
                 {L"+7", 7},
                 {L"--1", 0},
                 {L"-", 0},
                 {L"2147483647", INT_MAX},
                 {L"2147483648", INT_MAX},
                 {L"-2147483648", INT_MIN},
                 {L"-99999999999999999999999", INT_MIN}};
    for (const auto& c : cases)
        EXPECT_EQ(DecimalNumber(c.text), c.number) << c.text;
}

class SettingsFile : public testing::Test
{
protected:
    MemoryProfile file, localization;
    Settings settings = {};
    LanguageList languages;

    void Start() { LoadSettings(file.Store(), localization.Store(), &settings, &languages); }
    void Put(const wchar_t* key, const wchar_t* value) { file.Set(L"General", key, value); }
    void Read(SettingGroup group) { ReadSettings(file.Store(), group, &settings); }
    bool Write(SettingGroup group) { return WriteSettings(file.Store(), group, &settings); }
};

TEST_F(SettingsFile, ThatIsMissingGivesTheDefaults)
{
    Start();
    for (SettingGroup group : {SettingGroup::PowerTool, SettingGroup::LevelsOfDetail,
                               SettingGroup::NoisePrompt, SettingGroup::FusionTool})
        Read(group);
    EXPECT_EQ(settings.crashedLastTime, 0);
    EXPECT_EQ(settings.method, 0);
    EXPECT_EQ(settings.power, 1);
    EXPECT_EQ(settings.noise, 1);
    for (int slider : settings.uiPowerT)
        EXPECT_EQ(slider, 10);
    EXPECT_EQ(settings.uiUseColors, 10);
    EXPECT_EQ(settings.jpegQuality, 90);
    EXPECT_EQ(settings.powerTool.exposure, 128);
    EXPECT_EQ(settings.powerTool.flatness, 3);
    EXPECT_EQ(settings.powerTool.power, 15);
    EXPECT_EQ(settings.fusionTool.sharpStrength, 5);
    EXPECT_EQ(settings.fusionTool.satStrength, 5);
    EXPECT_EQ(settings.fusionTool.expStrength, 5);
    EXPECT_EQ(settings.fusionTool.exposure, 100);
    for (int level : settings.levelsOfDetail)
        EXPECT_EQ(level, 10);
    EXPECT_EQ(settings.denoiseStrength, 1);
    Read(SettingGroup::SaveDialog);
    EXPECT_EQ(settings.jpegQuality, 85);
}

TEST_F(SettingsFile, IsReadWithinEachSettingsRange)
{
    const auto power = [](const Settings& s) { return s.powerTool.power; };
    const auto exposure = [](const Settings& s) { return s.fusionTool.exposure; };
    const auto fixedExposure = [](const Settings& s) { return s.powerTool.exposure; };
    const auto sharp = [](const Settings& s) { return s.fusionTool.sharpStrength; };
    const auto tone = [](const Settings& s) { return s.uiPowerT[3]; };
    const auto level = [](const Settings& s) { return s.levelsOfDetail[7]; };
    const auto noise = [](const Settings& s) { return s.denoiseStrength; };
    const auto jpeg = [](const Settings& s) { return s.jpegQuality; };
    const auto colors = [](const Settings& s) { return s.uiUseColors; };
    const struct
    {
        SettingGroup group;
        const wchar_t *key, *stored;
        int (*read)(const Settings&);
        int number;
    } cases[] = {
        {SettingGroup::PowerTool, L"Power", L"2", power, 15},
        {SettingGroup::PowerTool, L"Power", L"3", power, 3},
        {SettingGroup::PowerTool, L"Power", L"39", power, 39},
        {SettingGroup::PowerTool, L"Power", L"40", power, 15},
        {SettingGroup::PowerTool, L"power", L"22", power, 22},
        {SettingGroup::PowerTool, L"Exposure", L"20", fixedExposure, 20},
        {SettingGroup::FusionTool, L"Exposure", L"20", exposure, 48},
        {SettingGroup::FusionTool, L"Exposure", L"200", exposure, 160},
        {SettingGroup::FusionTool, L"Sharp Strength", L"11", sharp, 10},
        {SettingGroup::Run, L"uiPowerT4", L"0", tone, 1},
        {SettingGroup::Run, L"uiPowerT4", L"99", tone, 50},
        {SettingGroup::Run, L"uiUseColors", L"", colors, 0},
        {SettingGroup::LevelsOfDetail, L"LOD_7", L"31", level, 30},
        {SettingGroup::LevelsOfDetail, L"LOD_7", L"-1", level, 0},
        {SettingGroup::NoisePrompt, L"Denoise Strength", L"4", noise, 1},
        {SettingGroup::NoisePrompt, L"Denoise Strength", L"3", noise, 3},
        {SettingGroup::StartOnly, L"jpeg", L"19", jpeg, 90},
        {SettingGroup::StartOnly, L"jpeg", L"20", jpeg, 20},
        {SettingGroup::SaveDialog, L"jpeg", L"9", jpeg, 9},
        {SettingGroup::SaveDialog, L"jpeg", L"101", jpeg, 101},
    };
    for (const auto& c : cases)
    {
        file.values.clear();
        Put(c.key, c.stored);
        Read(c.group);
        EXPECT_EQ(c.read(settings), c.number) << c.key << L" = " << c.stored;
    }
}

TEST_F(SettingsFile, KeepsTheCrashMarkerUntilTheProperEnd)
{
    Start();
    EXPECT_EQ(settings.crashedLastTime, 0);
    EXPECT_EQ(file.written, Texts{L"Crashed Last Time=1"});
    Start(); // nothing has ended the run in between
    EXPECT_EQ(settings.crashedLastTime, 1);
    SaveSettingsOnExit(file.Store(), &settings);
    Start();
    EXPECT_EQ(settings.crashedLastTime, 0);
}

TEST_F(SettingsFile, GetsTheKeysOfARunInOrderAndAsRead)
{
    Put(L"method", L"7");
    Put(L"uiPowerT2", L"31");
    Start();
    settings.uiPowerT[0] = 1;
    settings.uiPowerT[3] = 50;
    file.written.clear();
    SaveSettingsOnExit(file.Store(), &settings);
    const Texts expected = {
        L"Crashed Last Time=0", L"method=7",     L"power=1",      L"noise=1",       L"uiPowerT1=1",
        L"uiPowerT2=31",        L"uiPowerT3=10", L"uiPowerT4=50", L"uiUseColors=10"};
    EXPECT_EQ(file.written, expected);
}

TEST_F(SettingsFile, GetsEachToolsKeysInOrder)
{
    settings.powerTool = {128, 6, 22};
    settings.fusionTool = {1, 2, 3, 140};
    settings.denoiseStrength = 2;
    settings.jpegQuality = 70;
    for (int i = 0; i < 8; ++i)
        settings.levelsOfDetail[i] = 20 + i;
    for (SettingGroup group :
         {SettingGroup::PowerTool, SettingGroup::FusionTool, SettingGroup::LevelsOfDetail,
          SettingGroup::NoisePrompt, SettingGroup::SaveDialog})
        EXPECT_TRUE(Write(group));
    const Texts expected = {
        L"Exposure=128",       L"Flatness=6",   L"Power=22", L"Sharp Strength=1", L"Sat Strength=2",
        L"Exp Strength=3",     L"Exposure=140", L"LOD_0=20", L"LOD_1=21",         L"LOD_2=22",
        L"LOD_3=23",           L"LOD_4=24",     L"LOD_5=25", L"LOD_6=26",         L"LOD_7=27",
        L"Denoise Strength=2", L"jpeg=70"};
    EXPECT_EQ(file.written, expected);
    file.refuseWrites = true;
    EXPECT_FALSE(Write(SettingGroup::LevelsOfDetail));
}

TEST_F(SettingsFile, CarriesThePowerSliderOverTheEndOfARun)
{
    Start();
    SaveSettingsOnExit(file.Store(), &settings); // a run that never opened the tool
    Start();
    Read(SettingGroup::PowerTool);
    EXPECT_EQ(settings.powerTool.power, 15);
    settings.powerTool.power = 22;
    Write(SettingGroup::PowerTool);
    SaveSettingsOnExit(file.Store(), &settings);
    Start();
    Read(SettingGroup::PowerTool);
    EXPECT_EQ(settings.powerTool.power, 22);
}

TEST_F(SettingsFile, BringsUnsavedNumbersBackWhenReadAgain)
{
    Put(L"uiPowerT1", L"30");
    Start();
    settings.uiPowerT[0] = 5;
    Start();
    EXPECT_EQ(settings.uiPowerT[0], 30);
}
