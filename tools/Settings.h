#pragma once

#include "base/Outcome.h"
#include "text/ProfileStore.h"
#include "tools/Parameters.h"

struct LanguageList;

// Everything that outlives a run, as numbers. Two tables know the keys, defaults and ranges: that
// of Parameters.h those of the tools, kSettings all others. Every part of the program reads and
// writes its own group of them.

struct Settings : ToolNumbers
{
    int crashedLastTime;
    int method, power, noise; // kept while the program runs, written when it ends
    int jpegQuality;          // percent
};

enum class SettingGroup
{
    CrashMarker,
    Run,        // read at start, written at exit; the numbers of tone mapping among them
    StartOnly,  // read at start, written by others
    SaveDialog, // the quality of JPEG files again, with a default of its own
    PowerTool,
    FusionTool,
    LevelsOfDetail,
    NoisePrompt,
};

struct SettingRow
{
    SettingGroup group;
    int Settings::*field;
    StoredNumber stored;
};

// In the order in which each group is written; its tool's rows follow.
extern const SettingRow kSettings[];
extern const int kSettingCount;

void ReadSettings(const ProfileStore& store, SettingGroup group, Settings* settings);

// Fails when nothing could be written. Writing the Power tool also updates `power`: to the
// profile functions "power" and "Power" are one key, and what is written at exit would otherwise
// put the slider back to where it was at start.
Outcome WriteSettings(const ProfileStore& store, SettingGroup group, Settings* settings);

// The start of a run: the language in use, the crash marker, which is set for the time of the run,
// all settings that are kept, and last the names of the languages.
void LoadSettings(const ProfileStore& store, const ProfileStore& localization, Settings* settings,
                  LanguageList* languages);

// The end of a run that did not crash. Fails when nothing could be written.
Outcome SaveSettingsOnExit(const ProfileStore& store, Settings* settings);

// The same on the user's own files and on g_languages. Windows only. LoadSettings also sets
// g_jpegQuality.
void ReadSettings(SettingGroup group, Settings* settings);
Outcome WriteSettings(SettingGroup group, Settings* settings);
void LoadSettings(Settings* settings);
Outcome SaveSettingsOnExit(Settings* settings);
