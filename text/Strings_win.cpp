#include "text/Strings.h"

#include "text/LanguageFile.h"

void LoadLocalizedStrings()
{
    LoadStrings(LocalizationFile(), g_languages.current);
}
