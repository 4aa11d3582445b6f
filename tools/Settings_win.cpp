#include "tools/Settings_win.h"

#include "base/Format_win.h"
#include "files/ImageFile.h"
#include "text/LanguageFile.h"
#include "text/Strings.h"

void ReadSettings(SettingGroup group, Settings* settings)
{
    ReadSettings(UserSettingsFile(), group, settings);
}

Outcome WriteSettings(SettingGroup group, Settings* settings)
{
    return WriteSettings(UserSettingsFile(), group, settings);
}

void LoadSettings(Settings* settings)
{
    LoadSettings(UserSettingsFile(), LocalizationFile(), settings, &g_languages);
    g_jpegQuality = settings->jpegQuality;
}

Outcome SaveSettingsOnExit(Settings* settings)
{
    return SaveSettingsOnExit(UserSettingsFile(), settings);
}

void TellSettingsUnsaved(HWND owner)
{
    const HWND present = IsWindow(owner) ? owner : nullptr; // gone at the end of the run
    const ProfileFailure& failure = LastProfileFailure();
    const std::wstring text = VcFormatText(L"%s\n%s\n%s", Text(kTextSettings), failure.path.c_str(),
                                           SystemErrorText(failure.error).c_str());
    MessageBoxW(present, text.c_str(), Text(kTextWarning), MB_OK | MB_ICONASTERISK);
}
