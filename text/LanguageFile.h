#pragma once

#include "base/Outcome.h"
#include "text/ProfileStore.h"

#include <string>
#include <vector>

// The languages of the localization file. Each has a section named after its index. Which one is
// in use is kept in the same file, not in the user's settings.

constexpr int kMaxLanguages = 100;

struct Language
{
    std::wstring name;    // what the Options dialog shows
    std::wstring acronym; // read, used nowhere yet
};

struct LanguageList
{
    int count = 0;
    int current = 0; // index; -1 after OK in an empty list: no such section, so texts stay English
    std::vector<Language> languages;
};

extern LanguageList g_languages;

std::wstring LanguageSection(int language);

void LoadLanguageChoice(const ProfileStore& store, LanguageList* list); // count and current
void LoadLanguageNames(const ProfileStore& store, LanguageList* list);  // `count` of them

// Makes a language the one in use and stores the choice. Fails when the choice is not in the
// file afterwards: a folder without write permission loses it, sometimes without an error.
Outcome ChooseLanguage(const ProfileStore& store, LanguageList* list, int language);
