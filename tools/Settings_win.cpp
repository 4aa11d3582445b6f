#include "tools/Settings_win.h"

#include "base/Format_win.h"
#include "files/ImageFile.h"
#include "text/LanguageFile.h"
#include "text/Strings.h"

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

bool SaveSettingsOnExit()
{
    return SaveSettingsOnExit(UserSettingsFile(), &g_settings);
}

void TellSettingsUnsaved(HWND owner)
{
    const HWND present = IsWindow(owner) ? owner : nullptr; // gone at the end of the run
    const ProfileFailure& failure = LastProfileFailure();
    const std::wstring text = VcFormatText(L"%s\n%s\n%s", Text(kTextSettings), failure.path.c_str(),
                                           SystemErrorText(failure.error).c_str());
    MessageBoxW(present, text.c_str(), Text(kTextWarning), MB_OK | MB_ICONASTERISK);
}
