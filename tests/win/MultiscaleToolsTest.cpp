// The dialogs of Smart Contrast and Tone Mapping in the real frame: states, ways out, what they
// keep. Sliders and results are those of a person in tools_run.sh.

#include "app/Frame_win.h"
#include "contrast/LevelsOfDetail.h"
#include "tests/win/FrameHarness.h"
#include "text/ProfileStore.h"
#include "tools/Messages.h"
#include "tools/MultiscaleDlgIds.h"
#include "tools/Settings.h"
#include "tools/SmartContrastModel.h"

#include <commctrl.h>

#include <utility>

static const char kAllOn[] = "111111111", kToolOpen[] = "000000001";

class Tools : public FrameTest
{
protected:
    static HWND Control(int id) { return GetDlgItem(g_hwndActiveTool, id); }

    static void Press(int id) { SendMessageW(g_hwndActiveTool, WM_COMMAND, WPARAM(id), 0); }

    static void Scroll(int slider, int code, int thumb = 0)
    {
        SendMessageW(g_hwndActiveTool, WM_HSCROLL, MAKEWPARAM(code, thumb),
                     reinterpret_cast<LPARAM>(Control(slider)));
    }

    static void Check(int box, bool on)
    {
        CheckDlgButton(g_hwndActiveTool, box, on ? BST_CHECKED : BST_UNCHECKED);
        Press(box);
    }

    // Handles messages until that is so; false when it never was.
    static bool WaitUntil(const std::function<bool()>& reached)
    {
        const ULONGLONG deadline = GetTickCount64() + 60000;
        while (!reached() && GetTickCount64() < deadline)
        {
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 1000, QS_ALLINPUT);
            Pump();
        }
        return reached();
    }

    static bool RunStarted()
    {
        return SendMessageW(Control(IDC_TONE_PROGRESS), PBM_GETPOS, 0, 0) > 3;
    }

    static void ExpectGivenUp()
    {
        EXPECT_FALSE(g_hwndActiveTool);
        EXPECT_EQ(Enabled(), kAllOn);
        EXPECT_FALSE(FrameDocument().unsaved);
        EXPECT_EQ(FrameDocument().phase, DocumentPhase::Idle);
        EXPECT_EQ(g_view.previewRect, nullptr);
        ExpectSamePicture(FrameDocument().preview, FrameDocument().source);
        ExpectSamePicture(FrameDocument().result, FrameDocument().source);
    }
};

TEST_F(Tools, NeedAPictureOf8Or16Bits)
{
    for (const int id : {ID_SMART_CONTRAST, ID_TONE_MAPPING})
    {
        Command(id);
        EXPECT_FALSE(g_hwndActiveTool) << id;
    }
}

TEST_F(Tools, SmartContrastShowsEachMoveAndKeepsItsNumbers)
{
    OpenPicture("photo.tif", 160, 120, 1, 16);
    Command(ID_SMART_CONTRAST);
    ASSERT_TRUE(g_hwndActiveTool);
    EXPECT_EQ(Enabled(), kToolOpen);
    EXPECT_EQ(FrameDocument().phase, DocumentPhase::ToolOpen);
    EXPECT_FALSE(FrameDocument().showsSource);
    Scroll(IDC_LEVEL_SLIDER + 1, TB_THUMBPOSITION, 22);
    const uint64_t before = HashOf(FrameDocument().preview);
    // A drag shows nothing, but counts even if it was never let go.
    Scroll(IDC_LEVEL_SLIDER + 3, TB_THUMBTRACK, 4);
    EXPECT_EQ(WindowText(Control(IDC_LEVEL_VALUE + 3)), L"4");
    EXPECT_EQ(HashOf(FrameDocument().preview), before);
    Press(IDOK);
    EXPECT_FALSE(g_hwndActiveTool);
    EXPECT_EQ(Enabled(), kAllOn);
    EXPECT_TRUE(FrameDocument().unsaved);
    EXPECT_EQ(FrameDocument().phase, DocumentPhase::Idle);
    EXPECT_FALSE(FrameDocument().showsSource);
    const int lod[kDetailLevels] = {10, 22, 10, 4, 10, 10, 10, 10};
    TestPicture expected = TestPicture::Like(FrameDocument().source);
    ASSERT_EQ(SmartContrastPicture(expected.Record(), FrameDocument().source, lod, {}),
              Outcome::Done);
    ExpectSamePicture(FrameDocument().result, expected);

    // It asks for the result, and starts from what was stored.
    RunModal([] { Command(ID_SMART_CONTRAST); }, {Box(kTextUnsavedQuestion, kTextWarning, IDYES)});
    ASSERT_TRUE(g_hwndActiveTool);
    EXPECT_EQ(WindowText(Control(IDC_LEVEL_VALUE + 1)), L"22");
    ExpectSamePicture(FrameDocument().preview, expected);
    Press(IDCANCEL);
    ExpectGivenUp();
    EXPECT_EQ(ReadNumber(UserSettingsFile(), L"General", L"LOD_3", -1), 4);
}

