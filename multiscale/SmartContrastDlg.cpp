#include "multiscale/SmartContrastDlg.h"

#include "app/AppState.h"
#include "app/AppWindows_win.h"
#include "app/CommandsWnd.h"
#include "app/Messages.h"
#include "app/Settings.h"
#include "app/Strings.h"
#include "app/ToolDialogWnd.h"
#include "multiscale/MultiscaleDlgIds.h"
#include "multiscale/SmartContrastModel.h"

#include <commctrl.h>

#include <algorithm>
#include <memory>

constexpr int kCompareHint = 81, kNoHint = 76;

static SliderControl LevelControl(int level)
{
    return {IDC_LEVEL_SLIDER + level, IDC_LEVEL_VALUE + level, kLevelOfDetailRange};
}

static SmartContrastModel* ModelOf(HWND dlg)
{
    return reinterpret_cast<SmartContrastModel*>(GetWindowLongPtrW(dlg, DWLP_USER));
}

static void ShowRecomposed(SmartContrastModel* model)
{
    const ToolWaitCursor wait;
    if (!RecomposeSmartContrast(&g_previewPicture, model))
        SendMessageW(g_hwndMain, WM_APP_PREVIEW_READY, 0, 0);
}

static INT_PTR OnInit(HWND dlg, LPARAM lParam)
{
    SetWindowLongPtrW(dlg, DWLP_USER, lParam);
    const SmartContrastModel* model = ModelOf(dlg);
    for (int level = 0; level < kDetailLevels; ++level)
        SetUpSlider(dlg, LevelControl(level), model->lod[level]);
    SetWindowTextW(dlg, g_strings[102]);
    SetDlgItemTextW(dlg, IDC_TOOL_FRAME, g_strings[102]);
    SetDlgItemTextW(dlg, IDOK, g_strings[45]);
    SetDlgItemTextW(dlg, IDCANCEL, g_strings[46]);
    return FALSE; // the frame keeps the focus until the user takes it
}

static INT_PTR OnSlider(HWND dlg, WPARAM wParam, LPARAM lParam)
{
    SmartContrastModel* model = ModelOf(dlg);
    const HWND slider = reinterpret_cast<HWND>(lParam);
    const int level = GetDlgCtrlID(slider) - IDC_LEVEL_SLIDER;
    if (!model || level < 0 || level >= kDetailLevels)
        return FALSE;
    const bool recompose =
        SmartContrastSliderMoved(model, level, MoveOfScroll(wParam), ThumbOfScroll(wParam));
    ShowSlider(dlg, LevelControl(level), model->lod[level]);
    if (recompose && !NewerSliderInputWaits(slider))
        ShowRecomposed(model);
    return TRUE;
}

static INT_PTR OnOk(HWND dlg)
{
    SmartContrastModel* model = ModelOf(dlg);
    if (IsSmartContrastBehind(*model))
        ShowRecomposed(model);
    std::copy_n(model->lod, kDetailLevels, g_settings.levelsOfDetail);
    WriteSettings(SettingGroup::LevelsOfDetail);
    CBxPicBufAPI::Copy(&g_resultPicture, g_previewPicture);
    DestroyWindow(dlg);
    SendMessageW(g_hwndMain, WM_APP_TOOL_DONE, 0, 0);
    return TRUE;
}

static INT_PTR OnCancel(HWND dlg)
{
    CopyPicture(&g_previewPicture, g_sourcePicture);
    DestroyWindow(dlg);
    SetStatusText(g_strings[kNoHint]);
    SendMessageW(g_hwndMain, WM_APP_TOOL_CANCELLED, 0, 0);
    return TRUE;
}

static INT_PTR OnCommand(HWND dlg, int id)
{
    switch (id)
    {
    case IDOK: return OnOk(dlg);
    case IDCANCEL: return OnCancel(dlg);
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
    return PrepareToolPictures() &&
           !OpenSmartContrast(model, g_sourcePicture, g_settings.levelsOfDetail);
}

void OpenSmartContrastDialog()
{
    auto model = std::make_unique<SmartContrastModel>();
    if (!Prepare(model.get()))
    {
        WarnOfShortMemory();
        return;
    }
    if (!OpenToolDialog(IDD_SMART_CONTRAST, SmartContrastProc,
                        reinterpret_cast<LPARAM>(model.get())))
    {
        ReleaseSmartContrast(model.get());
        return;
    }
    SetStatusText(g_strings[kCompareHint]);
    ShowRecomposed(model.release()); // the dialog's from here on
}
