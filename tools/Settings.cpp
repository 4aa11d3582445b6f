#include "tools/Settings.h"

#include "text/LanguageFile.h"

#include <climits>
#include <iterator>

using Group = SettingGroup;

const SettingRow kSettings[] = {
    {Group::CrashMarker, &Settings::crashedLastTime, {L"Crashed Last Time", 0, kAnyNumber}},
    {Group::Run, &Settings::method, {L"method", 0, kAnyNumber}},
    {Group::Run, &Settings::power, {L"power", 1, kAnyNumber}},
    {Group::Run, &Settings::noise, {L"noise", 1, kAnyNumber}},
    {Group::StartOnly,
     &Settings::jpegQuality,
     {L"jpeg", 90, {20, INT_MAX}, OutOfRange::UseDefault}},
    {Group::SaveDialog, &Settings::jpegQuality, {L"jpeg", 85, kAnyNumber}},
};
const int kSettingCount = int(std::size(kSettings));

static Group GroupOf(Tool tool)
{
    switch (tool)
    {
    case Tool::PowerFusion: return Group::PowerTool;
    case Tool::ExposureFusion: return Group::FusionTool;
    case Tool::SmartContrast: return Group::LevelsOfDetail;
    case Tool::NoisePrompt: return Group::NoisePrompt;
    default: return Group::Run;
    }
}

// Calls body with each number of a group, in the order of writing: where it is kept, and how it is
// stored.
template <typename Body>
static void ForEachNumber(SettingGroup group, Settings* settings, Body body)
{
    for (const SettingRow& row : kSettings)
        if (row.group == group)
            body(&(settings->*row.field), row.stored);
    for (const ParameterRow& row : AllParameters())
        if (GroupOf(row.tool) == group)
            body(NumberAt(settings, row), row.stored);
}

void ReadSettings(const ProfileStore& store, SettingGroup group, Settings* settings)
{
    ForEachNumber(group, settings,
                  [&](int* number, const StoredNumber& stored)
                  {
                      *number = AllowedNumber(
                          stored, ReadNumber(store, kGeneralSection, stored.key, stored.standard));
                  });
}

static std::vector<ProfileValue> ValuesOf(SettingGroup group, Settings* settings)
{
    std::vector<ProfileValue> values;
    ForEachNumber(group, settings,
                  [&](const int* number, const StoredNumber& stored) {
                      values.push_back({stored.key, std::to_wstring(*number)});
                  });
    return values;
}

Outcome WriteSettings(const ProfileStore& store, SettingGroup group, Settings* settings)
{
    if (group == SettingGroup::PowerTool)
        settings->power = settings->powerTool.power;
    return FailedIf(!store.write(kGeneralSection, ValuesOf(group, settings)));
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

Outcome SaveSettingsOnExit(const ProfileStore& store, Settings* settings)
{
    std::vector<ProfileValue> values = CrashMarker(0);
    for (ProfileValue& value : ValuesOf(SettingGroup::Run, settings))
        values.push_back(std::move(value));
    return FailedIf(!store.write(kGeneralSection, values));
}