TEST_F(Tools, SmartContrastSeesToWhatComesIntoView)
{
    OpenPicture("large.png", 2200, 1200);
    Command(ID_SMART_CONTRAST);
    Command(ID_ZOOM_100);
    Pump();
    TestPicture expected = TestPicture::Like(FrameDocument().source);
    const auto moveTo = [&](int number)
    {
        Scroll(IDC_LEVEL_SLIDER + 1, TB_THUMBPOSITION, number);
        const int lod[kDetailLevels] = {10, number, 10, 10, 10, 10, 10, 10};
        ASSERT_EQ(SmartContrastPicture(expected.Record(), FrameDocument().source, lod, {}),
                  Outcome::Done);
    };
    const auto viewIsRight = [&]
    {
        const CBxRect<int> part = SmartContrastVisible(g_view, {2200, 1200});
        TestPicture shown = TestPicture::Like(FrameDocument().source),
                    right = TestPicture::Like(shown);
        const auto take = [&](TestPicture* to, const SBxPicBuf& from)
        {
            CBxPicBufAPI::SetConst(to->Record(), 0);
            CBxPicBufAPI::Copy(to->Record(), from, part);
        };
        take(&shown, g_view.resultCache);
        take(&right, expected);
        return HashOf(shown) == HashOf(right);
    };
    moveTo(25);
    EXPECT_TRUE(viewIsRight());
    EXPECT_NE(HashOf(FrameDocument().preview), HashOf(expected)) << "nobody sees all of it";
    Mouse(WM_RBUTTONDOWN, 500, 300);
    for (int notch = 0; notch < 3; ++notch)
        Wheel(-120, 500, 300); // over the original
    Mouse(WM_RBUTTONUP, 500, 300);
    Pump();
    EXPECT_TRUE(viewIsRight());

    Command(ID_ZOOM_100);
    moveTo(4);
    Mouse(WM_LBUTTONDOWN, 900, 300);
    for (int x = 800; x >= 0; x -= 200)
    {
        Mouse(WM_MOUSEMOVE, x, 300, MK_LBUTTON);
        EXPECT_TRUE(viewIsRight()) << x;
    }
    Mouse(WM_LBUTTONUP, 0, 300);
    Press(IDOK);
    ExpectSamePicture(FrameDocument().result, expected);
}

