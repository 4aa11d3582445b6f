// The fusion dialogs and the series that lead to them, in the real frame.

#include "pipeline/FusionJob.h"
#include "series/DaylightSeries.h"
#include "series/ExposureSeries.h"
#include "tests/win/FrameHarness.h"
#include "tests/win/ProfileFiles.h"
#include "tools/FusionDlgIds.h"
#include "tools/Messages.h"
#include "tools/SeriesDlgIds.h"
#include "tools/SeriesFolder_win.h"

#include <commctrl.h>
#include <psapi.h>

#include <chrono>

constexpr int kWidth = 160, kHeight = 120;
const char* const kToolRunning = "000000001"; // every command off, the zoom box on
const char* const kAllOn = "111111111";

// Handles messages until the condition holds; fails after a minute.
static void PumpUntil(const std::function<bool()>& done)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!done() && std::chrono::steady_clock::now() < end)
    {
        Pump();
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
    }
    EXPECT_TRUE(done());
}

static HWND DockedDialogWith(int control)
{
    for (HWND child = GetWindow(g_hwndDocker, GW_CHILD); child;
         child = GetWindow(child, GW_HWNDNEXT))
        if (GetDlgItem(child, control))
            return child;
    return nullptr;
}

static std::wstring SliderText()
{
    return WindowText(GetDlgItem(g_hwndActiveTool, IDC_FUSION_VALUE));
}

static void Scroll(int code, int thumb = 0)
{
    const HWND slider = GetDlgItem(g_hwndActiveTool, IDC_FUSION_SLIDER);
    SendMessageW(g_hwndActiveTool, WM_HSCROLL, WPARAM(MAKELONG(code, thumb)), LPARAM(slider));
}

static void Press(int button)
{
    SendMessageW(g_hwndActiveTool, WM_COMMAND, WPARAM(button), 0);
    Pump();
}

static bool SamePixels(const SBxPicBuf& a, const SBxPicBuf& b)
{
    return HashOf(a) == HashOf(b);
}

class FusionDialogs : public FrameTest
{
protected:
    // A series that somebody has put into the table, and its dialog.
    void OpenSeries(int count, int command, int width = kWidth)
    {
        OpenPicture("photo.png", width, kHeight);
        std::vector<std::wstring> files;
        for (int i = 0; i < count; ++i)
        {
            const std::string name = "source" + std::to_string(i) + ".tif";
            Save(ScenePicture(width, kHeight, 3, 8, i - count / 2), folder.File(name));
            files.push_back(Wide(name));
        }
        GiveSeries(files);
        Command(command);
        ASSERT_TRUE(g_hwndActiveTool);
        EXPECT_EQ(Enabled(), kToolRunning);
    }

    TestPicture Fused(int sources, unsigned mid) const
    {
        FusionSources series;
        std::vector<std::string> paths;
        for (int i = 0; i < sources; ++i)
            paths.push_back(folder.File("source" + std::to_string(i) + ".tif"));
        OpenFusionSources(&series, paths, FrameDocument().source, int64_t(1) << 30);
        TestPicture result(kWidth, kHeight, 3, 8);
        EXPECT_EQ(FuseWhole(result.Record(), &series, {{}, sources, mid}), Outcome::Done);
        return result;
    }

    void ExpectClosed(bool unsaved) const
    {
        EXPECT_FALSE(g_hwndActiveTool);
        EXPECT_EQ(Enabled(), kAllOn);
        EXPECT_EQ(FrameDocument().unsaved, unsaved);
        EXPECT_EQ(FrameDocument().phase, DocumentPhase::Idle);
        EXPECT_FALSE(GetWindow(g_hwndDocker, GW_CHILD));
    }
};

TEST_F(FusionDialogs, AnUnchangedPreviewIsNotComputedAgain)
{
    const int width = 1600; // more than is in view
    OpenSeries(4, ID_OPEN_POWER_FUSION, width);
    const TestPicture marked = FlatPicture(width, kHeight, 8, {1, 2, 3});
    CBxPicBufAPI::Copy(FrameDocument().preview.Record(), marked);
    SendMessageW(g_hwndActiveTool, WM_LBUTTONUP, 0, 0); // a click on the dialog
    Scroll(TB_THUMBPOSITION, 15);
    Scroll(TB_THUMBPOSITION, 16); // there are only four sources
    ExpectSamePicture(FrameDocument().preview, marked);

    Mouse(WM_LBUTTONDOWN, 300, 300);
    Mouse(WM_MOUSEMOVE, 310, 300, MK_LBUTTON);
    Pump();
    ExpectSamePicture(FrameDocument().preview, marked); // not while the picture is moving
    Mouse(WM_LBUTTONUP, 310, 300);
    Pump();
    EXPECT_FALSE(SamePixels(FrameDocument().preview, marked));
    CBxPicBufAPI::Copy(FrameDocument().preview.Record(), marked);
    Scroll(TB_THUMBPOSITION, 3);
    EXPECT_FALSE(SamePixels(FrameDocument().preview, marked));
    CBxPicBufAPI::Copy(FrameDocument().preview.Record(), marked);
    Command(ID_ZOOM_IN);
    Pump();
    EXPECT_FALSE(SamePixels(FrameDocument().preview, marked));
}

