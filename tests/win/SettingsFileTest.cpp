#include "app/Frame_win.h"
#include "base/Format_win.h"
#include "base/Win.h"
#include "files/ImageFile.h"
#include "tests/win/ProfileFiles.h"
#include "text/LanguageFile.h"
#include "text/Strings.h"
#include "tools/Settings.h"

#include <gtest/gtest.h>

TEST(WideFormat, TellsWideFromNarrowText)
{
    wchar_t text[32];
    EXPECT_TRUE(VcFormat(text, 32, L"%s\\%S: %i %.1f %%", L"日本", "abc", -7, 119.96));
    EXPECT_STREQ(text, L"日本\\abc: -7 120.0 %");
}

TEST(WideFormat, EndsCutText)
{
    for (size_t capacity : {1, 4, 5, 6})
    {
        wchar_t text[8] = L"#######";
        EXPECT_EQ(VcFormat(text, capacity, L"%s", L"abcde"), capacity == 6);
        EXPECT_EQ(text, std::wstring(L"abcde").substr(0, capacity - 1));
        EXPECT_EQ(text[7], L'\0');
        EXPECT_EQ(text[6], L'#'); // nothing behind the end
    }
    const std::wstring path(5000, L'p');
    EXPECT_EQ(VcFormatText(L"%s/%i", path.c_str(), 3), path + L"/3");
    EXPECT_EQ(VcFormatText(L""), L"");
}

class RealProfileFiles : public testing::Test
{
protected:
    void SetUp() override
    {
        UseFreshProfileFiles();
        FrameSettings() = {};
        g_languages = {};
    }
    void TearDown() override { UseFreshProfileFiles(); }
};

TEST_F(RealProfileFiles, HoldTheSettingsOfARunInOrder)
{
    LoadSettings(&FrameSettings());
    EXPECT_EQ(FileBytes(SettingsFilePath()), "[General]\r\nCrashed Last Time=1\r\n");
    EXPECT_EQ(g_jpegQuality, 90);
    ReadSettings(SettingGroup::PowerTool, &FrameSettings());
    FrameSettings().powerTool.power = 22;
    EXPECT_EQ(WriteSettings(SettingGroup::PowerTool, &FrameSettings()), Outcome::Done);
    (void)SaveSettingsOnExit(&FrameSettings());
    // "power" finds the key that the tool has written as "Power": there is only one.
    EXPECT_EQ(FileBytes(SettingsFilePath()),
              "[General]\r\nCrashed Last Time=0\r\nExposure=128\r\nFlatness=3\r\nPower=22\r\n"
              "method=0\r\nnoise=1\r\nuiPowerT1=10\r\nuiPowerT2=10\r\nuiPowerT3=10\r\n"
              "uiPowerT4=10\r\nuiUseColors=10\r\n");
    UseFreshProfileFiles(); // takes the folder away
    EXPECT_EQ(WriteSettings(SettingGroup::NoisePrompt, &FrameSettings()), Outcome::Done);
    EXPECT_EQ(FileBytes(SettingsFilePath()), "[General]\r\nDenoise Strength=0\r\n");
}

TEST_F(RealProfileFiles, StayAsTheyWereWhenTheyCannotBeWritten)
{
    LoadSettings(&FrameSettings());
    const std::string before = FileBytes(SettingsFilePath());
    FrameSettings().denoiseStrength = 3;
    {
        const HANDLE held = CreateFileW(SettingsFilePath().c_str(), GENERIC_READ, FILE_SHARE_READ,
                                        nullptr, OPEN_EXISTING, 0, nullptr);
        EXPECT_EQ(WriteSettings(SettingGroup::NoisePrompt, &FrameSettings()), Outcome::Failed);
        EXPECT_EQ(SaveSettingsOnExit(&FrameSettings()), Outcome::Failed);
        CloseHandle(held);
    }
    EXPECT_EQ(LastProfileFailure().path, SettingsFilePath());
    EXPECT_EQ(FileBytes(SettingsFilePath()), before);
    EXPECT_EQ(FileBytes(SettingsFilePath() + L".new"), "") << "left behind";
    SetFileAttributesW(SettingsFilePath().c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(WriteSettings(SettingGroup::NoisePrompt, &FrameSettings()), Outcome::Failed);
    EXPECT_EQ(LastProfileFailure().error, DWORD(ERROR_ACCESS_DENIED));
    SetFileAttributesW(SettingsFilePath().c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(WriteSettings(SettingGroup::NoisePrompt, &FrameSettings()), Outcome::Done);
    EXPECT_EQ(FileBytes(SettingsFilePath()), before + "Denoise Strength=3\r\n");
}

TEST_F(RealProfileFiles, GiveTextsWithAllTheirBlanksAndLetters)
{
    LoadLocalizedStrings();
    EXPECT_STREQ(Text(kTextProgress), L"Progress: ");
    EXPECT_STREQ(Text(kTextLevelsOfDetail), L" Levels of details");
    EXPECT_STREQ(g_strings[17], L"");

    WriteLocalization(L"[General]\r\nLanguages No=2\r\nLanguage Current=1\r\n"
                      L"[0]\r\nLanguage=English\r\n[1]\r\nLanguage=日本語\r\nAcronym=ja\r\n"
                      L"string3=Zażółć gęślą\r\nSTRING14=\"進捗: \"\r\nstring5=\r\n"
                      L"string6=" +
                      std::wstring(1100, L'm') + L"\r\n");
    LoadSettings(&FrameSettings());
    LoadLocalizedStrings();
    EXPECT_STREQ(Text(kTextWarning), L"Zażółć gęślą");
    EXPECT_STREQ(Text(kTextProgress), L"進捗: ");
    EXPECT_STREQ(Text(kTextVexaMenu), L"");
    EXPECT_EQ(std::wstring(Text(kTextHelpMenu)), std::wstring(1023, L'm'));
    EXPECT_STREQ(Text(kTextFileMenu), L"File");
    ASSERT_EQ(g_languages.languages.size(), 2u);
    EXPECT_EQ(g_languages.languages[1].name, L"日本語");
    EXPECT_EQ(g_languages.languages[1].acronym, L"ja");
    EXPECT_EQ(ChooseLanguage(LocalizationFile(), &g_languages, 0), Outcome::Done);
    EXPECT_EQ(FileBytes(LocalizationFilePath()).substr(0, 2), "\xff\xfe") << "still UTF-16";
}

TEST_F(RealProfileFiles, OfTheProgramHoldEveryTextInEveryLanguage)
{
    ASSERT_TRUE(CopyFileW(PLENOVIZ_TEXTS, LocalizationFilePath().c_str(), FALSE));
    const ProfileStore file = LocalizationFile();
    LanguageList list;
    LoadLanguageChoice(file, &list);
    LoadLanguageNames(file, &list);
    ASSERT_GT(list.count, 1);
    EXPECT_EQ(list.languages[0].name, L"English");
    std::wstring text;
    EXPECT_FALSE(file.read(std::to_wstring(list.count), L"Language", &text)) << "one not counted";
    for (int language = 0; language < list.count; ++language)
    {
        EXPECT_NE(list.languages[size_t(language)].name, L"") << language;
        for (int number = 1; number <= kStringCount; ++number)
        {
            const bool found =
                file.read(std::to_wstring(language), L"string" + std::to_wstring(number), &text);
            EXPECT_EQ(found, number == kTextNothing || *EnglishText(number) != L'\0')
                << language << ", " << number;
            EXPECT_TRUE(!found || language != 0 || text == EnglishText(number)) << number;
        }
    }
}