TEST_F(Tools, ShowEveryNumberOfTheirRows)
{
    const struct
    {
        int command;
        Tool tool;
        int label, slider, value, box;
    } dialogs[] = {
        {ID_TONE_MAPPING, Tool::ToneMap, IDC_TONE_LABEL, IDC_TONE_SLIDER, IDC_TONE_VALUE,
         IDC_TONE_BOX},
        {ID_SMART_CONTRAST, Tool::SmartContrast, 0, IDC_LEVEL_SLIDER, IDC_LEVEL_VALUE, 0}};
    OpenPicture("photo.png", 60, 50);
    for (const auto& dialog : dialogs)
    {
        Command(dialog.command);
        ASSERT_TRUE(g_hwndActiveTool);
        const ParameterRows rows = ParametersOf(dialog.tool);
        for (int i = 0; i < rows.count; ++i)
        {
            SCOPED_TRACE(i);
            const bool isBox = rows[i].kind == ParameterKind::CheckBox;
            const HWND slider = Control(dialog.slider + i);
            const int label = (isBox ? dialog.box : dialog.label) + i;
            EXPECT_TRUE(rows[i].text == kNoText ||
                        WindowText(Control(label)) == Text(rows[i].text));
            if (isBox)
                continue;
            EXPECT_EQ(SendMessageW(slider, TBM_GETRANGEMIN, 0, 0), rows[i].stored.range.low);
            EXPECT_EQ(SendMessageW(slider, TBM_GETRANGEMAX, 0, 0), rows[i].stored.range.high);
            EXPECT_EQ(SendMessageW(slider, TBM_GETPOS, 0, 0), rows[i].stored.standard);
            EXPECT_EQ(WindowText(Control(dialog.value + i)),
                      std::to_wstring(rows[i].stored.standard));
        }
        Press(IDCANCEL);
    }
}

