#pragma once

#include "text/ProfileStore.h"

#include <cstddef>

struct LanguageList;

// Everything that outlives a run, as numbers. One table (Settings.cpp) knows the keys, defaults
// and ranges; every part of the program reads and writes its own group of them.

struct Settings
{
    int crashedLastTime;

    // Kept while the program runs, written when it ends.
    int method; // this one and the noise are only handed on
    int power;
    int noise;
    int uiPowerT[4]; // sliders of tone mapping, from 1
    int uiUseColors; // its check box; any number but 0 is checked

    int jpegQuality; // percent

    struct // the fusion dialog with the Power slider
    {
        int exposure;
        int flatness;
        int power; // also the number of sources fused
    } powerTool;

    struct // the fusion dialog with the Exposure slider
    {
        int sharpStrength;
        int satStrength;
        int expStrength;
        int exposure;
    } fusionTool;

    int levelsOfDetail[8]; // tenths of a gain, finest level first
    int denoiseStrength;   // 0 none, 1 low, 2 medium, 3 high
};

enum class SettingGroup
{
    CrashMarker,
    Run,        // read at start, written at exit
    StartOnly,  // read at start, written by others
    SaveDialog, // the quality of JPEG files again, with a default of its own
    PowerTool,
    FusionTool,
    LevelsOfDetail,
    NoisePrompt,
};

enum class OutOfRange
{
    Keep, // all numbers are fine
    Clamp,
    UseDefault,
};

struct SettingRange
{
    OutOfRange outOfRange;
    int lowest, highest;
};

struct SettingRow
{
    SettingGroup group;
    const wchar_t* key;
    int standard; // when the key is missing
    size_t field; // offset in Settings
    SettingRange range;
};

// In the order in which each group is written.
extern const SettingRow kSettings[];
extern const int kSettingCount;

extern Settings g_settings;

void ReadSettings(const ProfileStore& store, SettingGroup group, Settings* settings);

// False when nothing could be written. Writing the Power tool also updates `power`: to the
// profile functions "power" and "Power" are one key, and what is written at exit would otherwise
// put the slider back to where it was at start.
[[nodiscard]] bool WriteSettings(const ProfileStore& store, SettingGroup group, Settings* settings);

// The start of a run: the language in use, the crash marker, which is set for the time of the run,
// all settings that are kept, and last the names of the languages.
void LoadSettings(const ProfileStore& store, const ProfileStore& localization, Settings* settings,
                  LanguageList* languages);

// The end of a run that did not crash. False when nothing could be written.
bool SaveSettingsOnExit(const ProfileStore& store, Settings* settings);

// The same on the user's own files and on g_settings and g_languages. Windows only. LoadSettings
// also sets g_jpegQuality.
void ReadSettings(SettingGroup group);
[[nodiscard]] bool WriteSettings(SettingGroup group);
void LoadSettings();
bool SaveSettingsOnExit();
