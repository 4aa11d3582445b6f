#include "app/Strings.h"

#include "app/LanguageFile.h"

void LoadLocalizedStrings()
{
    LoadStrings(LocalizationFile(), g_languages.current);
}
