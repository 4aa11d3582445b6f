#include "tools/Settings.h"

#include "tests/support/MemoryProfile.h"
#include "text/LanguageFile.h"

#include <gtest/gtest.h>

#include <algorithm>
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

const std::vector<SettingGroup> kGroups = {SettingGroup::PowerTool, SettingGroup::FusionTool,
                                           SettingGroup::LevelsOfDetail, SettingGroup::NoisePrompt,
                                           SettingGroup::Run};

class SettingsFile : public testing::Test
{
protected:
    MemoryProfile file, localization;
    Settings settings = {};
    LanguageList languages;

    void Start() { LoadSettings(file.Store(), localization.Store(), &settings, &languages); }
    void Put(const wchar_t* key, const wchar_t* value) { file.Set(L"General", key, value); }
    void Read(SettingGroup group) { ReadSettings(file.Store(), group, &settings); }
    bool Write(SettingGroup group)
    {
        return WriteSettings(file.Store(), group, &settings) == Outcome::Done;
    }
    Texts WrittenBy(const std::vector<SettingGroup>& groups)
    {
        file.written.clear();
        for (SettingGroup group : groups)
            EXPECT_TRUE(Write(group));
        return file.written;
    }
};

TEST_F(SettingsFile, ThatIsMissingGivesTheDefaults)
{
    Start();
    for (SettingGroup group : kGroups)
        Read(group);
    const Texts expected = {
        L"Exposure=128",   L"Flatness=3",     L"Power=15",     L"Sharp Strength=5",
        L"Sat Strength=5", L"Exp Strength=5", L"Exposure=100", L"LOD_0=10",
        L"LOD_1=10",       L"LOD_2=10",       L"LOD_3=10",     L"LOD_4=10",
        L"LOD_5=10",       L"LOD_6=10",       L"LOD_7=10",     L"Denoise Strength=1",
        L"method=0",       L"power=15",       L"noise=1",      L"uiPowerT1=10",
        L"uiPowerT2=10",   L"uiPowerT3=10",   L"uiPowerT4=10", L"uiUseColors=10"};
    EXPECT_EQ(WrittenBy(kGroups), expected);
    EXPECT_EQ(settings.jpegQuality, 90);
    Read(SettingGroup::SaveDialog);
    EXPECT_EQ(settings.jpegQuality, 85);
    settings.fusionTool = {1, 2, 3, 140};
    const Texts fusion = {L"Sharp Strength=1", L"Sat Strength=2", L"Exp Strength=3",
                          L"Exposure=140"};
    EXPECT_EQ(WrittenBy({SettingGroup::FusionTool}), fusion);
    file.refuseWrites = true;
    EXPECT_FALSE(Write(SettingGroup::LevelsOfDetail));
}

TEST_F(SettingsFile, IsReadWithinEachSettingsRange)
{
    const struct
    {
        SettingGroup group;
        const wchar_t *key, *stored, *written;
    } cases[] = {
        {SettingGroup::PowerTool, L"Power", L"2", L"Power=15"},
        {SettingGroup::PowerTool, L"Power", L"3", L"Power=3"},
        {SettingGroup::PowerTool, L"Power", L"39", L"Power=39"},
        {SettingGroup::PowerTool, L"Power", L"40", L"Power=15"},
        {SettingGroup::PowerTool, L"power", L"22", L"Power=22"},
        {SettingGroup::PowerTool, L"Exposure", L"20", L"Exposure=20"},
        {SettingGroup::FusionTool, L"Exposure", L"20", L"Exposure=48"},
        {SettingGroup::FusionTool, L"Exposure", L"200", L"Exposure=160"},
        {SettingGroup::FusionTool, L"Sharp Strength", L"11", L"Sharp Strength=10"},
        {SettingGroup::Run, L"uiPowerT4", L"0", L"uiPowerT4=1"},
        {SettingGroup::Run, L"uiPowerT4", L"99", L"uiPowerT4=50"},
        {SettingGroup::Run, L"uiUseColors", L"", L"uiUseColors=0"},
        {SettingGroup::LevelsOfDetail, L"LOD_7", L"31", L"LOD_7=30"},
        {SettingGroup::LevelsOfDetail, L"LOD_7", L"-1", L"LOD_7=0"},
        {SettingGroup::NoisePrompt, L"Denoise Strength", L"7", L"Denoise Strength=3"},
        {SettingGroup::NoisePrompt, L"Denoise Strength", L"-1", L"Denoise Strength=0"},
        {SettingGroup::StartOnly, L"jpeg", L"19", L"jpeg=90"},
        {SettingGroup::StartOnly, L"jpeg", L"20", L"jpeg=20"},
        {SettingGroup::SaveDialog, L"jpeg", L"9", L"jpeg=9"},
        {SettingGroup::SaveDialog, L"jpeg", L"101", L"jpeg=101"},
    };
    for (const auto& c : cases)
    {
        file.values.clear();
        Put(c.key, c.stored);
        Read(c.group);
        const Texts written = WrittenBy({c.group});
        EXPECT_EQ(std::count(written.begin(), written.end(), c.written), 1)
            << c.key << L" = " << c.stored;
    }
}

TEST_F(SettingsFile, GetsTheKeysOfARunInOrderAndAsRead)
{
    Put(L"method", L"7");
    Put(L"uiPowerT2", L"31");
    Start();
    EXPECT_EQ(settings.crashedLastTime, 0);
    EXPECT_EQ(file.written, Texts{L"Crashed Last Time=1"});
    Start(); // nothing has ended the run in between
    EXPECT_EQ(settings.crashedLastTime, 1);
    settings.toneMap.contrast = 1;
    settings.toneMap.equalization = 50;
    file.written.clear();
    file.writes = 0;
    EXPECT_EQ(SaveSettingsOnExit(file.Store(), &settings), Outcome::Done);
    EXPECT_EQ(file.writes, 1) << "all or nothing";
    const Texts expected = {
        L"Crashed Last Time=0", L"method=7",     L"power=1",      L"noise=1",       L"uiPowerT1=1",
        L"uiPowerT2=31",        L"uiPowerT3=10", L"uiPowerT4=50", L"uiUseColors=10"};
    EXPECT_EQ(file.written, expected);
    settings.toneMap.contrast = 5; // not saved
    Start();
    EXPECT_EQ(settings.crashedLastTime, 0);
    EXPECT_EQ(settings.toneMap.contrast, 1);
}

TEST_F(SettingsFile, CarriesThePowerSliderOverTheEndOfARun)
{
    Start();
    (void)SaveSettingsOnExit(file.Store(), &settings); // a run that never opened the tool
    Start();
    Read(SettingGroup::PowerTool);
    EXPECT_EQ(settings.powerTool.power, 15);
    settings.powerTool.power = 22;
    Write(SettingGroup::PowerTool);
    (void)SaveSettingsOnExit(file.Store(), &settings);
    Start();
    Read(SettingGroup::PowerTool);
    EXPECT_EQ(settings.powerTool.power, 22);
}
