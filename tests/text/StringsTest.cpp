#include "text/Strings.h"

#include "tests/support/MemoryProfile.h"
#include "text/LanguageFile.h"

#include <gtest/gtest.h>

TEST(Strings, AreEnglishWithoutAFile)
{
    MemoryProfile file;
    LoadStrings(file.Store(), 0);
    const struct
    {
        int number;
        const wchar_t* text;
    } cases[] = {{1, L"Preparing images ..."}, {14, L"Progress: "},        {17, L""}, {76, L""},
                 {102, L" Levels of details"}, {113, L"Use Extra Colors"}, {114, L""}};
    for (const auto& c : cases)
        EXPECT_STREQ(g_strings[c.number], c.text) << c.number;
    for (int number = 1; number <= kStringCount; ++number)
        EXPECT_STREQ(g_strings[number], EnglishText(number)) << number;
    EXPECT_STRNE(g_strings[kStringCount], L"") << "there is no number behind the last text";
}

TEST(Strings, ComeFromTheSectionOfTheLanguage)
{
    MemoryProfile file;
    file.Set(L"0", L"string4", L"File of 0");
    file.Set(L"1", L"string4", L"Plik");
    file.Set(L"1", L"string5", L"");
    file.Set(L"1", L"string114", std::wstring(1100, L'x'));
    LoadStrings(file.Store(), 1);
    EXPECT_STREQ(g_strings[4], L"Plik");
    EXPECT_STREQ(g_strings[5], L""); // an empty text is a text
    EXPECT_STREQ(g_strings[6], L"Help");
    EXPECT_EQ(std::wstring(g_strings[114]).size(), 1023u);
    LoadStrings(file.Store(), -1);
    EXPECT_STREQ(g_strings[4], L"File");
    EXPECT_STREQ(g_strings[114], L"");

    ReloadString(file.Store(), 1, 4);
    EXPECT_STREQ(g_strings[4], L"Plik");
    EXPECT_STREQ(g_strings[5], L"Create Vexa");
}

TEST(Languages, AreCountedUpToAHundredAndHaveNamesAndShortAcronyms)
{
    for (const auto& [stored, count] :
         {std::pair(L"0", 0), {L"2", 2}, {L"250", 100}, {L"-3", 0}, {L"many", 0}})
    {
        MemoryProfile file;
        file.Set(L"General", L"Languages No", stored);
        file.Set(L"General", L"Language Current", L"1");
        file.Set(L"1", L"Language", L"日本語");
        file.Set(L"1", L"Acronym", L"abcdefghijklmnopqrst");
        LanguageList list;
        list.languages.resize(5); // of an earlier reading
        LoadLanguageChoice(file.Store(), &list);
        LoadLanguageNames(file.Store(), &list);
        EXPECT_EQ(list.count, count) << stored;
        EXPECT_EQ(list.current, 1);
        ASSERT_EQ(int(list.languages.size()), count) << stored;
        if (count == 0)
            continue;
        EXPECT_EQ(list.languages[0].acronym, L"");
        EXPECT_EQ(list.languages[1].name, L"日本語");
        EXPECT_EQ(list.languages[1].acronym, L"abcdefghijklmno");
    }
}

TEST(ChosenLanguage, IsTakenForStoredOnlyWhenItIs)
{
    MemoryProfile file;
    LanguageList list;
    EXPECT_EQ(ChooseLanguage(file.Store(), &list, 3), Outcome::Done);
    EXPECT_EQ(file.written, std::vector<std::wstring>{L"Language Current=3"});
    EXPECT_EQ(ChooseLanguage(file.Store(), &list, -1), Outcome::Done);
    LoadLanguageChoice(file.Store(), &list);
    EXPECT_EQ(list.current, -1);

    file.refuseWrites = true;
    EXPECT_EQ(ChooseLanguage(file.Store(), &list, 1), Outcome::Failed);
    file.refuseWrites = false;
    file.loseWrites = true;
    EXPECT_EQ(ChooseLanguage(file.Store(), &list, 1), Outcome::Failed);
    EXPECT_EQ(ChooseLanguage(file.Store(), &list, -1), Outcome::Done); // it was there before
}
