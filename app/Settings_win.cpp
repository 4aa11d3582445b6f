#include "app/Settings.h"

#include "app/LanguageFile.h"
#include "picture/ImageFile.h"

void ReadSettings(SettingGroup group)
{
    ReadSettings(UserSettingsFile(), group, &g_settings);
}

bool WriteSettings(SettingGroup group)
{
    return WriteSettings(UserSettingsFile(), group, &g_settings);
}

void LoadSettings()
{
    LoadSettings(UserSettingsFile(), LocalizationFile(), &g_settings, &g_languages);
    g_jpegQuality = g_settings.jpegQuality;
}

void SaveSettingsOnExit()
{
    SaveSettingsOnExit(UserSettingsFile(), &g_settings);
}
