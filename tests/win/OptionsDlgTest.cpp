#include "app/OptionsDlg.h"

#include "app/Frame_win.h"
#include "app/OptionsIds.h"
#include "tests/win/ModalScript.h"
#include "tests/win/ProfileFiles.h"
#include "text/LanguageFile.h"
#include "text/Strings.h"
#include "tools/Settings.h"

#include <gtest/gtest.h>

class OptionsDialog : public testing::Test
{
protected:
    HWND owner = nullptr;

    void SetUp() override
    {
        UseFreshProfileFiles();
        owner = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 101, 50, 901, 700,
                                nullptr, nullptr, nullptr, nullptr);
        ASSERT_TRUE(owner);
    }
    void TearDown() override
    {
        DestroyWindow(owner);
        UseFreshProfileFiles();
    }

    // As at the start of the program: two languages, English in use.
    void StartWithTwoLanguages()
    {
        WriteLocalization(L"[General]\r\nLanguages No=2\r\nLanguage Current=0\r\n"
                          L"[0]\r\nLanguage=English\r\nstring44=Choices\r\n[1]\r\n"
                          L"Language=Język polski\r\nstring38=Raport\r\nstring47=Od nowa\r\n"
                          L"string45=Tak\r\n");
        Start();
    }
    void Start()
    {
        g_languages = {};
        LoadSettings(&FrameSettings());
        LoadLocalizedStrings();
    }
    void Show(const std::vector<std::function<void(HWND)>>& steps)
    {
        RunModal([this] { ShowOptionsDialog(owner); }, steps);
    }
    static int StoredLanguage()
    {
        return ReadNumber(LocalizationFile(), L"General", L"Language Current", 1000);
    }
};

static HWND Languages(HWND dlg)
{
    return GetDlgItem(dlg, IDC_OPTIONS_LANGUAGE);
}

static void ChooseAndPressOk(HWND dlg, int language)
{
    SendMessageW(Languages(dlg), CB_SETCURSEL, WPARAM(language), 0);
    PressButton(dlg, IDOK);
}

TEST_F(OptionsDialog, ShowsTheLanguagesInTheMiddleOfTheFrame)
{
    StartWithTwoLanguages();
    Show({[](HWND dlg)
          {
              EXPECT_EQ(WindowText(dlg), L"Choices");
              EXPECT_EQ(WindowText(GetDlgItem(dlg, IDC_OPTIONS_LABEL)), L"Select Language:");
              EXPECT_EQ(WindowText(GetDlgItem(dlg, IDOK)), L"OK");
              EXPECT_EQ(WindowText(GetDlgItem(dlg, IDCANCEL)), L"Cancel");
              ASSERT_EQ(SendMessageW(Languages(dlg), CB_GETCOUNT, 0, 0), 2);
              EXPECT_EQ(SendMessageW(Languages(dlg), CB_GETCURSEL, 0, 0), 0);
              wchar_t name[64];
              SendMessageW(Languages(dlg), CB_GETLBTEXT, 1, LPARAM(name));
              EXPECT_STREQ(name, L"Język polski");
              RECT place;
              GetWindowRect(dlg, &place);
              EXPECT_EQ(place.left, 101 + (901 - (place.right - place.left)) / 2);
              EXPECT_EQ(place.top, 50 + (700 - (place.bottom - place.top)) / 2);
              PressButton(dlg, IDCANCEL);
          }});
    EXPECT_EQ(StoredLanguage(), 0);
}

// What is said of a choice that is kept is part of language_run.sh.
TEST_F(OptionsDialog, PromisesNothingThatItDoesNotKeep)
{
    StartWithTwoLanguages();
    Show({[](HWND dlg) { ChooseAndPressOk(dlg, 0); }}); // no change, nothing to say
    {
        HeldLocalization held; // a choice that cannot be kept promises nothing
        Show({[](HWND dlg) { ChooseAndPressOk(dlg, 1); },
              [](HWND box)
              {
                  EXPECT_EQ(WindowText(box), L"Warning");
                  EXPECT_EQ(MessageBoxText(box).find(L"The settings cannot be saved.\n" +
                                                     ProgramFolder() + L"/Plenoviz_loc.ini\n"),
                            0u);
                  PressButton(box, IDOK);
              }});
        EXPECT_EQ(StoredLanguage(), 0);
        EXPECT_EQ(g_languages.current, 0);
    }
}

TEST_F(OptionsDialog, StoresNoLanguageFromAnEmptyList)
{
    Start();
    Show({[](HWND dlg)
          {
              EXPECT_EQ(SendMessageW(Languages(dlg), CB_GETCOUNT, 0, 0), 0);
              PressButton(dlg, IDOK);
          },
          [](HWND box) { PressButton(box, IDOK); }});
    EXPECT_EQ(StoredLanguage(), -1);
    Start();
    EXPECT_EQ(g_languages.current, -1);
    EXPECT_STREQ(Text(kTextFileMenu), L"File");

    // The settings are loaded again before the dialog opens, even when it is cancelled.
    (void)SaveSettingsOnExit(&FrameSettings());
    FrameSettings().toneMap.contrast = 33;
    Show({[](HWND dlg) { PressButton(dlg, IDCANCEL); }});
    EXPECT_EQ(FrameSettings().toneMap.contrast, 10);
    EXPECT_EQ(ReadNumber(UserSettingsFile(), L"General", L"Crashed Last Time", 0), 1);
}
