#include "tools/SmartContrastDlg.h"

#include "text/Strings.h"
#include "tools/Messages.h"
#include "tools/MultiscaleDlgIds.h"
#include "tools/ParameterControlsWnd.h"
#include "tools/Settings_win.h"
#include "tools/SmartContrastModel.h"
#include "tools/ToolDialogWnd.h"

#include <commctrl.h>

#include <memory>

static const ControlText kTexts[] = {{0, kTextLevelsOfDetail},
                                     {IDC_TOOL_FRAME, kTextLevelsOfDetail},
                                     {IDOK, kTextOk},
                                     {IDCANCEL, kTextCancel}};

// Its labels are sizes in pixels, its sliders the only controls with numbers.
static const ParameterControls kControls = {Tool::SmartContrast, 0, IDC_LEVEL_SLIDER,
                                            IDC_LEVEL_VALUE, 0};

// An open dialog.
struct SmartContrastTool
{
    const ToolHost* host;
    SmartContrastModel model;

    explicit SmartContrastTool(const ToolHost& frame) : host(&frame) {}
};

static SmartContrastTool* ToolOf(HWND dlg)
{
    return DialogData<SmartContrastTool>(dlg);
}

static CBxRect<int> VisiblePart(const SmartContrastTool& tool)
{
    tool.host->updateViewArea();
    return SmartContrastVisible(*tool.host->view, tool.model.size);
}

static void Show(SmartContrastTool* tool, const CBxRect<int>& visible)
{
    SBxPicBuf* preview = tool->host->document->preview.Record();
    if (RecomposeSmartContrast(preview, &tool->model, visible) == Outcome::Done)
        SendMessageW(tool->host->frame, WM_APP_PREVIEW_READY, 0, 0);
}

static void ShowRecomposed(SmartContrastTool* tool)
{
    const ToolWaitCursor wait(*tool->host);
    Show(tool, VisiblePart(*tool));
}

// While the picture is being dragged, the hand stays as it is.
static INT_PTR OnViewMoved(HWND dlg)
{
    SmartContrastTool* tool = ToolOf(dlg);
    const CBxRect<int> visible = VisiblePart(*tool);
    if (!HasSmartContrast(tool->model, visible))
        Show(tool, visible);
    return TRUE;
}

static INT_PTR OnInit(HWND dlg)
{
    SetUpControls(dlg, kControls, ToolOf(dlg)->model.numbers);
    ShowTexts(dlg, kTexts);
    return FALSE; // the frame keeps the focus until the user takes it
}

static INT_PTR OnSlider(HWND dlg, WPARAM wParam, LPARAM lParam)
{
    SmartContrastTool* tool = ToolOf(dlg);
    const HWND slider = reinterpret_cast<HWND>(lParam);
    const ParameterRow* level = SliderOf(kControls, GetDlgCtrlID(slider));
    if (!level)
        return FALSE;
    SmartContrastModel* model = &tool->model;
    const bool recompose =
        SmartContrastSliderMoved(model, *level, MoveOfScroll(wParam), ThumbOfScroll(wParam));
    ShowNumber(dlg, kControls, *level, model->numbers);
    if (recompose && !NewerSliderInputWaits(slider))
        ShowRecomposed(tool);
    return TRUE;
}

static INT_PTR OnOk(HWND dlg)
{
    const ToolHost& host = *ToolOf(dlg)->host;
    SmartContrastModel* model = &ToolOf(dlg)->model;
    {
        const ToolWaitCursor wait(host);
        // Refused only when there is no preview to show either.
        (void)CompleteSmartContrast(host.document->preview.Record(), model);
    }
    CopyNumbers(host.settings, Tool::SmartContrast, model->numbers);
    const Outcome stored = WriteSettings(SettingGroup::LevelsOfDetail, host.settings);
    GiveResult(host.document, std::move(host.document->preview));
    DestroyWindow(dlg);
    SendMessageW(host.frame, WM_APP_TOOL_DONE, 0, 0);
    if (stored != Outcome::Done)
        TellSettingsUnsaved(host.frame);
    return TRUE;
}

static INT_PTR OnCommand(HWND dlg, int id)
{
    switch (id)
    {
    case IDOK: return OnOk(dlg);
    case IDCANCEL: GiveUpTool(*ToolOf(dlg)->host, dlg); return TRUE;
    default: return FALSE;
    }
}

static INT_PTR OnDestroy(HWND dlg)
{
    const auto tool = TakeDialogData<SmartContrastTool>(dlg);
    ToolDialogDestroyed(*tool->host, dlg);
    return TRUE;
}

static INT_PTR OnMessage(HWND dlg, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_INITDIALOG: return OnInit(dlg);
    case WM_HSCROLL: return OnSlider(dlg, wParam, lParam);
    case WM_COMMAND: return OnCommand(dlg, LOWORD(wParam));
    case WM_APP_VIEW_MOVING:
    case WM_APP_VIEW_MOVED: return OnViewMoved(dlg);
    case WM_MOUSEWHEEL: return SendToFrame(*ToolOf(dlg)->host, message, wParam, lParam);
    case WM_DESTROY: return OnDestroy(dlg);
    default: return FALSE;
    }
}

// Taken apart before there is a dialog, so that a failure has nothing to close.
static Outcome Prepare(SmartContrastTool* tool)
{
    const ToolWaitCursor wait(*tool->host);
    Document* document = tool->host->document;
    Settings* settings = tool->host->settings;
    ReadSettings(SettingGroup::LevelsOfDetail, settings);
    return InTurn([&] { return PrepareToolPictures(document); },
                  [&] { return OpenSmartContrast(&tool->model, document->source, *settings); });
}

void OpenSmartContrastDialog(const ToolHost& host)
{
    auto tool = std::make_unique<SmartContrastTool>(host);
    if (Prepare(tool.get()) != Outcome::Done)
    {
        RefuseTool(host);
        return;
    }
    if (!OpenToolDialog(host, IDD_SMART_CONTRAST, DialogProc<SmartContrastTool, OnMessage>,
                        reinterpret_cast<LPARAM>(tool.get())))
        return;
    host.setStatusText(Text(kTextCompareHint));
    ShowRecomposed(tool.release()); // the dialog's from here on
}
