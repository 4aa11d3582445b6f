#include "tools/SmartContrastDlg.h"

#include "app/AppState.h"
#include "app/AppWindows_win.h"
#include "app/CommandsWnd.h"
#include "app/FrameView_win.h"
#include "text/Strings.h"
#include "tools/Messages.h"
#include "tools/MultiscaleDlgIds.h"
#include "tools/ParameterControlsWnd.h"
#include "tools/Settings.h"
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

static SmartContrastModel* ModelOf(HWND dlg)
{
    return DialogData<SmartContrastModel>(dlg);
}

static CBxRect<int> VisiblePart(const SmartContrastModel& model)
{
    UpdateViewArea();
    return SmartContrastVisible(g_view, model.size);
}

static void Show(SmartContrastModel* model, const CBxRect<int>& visible)
{
    if (!RecomposeSmartContrast(&g_previewPicture, model, visible))
        SendMessageW(g_hwndMain, WM_APP_PREVIEW_READY, 0, 0);
}

static void ShowRecomposed(SmartContrastModel* model)
{
    const ToolWaitCursor wait;
    Show(model, VisiblePart(*model));
}

// While the picture is being dragged, the hand stays as it is.
static INT_PTR OnViewMoved(HWND dlg)
{
    SmartContrastModel* model = ModelOf(dlg);
    const CBxRect<int> visible = VisiblePart(*model);
    if (!HasSmartContrast(*model, visible))
        Show(model, visible);
    return TRUE;
}

static INT_PTR OnInit(HWND dlg, LPARAM lParam)
{
    SetWindowLongPtrW(dlg, DWLP_USER, lParam);
    SetUpControls(dlg, kControls, ModelOf(dlg)->numbers);
    ShowTexts(dlg, kTexts);
    return FALSE; // the frame keeps the focus until the user takes it
}

static INT_PTR OnSlider(HWND dlg, WPARAM wParam, LPARAM lParam)
{
    SmartContrastModel* model = ModelOf(dlg);
    const HWND slider = reinterpret_cast<HWND>(lParam);
    const ParameterRow* level = SliderOf(kControls, GetDlgCtrlID(slider));
    if (!model || !level)
        return FALSE;
    const bool recompose =
        SmartContrastSliderMoved(model, *level, MoveOfScroll(wParam), ThumbOfScroll(wParam));
    ShowNumber(dlg, kControls, *level, model->numbers);
    if (recompose && !NewerSliderInputWaits(slider))
        ShowRecomposed(model);
    return TRUE;
}

static INT_PTR OnOk(HWND dlg)
{
    SmartContrastModel* model = ModelOf(dlg);
    {
        const ToolWaitCursor wait;
        // Refused only when there is no preview to show either.
        (void)CompleteSmartContrast(&g_previewPicture, model);
    }
    CopyNumbers(&g_settings, Tool::SmartContrast, model->numbers);
    const bool stored = WriteSettings(SettingGroup::LevelsOfDetail);
    CBxPicBufAPI::Copy(&g_resultPicture, g_previewPicture);
    DestroyWindow(dlg);
    SendMessageW(g_hwndMain, WM_APP_TOOL_DONE, 0, 0);
    if (!stored)
        TellSettingsUnsaved();
    return TRUE;
}

static INT_PTR OnCommand(HWND dlg, int id)
{
    switch (id)
    {
    case IDOK: return OnOk(dlg);
    case IDCANCEL: GiveUpTool(dlg); return TRUE;
    default: return FALSE;
    }
}

static INT_PTR OnDestroy(HWND dlg)
{
    ToolDialogDestroyed(dlg);
    const std::unique_ptr<SmartContrastModel> model(ModelOf(dlg));
    SetWindowLongPtrW(dlg, DWLP_USER, 0);
    if (model)
        ReleaseSmartContrast(model.get());
    return TRUE;
}

static INT_PTR CALLBACK SmartContrastProc(HWND dlg, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_INITDIALOG: return OnInit(dlg, lParam);
    case WM_HSCROLL: return OnSlider(dlg, wParam, lParam);
    case WM_COMMAND: return OnCommand(dlg, LOWORD(wParam));
    case WM_APP_VIEW_MOVING:
    case WM_APP_VIEW_MOVED: return ModelOf(dlg) ? OnViewMoved(dlg) : FALSE;
    case WM_MOUSEWHEEL: SendMessageW(g_hwndMain, message, wParam, lParam); return TRUE;
    case WM_DESTROY: return OnDestroy(dlg);
    default: return FALSE;
    }
}

// Taken apart before there is a dialog, so that a failure has nothing to close.
static bool Prepare(SmartContrastModel* model)
{
    const ToolWaitCursor wait;
    g_resultUnsaved = false;
    ReadSettings(SettingGroup::LevelsOfDetail);
    return PrepareToolPictures() && !OpenSmartContrast(model, g_sourcePicture, g_settings);
}

void OpenSmartContrastDialog()
{
    auto model = std::make_unique<SmartContrastModel>();
    if (!Prepare(model.get()))
    {
        RefuseTool();
        return;
    }
    if (!OpenToolDialog(IDD_SMART_CONTRAST, SmartContrastProc,
                        reinterpret_cast<LPARAM>(model.get())))
    {
        ReleaseSmartContrast(model.get());
        return;
    }
    SetStatusText(Text(kTextCompareHint));
    ShowRecomposed(model.release()); // the dialog's from here on
}