TEST_F(FusionDialogs, CancelBringsTheSourceBackAndWritesNothing)
{
    for (const int command : {ID_OPEN_POWER_FUSION, ID_OPEN_EXPOSURE_FUSION})
    {
        OpenSeries(5, command);
        Scroll(TB_PAGEDOWN);
        Scroll(TB_THUMBTRACK, 60);
        EXPECT_FALSE(SamePixels(FrameDocument().preview, FrameDocument().source));
        Press(IDCANCEL);
        ExpectClosed(false);
        ExpectSamePicture(FrameDocument().result, FrameDocument().source);
        EXPECT_EQ(FileBytes(SettingsFilePath()).find("Exposure"), std::string::npos);
    }
}

TEST_F(FusionDialogs, ExposureIsTheGreyOfAllSources)
{
    WritePrivateProfileStringW(L"General", L"Exposure", L"200", SettingsFilePath().c_str());
    OpenSeries(6, ID_OPEN_EXPOSURE_FUSION);
    EXPECT_EQ(SliderText(), L"160");
    ExpectSamePicture(FrameDocument().preview, Fused(6, 160), 1);
    Press(IDC_FUSION_DEFAULT);
    EXPECT_EQ(SliderText(), L"100");
    Scroll(TB_THUMBTRACK, 128);
    SendMessageW(g_hwndActiveTool, WM_CLOSE, 0, 0); // any close but Cancel counts as OK
    Pump();
    ExpectClosed(true);
    ExpectSamePicture(FrameDocument().result, Fused(6, 128));
    const std::string settings = FileBytes(SettingsFilePath());
    EXPECT_NE(settings.find("Exposure=128"), std::string::npos) << settings;
    EXPECT_NE(settings.find("Sharp Strength=5\r\nSat Strength=5\r\nExp Strength=5"),
              std::string::npos)
        << settings;
}

TEST_F(FusionDialogs, PagingShowsASourceUntilTheSliderMoves)
{
    FrameDocument().series.chosenByUser = false;
    OpenSeries(3, ID_OPEN_EXPOSURE_FUSION);
    SendMessageW(g_hwndActiveTool, ID_SOURCE_NEXT, 0, 0);
    EXPECT_EQ(FrameDocument().series.shown,
              0); // a series that the program has made is not looked through
    FrameDocument().series.chosenByUser = true;
    SendMessageW(g_hwndActiveTool, ID_SOURCE_PREV, 0, 0);
    EXPECT_EQ(FrameDocument().series.shown, 2);
    EXPECT_TRUE(FrameDocument().showsSource);
    SendMessageW(g_hwndActiveTool, ID_SOURCE_NEXT, 0, 0);
    EXPECT_EQ(FrameDocument().series.shown, 0);
    Scroll(TB_PAGEDOWN);
    EXPECT_FALSE(FrameDocument().showsSource);
    Press(IDCANCEL);
}

TEST_F(FusionDialogs, NameAFileThatCannotBeReadOnce)
{
    OpenPicture("photo.png", kWidth, kHeight);
    const std::wstring photo = Wide("photo.png"), missing = Wide("missing.tif");
    GiveSeries({photo, missing, photo});
    RunModal([] { Command(ID_OPEN_EXPOSURE_FUSION); },
             {[](HWND box)
              {
                  const std::wstring text = MessageBoxText(box);
                  EXPECT_EQ(text.find(Text(kTextCannotOpenFile)), 0u);
                  EXPECT_NE(text.find(L"missing.tif"), std::wstring::npos);
                  PressButton(box, IDOK);
              }});
    EXPECT_FALSE(SamePixels(FrameDocument().preview, FrameDocument().source));
    RunModal([] { Scroll(TB_PAGEDOWN); }, {}); // says nothing any more
    Press(IDOK);
    ExpectClosed(true);

    GiveSeries({missing, missing, missing}); // no source at all: no dialog either
    RunModal([] { Command(ID_OPEN_POWER_FUSION); }, {[](HWND box) { PressButton(box, IDOK); }});
    ExpectClosed(false);
    ExpectSamePicture(FrameDocument().result, FrameDocument().source);
}

// How far the numbers of kernel handles, drawing objects and menus and windows have got (counting
// them is not possible everywhere), and memory in megabytes.
static std::vector<int64_t> InUse()
{
    constexpr int kProbes = 300; // more than there are free numbers in between
    HANDLE events[kProbes];
    HGDIOBJ brushes[kProbes];
    HMENU menus[kProbes];
    std::vector<int64_t> highest(3);
    for (int i = 0; i < kProbes; ++i)
    {
        events[i] = CreateEventW(nullptr, FALSE, FALSE, nullptr);
        brushes[i] = CreateSolidBrush(COLORREF(i));
        menus[i] = CreateMenu();
        highest[0] = std::max(highest[0], int64_t(intptr_t(events[i])) / 4);
        highest[1] = std::max(highest[1], int64_t(intptr_t(brushes[i]) & 0xFFFF));
        highest[2] = std::max(highest[2], int64_t(intptr_t(menus[i]) & 0xFFFF));
    }
    for (int i = 0; i < kProbes; ++i)
    {
        CloseHandle(events[i]);
        DeleteObject(brushes[i]);
        DestroyMenu(menus[i]);
    }
    PROCESS_MEMORY_COUNTERS memory = {};
    GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
    highest.push_back(int64_t(memory.PagefileUsage >> 20));
    return highest;
}

