#include "text/LanguageFile.h"

#include <algorithm>

LanguageList g_languages;

constexpr size_t kNameChars = 1023;
constexpr size_t kAcronymChars = 15;

static const wchar_t kCountKey[] = L"Languages No";
static const wchar_t kCurrentKey[] = L"Language Current";

std::wstring LanguageSection(int language)
{
    return std::to_wstring(language);
}

void LoadLanguageChoice(const ProfileStore& store, LanguageList* list)
{
    const int count = ReadNumber(store, kGeneralSection, kCountKey, 0);
    list->count = std::clamp(count, 0, kMaxLanguages);
    list->current = ReadNumber(store, kGeneralSection, kCurrentKey, 0);
}

void LoadLanguageNames(const ProfileStore& store, LanguageList* list)
{
    list->languages.clear();
    for (int i = 0; i < list->count; ++i)
    {
        const std::wstring section = LanguageSection(i);
        list->languages.push_back(
            {ReadText(store, section, L"Language", L"").substr(0, kNameChars),
             ReadText(store, section, L"Acronym", L"").substr(0, kAcronymChars)});
    }
}

Outcome ChooseLanguage(const ProfileStore& store, LanguageList* list, int language)
{
    list->current = language;
    const Outcome written = WriteNumber(store, kGeneralSection, kCurrentKey, language);
    std::wstring stored;
    const bool found = written == Outcome::Done &&
                       store.read(kGeneralSection, kCurrentKey, &stored) &&
                       stored == std::to_wstring(language);
    return FailedIf(!found);
}
