#include "tools/Settings.h"

#include "text/LanguageFile.h"

#include <algorithm>
#include <climits>
#include <cstddef>

Settings g_settings = {};

static const SettingRange kAnyNumber = {OutOfRange::Keep, 0, 0};
static const SettingRange kToneSlider = {OutOfRange::Clamp, 1, 50};
static const SettingRange kFromTwenty = {OutOfRange::UseDefault, 20, INT_MAX};
static const SettingRange kSourceCount = {OutOfRange::UseDefault, 3, 39};
static const SettingRange kStrength = {OutOfRange::Clamp, 0, 10};
static const SettingRange kTargetGrey = {OutOfRange::Clamp, 48, 160};
static const SettingRange kGainTenths = {OutOfRange::Clamp, 0, 30};
static const SettingRange kNoiseLevel = {OutOfRange::Clamp, 0, 3};

using Group = SettingGroup;
#define FIELD(name) offsetof(Settings, name)

// The two fusion dialogs share the key "Exposure" but not its default and range. "power" and
// "Power" are one key in the file as well: a number that the slider cannot show, such as the 1 of
// a first run without the tool, counts as none.
const SettingRow kSettings[] = {
    {Group::CrashMarker, L"Crashed Last Time", 0, FIELD(crashedLastTime), kAnyNumber},
    {Group::Run, L"method", 0, FIELD(method), kAnyNumber},
    {Group::Run, L"power", 1, FIELD(power), kAnyNumber},
    {Group::Run, L"noise", 1, FIELD(noise), kAnyNumber},
    {Group::Run, L"uiPowerT1", 10, FIELD(uiPowerT[0]), kToneSlider},
    {Group::Run, L"uiPowerT2", 10, FIELD(uiPowerT[1]), kToneSlider},
    {Group::Run, L"uiPowerT3", 10, FIELD(uiPowerT[2]), kToneSlider},
    {Group::Run, L"uiPowerT4", 10, FIELD(uiPowerT[3]), kToneSlider},
    {Group::Run, L"uiUseColors", 10, FIELD(uiUseColors), kAnyNumber},
    {Group::StartOnly, L"jpeg", 90, FIELD(jpegQuality), kFromTwenty},
    {Group::SaveDialog, L"jpeg", 85, FIELD(jpegQuality), kAnyNumber},
    {Group::PowerTool, L"Exposure", 128, FIELD(powerTool.exposure), kAnyNumber},
    {Group::PowerTool, L"Flatness", 3, FIELD(powerTool.flatness), kAnyNumber},
    {Group::PowerTool, L"Power", 15, FIELD(powerTool.power), kSourceCount},
    {Group::FusionTool, L"Sharp Strength", 5, FIELD(fusionTool.sharpStrength), kStrength},
    {Group::FusionTool, L"Sat Strength", 5, FIELD(fusionTool.satStrength), kStrength},
    {Group::FusionTool, L"Exp Strength", 5, FIELD(fusionTool.expStrength), kStrength},
    {Group::FusionTool, L"Exposure", 100, FIELD(fusionTool.exposure), kTargetGrey},
    {Group::LevelsOfDetail, L"LOD_0", 10, FIELD(levelsOfDetail[0]), kGainTenths},
    {Group::LevelsOfDetail, L"LOD_1", 10, FIELD(levelsOfDetail[1]), kGainTenths},
    {Group::LevelsOfDetail, L"LOD_2", 10, FIELD(levelsOfDetail[2]), kGainTenths},
    {Group::LevelsOfDetail, L"LOD_3", 10, FIELD(levelsOfDetail[3]), kGainTenths},
    {Group::LevelsOfDetail, L"LOD_4", 10, FIELD(levelsOfDetail[4]), kGainTenths},
    {Group::LevelsOfDetail, L"LOD_5", 10, FIELD(levelsOfDetail[5]), kGainTenths},
    {Group::LevelsOfDetail, L"LOD_6", 10, FIELD(levelsOfDetail[6]), kGainTenths},
    {Group::LevelsOfDetail, L"LOD_7", 10, FIELD(levelsOfDetail[7]), kGainTenths},
    {Group::NoisePrompt, L"Denoise Strength", 1, FIELD(denoiseStrength), kNoiseLevel},
};
const int kSettingCount = int(sizeof kSettings / sizeof kSettings[0]);

#undef FIELD

static int* FieldOf(Settings* settings, const SettingRow& row)
{
    return reinterpret_cast<int*>(reinterpret_cast<char*>(settings) + row.field);
}

static int Allowed(const SettingRow& row, int number)
{
    const SettingRange& range = row.range;
    if (range.outOfRange == OutOfRange::Keep)
        return number;
    const int allowed = std::clamp(number, range.lowest, range.highest);
    return range.outOfRange == OutOfRange::Clamp || allowed == number ? allowed : row.standard;
}

void ReadSettings(const ProfileStore& store, SettingGroup group, Settings* settings)
{
    for (const SettingRow& row : kSettings)
        if (row.group == group)
            *FieldOf(settings, row) =
                Allowed(row, ReadNumber(store, kGeneralSection, row.key, row.standard));
}

static std::vector<ProfileValue> ValuesOf(SettingGroup group, Settings* settings)
{
    std::vector<ProfileValue> values;
    for (const SettingRow& row : kSettings)
        if (row.group == group)
            values.push_back({row.key, std::to_wstring(*FieldOf(settings, row))});
    return values;
}

bool WriteSettings(const ProfileStore& store, SettingGroup group, Settings* settings)
{
    if (group == SettingGroup::PowerTool)
        settings->power = settings->powerTool.power;
    return store.write(kGeneralSection, ValuesOf(group, settings));
}

// The marker says how the last run ended only until it is read; from then on it stands for this
// run, so that a run that ends in any other way than SaveSettingsOnExit leaves it behind.
static std::vector<ProfileValue> CrashMarker(int crashed)
{
    Settings marker = {};
    marker.crashedLastTime = crashed;
    return ValuesOf(SettingGroup::CrashMarker, &marker);
}

void LoadSettings(const ProfileStore& store, const ProfileStore& localization, Settings* settings,
                  LanguageList* languages)
{
    LoadLanguageChoice(localization, languages);
    ReadSettings(store, SettingGroup::CrashMarker, settings);
    store.write(kGeneralSection, CrashMarker(1)); // where that fails, nobody is told yet
    ReadSettings(store, SettingGroup::Run, settings);
    ReadSettings(store, SettingGroup::StartOnly, settings);
    LoadLanguageNames(localization, languages);
}

bool SaveSettingsOnExit(const ProfileStore& store, Settings* settings)
{
    std::vector<ProfileValue> values = CrashMarker(0);
    for (ProfileValue& value : ValuesOf(SettingGroup::Run, settings))
        values.push_back(std::move(value));
    return store.write(kGeneralSection, values);
}