TEST_F(Tools, ToneMappingPreviewsARectangleThatTheMouseMoves)
{
    OpenPicture("photo.png", 900, 700);
    Command(ID_TONE_MAPPING);
    ASSERT_TRUE(g_hwndActiveTool);
    EXPECT_EQ(Enabled(), kToolOpen);
    EXPECT_EQ(g_view.previewRect, nullptr);
    EXPECT_TRUE(IsDlgButtonChecked(g_hwndActiveTool, IDC_TONE_COLORS));
    EXPECT_FALSE(IsWindowVisible(Control(IDC_TONE_STOP)));
    ExpectSamePicture(FrameDocument().preview, FrameDocument().source);

    Check(IDC_TONE_PREVIEW, true);
    ASSERT_NE(g_view.previewRect, nullptr);
    EXPECT_EQ(StatusText(), Text(kTextDragHint));
    EXPECT_NE(HashOf(FrameDocument().preview), HashOf(FrameDocument().source));
    const CBxRect<int> first = *g_view.previewRect;
    EXPECT_EQ(first.right - first.left, 512);

    // From a point 30 pixels inside of its left edge.
    const CBxPicMap map = MapOfView(g_view.state);
    int x, y;
    map.MapPointSrcToDst(&x, &y, first.left + 30, first.top + 200);
    Mouse(WM_LBUTTONDOWN, x, y);
    Mouse(WM_MOUSEMOVE, x - 20, y, MK_LBUTTON);
    Mouse(WM_LBUTTONUP, x - 20, y);
    EXPECT_EQ(g_view.previewRect->left, first.left - 20);
    EXPECT_EQ(g_view.state.srcCentreX, 450) << "the picture stays";
    EXPECT_EQ(PicRow<uint8_t>(FrameDocument().preview, 300)[3 * (first.right - 1)],
              PicRow<uint8_t>(FrameDocument().source, 300)[3 * (first.right - 1)])
        << "what the rectangle has left is the source again";

    Command(ID_ZOOM_IN); // the rectangle comes to the middle of the view again
    const CBxRect<int>& rect = *g_view.previewRect;
    MapOfView(g_view.state)
        .MapPointSrcToDst(&x, &y, (rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2);
    EXPECT_NEAR(x, (g_view.area.left + g_view.area.right) / 2, 2); // whole picture pixels
    EXPECT_NEAR(y, (g_view.area.top + g_view.area.bottom) / 2, 2);

    Check(IDC_TONE_PREVIEW, false);
    EXPECT_EQ(g_view.previewRect, nullptr);
    ExpectSamePicture(FrameDocument().preview, FrameDocument().source);
    Check(IDC_TONE_PREVIEW, true);
    Press(IDCANCEL);
    ExpectGivenUp();
}

TEST_F(Tools, ToneMappingMakesTheResultAndWaitsToBeClosed)
{
    OpenPicture("grey.png", 200, 150, 1);
    Command(ID_TONE_MAPPING);
    EXPECT_FALSE(IsWindowVisible(Control(IDC_TONE_COLORS))) << "there are none";
    Press(IDCANCEL);
    OpenPicture("photo.png", 200, 150);
    Command(ID_TONE_MAPPING);
    Check(IDC_TONE_COLORS, false);
    Scroll(IDC_TONE_SLIDER + 2, TB_LINEDOWN);
    Press(IDOK);
    EXPECT_TRUE(IsComputing());
    EXPECT_FALSE(IsWindowEnabled(Control(IDC_TONE_SLIDER)));
    ASSERT_TRUE(WaitUntil([] { return !IsComputing(); }));
    EXPECT_TRUE(FrameDocument().unsaved);
    EXPECT_EQ(FrameSettings().toneMap.useColors, 0);
    EXPECT_EQ(FrameSettings().toneMap.details, 11);
    EXPECT_EQ(Enabled(), kAllOn);
    ASSERT_TRUE(g_hwndActiveTool) << "stays open";
    EXPECT_FALSE(IsWindowVisible(Control(IDCANCEL)));
    EXPECT_FALSE(IsWindowEnabled(Control(IDC_TONE_SLIDER)));

    // Another command closes it, or its own button.
    RunModal([] { Command(ID_TONE_MAPPING); }, {Box(kTextUnsavedQuestion, kTextWarning, IDYES)});
    ASSERT_TRUE(g_hwndActiveTool);
    EXPECT_TRUE(IsWindowVisible(Control(IDCANCEL)));
    EXPECT_EQ(Enabled(), kToolOpen);
    Press(IDOK);
    ASSERT_TRUE(WaitUntil([] { return !IsComputing(); }));
    Press(IDOK);
    EXPECT_FALSE(g_hwndActiveTool);
    EXPECT_EQ(Enabled(), kAllOn);
    EXPECT_TRUE(FrameDocument().unsaved);
}

TEST_F(Tools, ToneMappingStopsAndCanBeStartedAgain)
{
    OpenPicture("photo.bmp", 1600, 1200);
    Command(ID_TONE_MAPPING);
    Check(IDC_TONE_PREVIEW, true);
    Press(IDOK);
    EXPECT_EQ(g_view.previewRect, nullptr);
    EXPECT_TRUE(IsWindowVisible(Control(IDC_TONE_STOP)));
    Press(IDOK); // does nothing now
    ASSERT_TRUE(WaitUntil(RunStarted));
    Press(IDC_TONE_STOP);
    ASSERT_TRUE(WaitUntil([] { return !IsComputing(); }));

    ASSERT_TRUE(g_hwndActiveTool);
    EXPECT_FALSE(FrameDocument().unsaved);
    EXPECT_EQ(FrameDocument().phase, DocumentPhase::ToolOpen);
    EXPECT_EQ(Enabled(), kToolOpen);
    EXPECT_TRUE(IsWindowEnabled(Control(IDC_TONE_SLIDER)) && IsWindowEnabled(Control(IDCANCEL)));
    EXPECT_FALSE(IsWindowVisible(Control(IDC_TONE_STOP)));
    EXPECT_NE(g_view.previewRect, nullptr) << "the preview is back";
    ExpectSamePicture(FrameDocument().result, FrameDocument().source);

    Press(IDOK);
    ASSERT_TRUE(WaitUntil(RunStarted)) << "not stopped by the last stop";
    Press(IDC_TONE_STOP);
    ASSERT_TRUE(WaitUntil([] { return !IsComputing(); }));
    Press(IDCANCEL);
    ExpectGivenUp();
}

TEST_F(Tools, TheProgramClosesOverAnOpenDialog)
{
    for (const int id : {ID_SMART_CONTRAST, ID_TONE_MAPPING})
    {
        if (!IsWindow(g_hwndMain))
            SetUp();
        OpenPicture("photo.png", 120, 90);
        Command(id);
        ASSERT_TRUE(g_hwndActiveTool);
        CloseFrame();
        EXPECT_FALSE(IsWindow(g_hwndMain)) << id;
        EXPECT_FALSE(g_hwndActiveTool) << id;
    }
}
