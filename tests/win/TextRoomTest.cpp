// Every text of every language, measured in the control that shows it.

#include "app/AppWindows_win.h"
#include "app/CommandIds.h"
#include "app/FileDialogsIds.h"
#include "app/Frame_win.h"
#include "app/OptionsDlg.h"
#include "base/Format_win.h"
#include "tests/win/FrameHarness.h"
#include "tests/win/ProfileFiles.h"
#include "text/LanguageFile.h"
#include "text/Strings.h"
#include "tools/FusionDlgIds.h"
#include "tools/NoisePromptDlg.h"
#include "tools/ProgressPanelDlg.h"
#include "tools/SeriesDlgIds.h"
#include "tools/Settings.h"

#include <cwchar>

constexpr double kSpare = 0.90; // of the room: fonts differ between versions of Windows

static CBxSize<int> TextSize(HWND control, const std::wstring& text)
{
    const HDC dc = GetDC(control);
    const HGDIOBJ font = SelectObject(dc, HGDIOBJ(SendMessageW(control, WM_GETFONT, 0, 0)));
    RECT rect = {};
    DrawTextW(dc, text.c_str(), -1, &rect, DT_CALCRECT | DT_SINGLELINE);
    SelectObject(dc, font);
    ReleaseDC(control, dc);
    return {rect.right, rect.bottom};
}

// What a control needs beside its text: the box of a check box, the borders of a push button, the
// corners of a group, the arrow of a combo box.
static int Furniture(HWND control, const std::wstring& kind)
{
    if (kind == L"ComboBox")
        return GetSystemMetrics(SM_CXVSCROLL) + 8;
    if (kind != L"Button")
        return 0;
    const LONG_PTR type = GetWindowLongPtrW(control, GWL_STYLE) & BS_TYPEMASK;
    return type == BS_GROUPBOX || type == BS_AUTOCHECKBOX ? 20 : 12;
}

static void ExpectRoom(HWND control, const std::wstring& text, const std::wstring& kind)
{
    RECT client;
    GetClientRect(control, &client);
    const int room = int(client.right * kSpare) - Furniture(control, kind);
    const CBxSize<int> needed = TextSize(control, text);
    EXPECT_TRUE(needed.cx <= room && needed.cy <= client.bottom)
        << testing::PrintToString(text) << " needs " << needed.cx << " x " << needed.cy << " of "
        << room << " x " << client.bottom << " pixels in language " << g_languages.current;
}

static BOOL CALLBACK MeasureChild(HWND control, LPARAM count)
{
    wchar_t kind[32] = L"", item[1024] = L"";
    GetClassNameW(control, kind, 32);
    *reinterpret_cast<int*>(count) += !WindowText(control).empty();
    for (int i = int(SendMessageW(control, CB_GETCOUNT, 0, 0)); i-- > 0;)
    {
        SendMessageW(control, CB_GETLBTEXT, WPARAM(i), LPARAM(item));
        ExpectRoom(control, item, kind);
    }
    if (std::wstring(kind) != L"ComboBox")
        ExpectRoom(control, WindowText(control), kind);
    return TRUE;
}

// All that a dialog says; `texts` guards against one that did not open or says nothing.
static void Measure(HWND dialog, int texts)
{
    int count = 0;
    ASSERT_TRUE(dialog);
    EnumChildWindows(dialog, MeasureChild, LPARAM(&count));
    EXPECT_GE(count, texts);
    SendMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    Pump();
}

static void CALLBACK MeasurePrompt(HWND, UINT, UINT_PTR timer, DWORD)
{
    KillTimer(nullptr, timer);
    Measure(GetWindow(g_hwndDocker, GW_CHILD), 4);
}

// The titles of a fusion dialog are several.
static void MeasureTool(int command, int texts, std::initializer_list<TextId> titles = {})
{
    Command(command);
    for (const TextId title : titles)
        ExpectRoom(GetDlgItem(g_hwndActiveTool, IDC_FUSION_TITLE), Text(title), L"Button");
    Measure(g_hwndActiveTool, texts);
}

static void MeasureSaveRow()
{
    const HWND row =
        CreateDialogW(g_hInst, MAKEINTRESOURCEW(IDD_JPEG_QUALITY), g_hwndMain, nullptr);
    ExpectRoom(GetDlgItem(row, IDC_QUALITY_LABEL), Text(kTextJpegQuality), L"");
    DestroyWindow(row);
}

static void MeasureDialogs()
{
    MeasureTool(ID_SMART_CONTRAST, 10);
    MeasureTool(ID_TONE_MAPPING, 10);
    GiveSeries(std::vector<std::wstring>(3, FrameDocument().file));
    MeasureTool(ID_OPEN_EXPOSURE_FUSION, 5, {kTextMultiImage, kTextSingleImage});
    MeasureTool(ID_OPEN_POWER_FUSION, 4, {kTextDaylightUpItem, kTextDaylightDownItem});

    std::atomic<bool> aborted{false};
    const HWND panel = OpenProgressPanel(FrameHost(), SeriesKind::Single, &aborted);
    for (const TextId text : {kTextProgressFivePercent, kTextCancelling})
        ExpectRoom(GetDlgItem(panel, IDC_PROGRESS_TEXT), Text(text), L"");
    Measure(panel, 3);
    CloseProgressPanel(panel);

    SetTimer(nullptr, 0, 10, MeasurePrompt);
    unsigned level = 0;
    RunNoiseLevelPrompt(FrameHost(), &level);
    RunModal([] { ShowOptionsDialog(g_hwndMain); }, {[](HWND dialog) { Measure(dialog, 3); }});
    MeasureSaveRow();
}

class TextRoom : public FrameTest
{
};

// What stands in the status bar, also behind the number of a source.
static void MeasureStatusBar()
{
    for (const TextId text : {kTextUseArrowsOrF5, kTextPressF5, kTextDragHint, kTextCompareHint})
        ExpectRoom(g_hwndStatus, Text(text), L"");
    for (const TextId text : {kTextUseArrows, kTextUseArrowsOrF5})
        ExpectRoom(
            g_hwndStatus,
            VcFormatText(L"%s %i %s %i. %s", Text(kTextShowing), 10, Text(kTextOf), 10, Text(text)),
            L"");
}

TEST_F(TextRoom, IsEnoughInEveryLanguage)
{
    ASSERT_TRUE(CopyFileW(PLENOVIZ_TEXTS, LocalizationFilePath().c_str(), FALSE));
    OpenPicture("photo.png", 60, 40);
    LoadSettings(&FrameSettings());
    ASSERT_GT(g_languages.count, 1);
    for (int language = 0; language < g_languages.count; ++language)
    {
        (void)ChooseLanguage(LocalizationFile(), &g_languages, language);
        LoadLocalizedStrings();
        MeasureStatusBar();
        MeasureDialogs();
    }
}