TEST_F(FusionDialogs, OpenedFiftyTimesLeaveNothingBehind)
{
    for (const int command : {ID_OPEN_POWER_FUSION, ID_OPEN_EXPOSURE_FUSION})
    {
        OpenSeries(3, command);
        Press(IDCANCEL);
        const std::vector<int64_t> before = InUse();
        for (int i = 0; i < 50; ++i)
        {
            Command(command);
            Scroll(TB_PAGEDOWN);
            Press(IDCANCEL);
        }
        const std::vector<int64_t> after = InUse();
        for (size_t i = 0; i < before.size(); ++i)
            EXPECT_LE(after[i], before[i] + 20) << i << " of " << command;
    }
}

TEST_F(FusionDialogs, SeriesFolderIsEmptiedOfFilesOnly)
{
    std::wstring series;
    ASSERT_EQ(PrepareSeriesFolder(&series), Outcome::Done);
    const std::wstring file = series + L"file_000.tif", inner = series + L"inner";
    CloseHandle(CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                            FILE_ATTRIBUTE_READONLY, nullptr));
    CreateDirectoryW(inner.c_str(), nullptr);
    ASSERT_EQ(PrepareSeriesFolder(&series), Outcome::Done);
    EXPECT_EQ(GetFileAttributesW(file.c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_TRUE(RemoveDirectoryW(inner.c_str()));
}

TEST_F(FusionDialogs, SeriesFolderOfAnotherInstanceIsLeftAlone)
{
    std::wstring mine, next;
    ASSERT_EQ(PrepareSeriesFolder(&mine), Outcome::Done);
    const std::wstring lock = mine.substr(0, mine.size() - 1) + L".lock";
    const auto open = [&lock](DWORD how)
    { return CreateFileW(lock.c_str(), GENERIC_READ, 0, nullptr, how, 0, nullptr); };
    EXPECT_EQ(open(OPEN_EXISTING), INVALID_HANDLE_VALUE); // taken, as others find it
    ForgetSeriesFolder();
    const HANDLE other = open(CREATE_ALWAYS);
    ASSERT_EQ(PrepareSeriesFolder(&next), Outcome::Done);
    EXPECT_EQ(next, mine.substr(0, mine.size() - 1) + L"2/");
    CloseHandle(other);
    ForgetSeriesFolder();
    DeleteFileW(lock.c_str());
    ASSERT_EQ(PrepareSeriesFolder(&next), Outcome::Done);
    EXPECT_EQ(next, mine);
}

// Presses a button of the noise prompt, whose loop runs inside the command.
static int g_promptButton;
static void CALLBACK PressInPrompt(HWND, UINT, UINT_PTR timer, DWORD)
{
    const HWND prompt = DockedDialogWith(IDC_NOISE_LEVEL);
    if (!prompt)
        return;
    KillTimer(nullptr, timer);
    EXPECT_EQ(Enabled(), kToolRunning);
    SendDlgItemMessageW(prompt, IDC_NOISE_LEVEL, CB_SETCURSEL, 0, 0);
    SendMessageW(prompt, WM_COMMAND, WPARAM(g_promptButton), 0);
}

TEST_F(FusionDialogs, NoisePromptDecidesWhetherTheSeriesIsMade)
{
    OpenPicture("photo.png", kWidth, kHeight);
    g_promptButton = IDCANCEL;
    SetTimer(nullptr, 0, 10, PressInPrompt);
    Command(ID_SINGLE_LIGHT);
    ExpectClosed(false);
    EXPECT_EQ(FileBytes(SettingsFilePath()).find("Denoise"), std::string::npos);

    g_promptButton = IDOK;
    SetTimer(nullptr, 0, 10, PressInPrompt);
    Command(ID_SINGLE_LIGHT);
    EXPECT_NE(FileBytes(SettingsFilePath()).find("Denoise Strength=0"), std::string::npos);
    PumpUntil([] { return g_hwndActiveTool != nullptr; });
    EXPECT_EQ(FrameDocument().series.files.size(), size_t(kExposures));
    EXPECT_EQ(FrameDocument().series.shown, 0);
    Press(IDCANCEL);
    ExpectClosed(false);

    Command(ID_DAYLIGHT_DOWN); // with its first preview before the worker ends
    PumpUntil([] { return g_hwndActiveTool != nullptr; });
    EXPECT_EQ(FrameDocument().series.files.size(), size_t(kDaylightVariants));
    EXPECT_FALSE(SamePixels(FrameDocument().preview, FrameDocument().source));
    Press(IDCANCEL);
    ExpectClosed(false);
}
