#include "fusion/PowerFusionDlg.h"

#include "app/AppState.h"
#include "app/AppWindows_win.h"
#include "app/CommandsWnd.h"
#include "app/Messages.h"
#include "app/Strings.h"
#include "app/ToolDialogWnd.h"
#include "fusion/FusionDlgIds.h"
#include "fusion/FusionToolWnd.h"
#include "fusion/PowerFusionModel.h"

struct PowerDialog
{
    FusionTool tool;
    PowerFusionModel model;
};

static const SliderControl kSliders[] = {
    {IDC_FUSION_SLIDER, IDC_FUSION_VALUE, kPowerRange},
};

static const struct
{
    int control, string;
} kTexts[] = {
    {IDC_FUSION_LABEL, 105},
    {IDOK, 45},
    {IDCANCEL, 46},
};

static PowerDialog* StateOf(HWND dlg)
{
    return reinterpret_cast<PowerDialog*>(GetWindowLongPtrW(dlg, DWLP_USER));
}

// The text is that of the menu, where dots say that a dialog follows.
static std::wstring WithoutDots(const wchar_t* text)
{
    const std::wstring whole = text;
    return whole.substr(0, whole.find_last_not_of(L".\x2026 ") + 1);
}

static INT_PTR OnInit(HWND dlg, LPARAM title)
{
    ReadSettings(SettingGroup::PowerTool);
    PowerDialog* state = new PowerDialog;
    state->model = OpenPowerFusion(g_settings, g_sourceCount);
    SetWindowLongPtrW(dlg, DWLP_USER, reinterpret_cast<LONG_PTR>(state));
    OpenFusionTool(&state->tool, dlg, IDC_FUSION_SLIDER);
    SetDlgItemTextW(dlg, IDC_FUSION_TITLE, WithoutDots(g_strings[title]).c_str());
    for (const auto& text : kTexts)
        SetDlgItemTextW(dlg, text.control, g_strings[text.string]);
    SetUpSlider(dlg, kSliders[0], state->model.power);
    return TRUE;
}

static INT_PTR OnSlider(HWND dlg, WPARAM wParam, LPARAM lParam)
{
    const SliderMove move = MoveOfScroll(wParam);
    if (!SliderOfScroll(dlg, kSliders, lParam) || move == SliderMove::Other)
        return FALSE;
    PowerFusionModel* model = &StateOf(dlg)->model;
    MovePower(model, move, ThumbOfScroll(wParam));
    ShowSlider(dlg, kSliders[0], model->power);
    SendMessageW(dlg, WM_LBUTTONUP, 0, 0);
    return TRUE;
}

// Where everything ends that may have changed the preview. One that is up to date stays.
static INT_PTR OnPreview(HWND dlg)
{
    PowerDialog* state = StateOf(dlg);
    KillTimer(dlg, kPreviewTimer);
    ShowFusionPreview(&state->tool, PowerTask(state->model, RegionInView()));
    return TRUE;
}

static void OnOk(HWND dlg)
{
    PowerDialog* state = StateOf(dlg);
    StorePower(state->model, &g_settings);
    WriteSettings(SettingGroup::PowerTool);
    FinishFusion(&state->tool, PowerTask(state->model, {}));
}

static INT_PTR OnButton(HWND dlg, int id)
{
    if (StateOf(dlg)->tool.computing)
        return FALSE;
    switch (id)
    {
    case IDOK: OnOk(dlg); return TRUE;
    case IDCANCEL: CancelFusion(&StateOf(dlg)->tool); return TRUE;
    default: return FALSE;
    }
}

static INT_PTR OnDestroyed(HWND dlg)
{
    PowerDialog* state = StateOf(dlg);
    SetWindowLongPtrW(dlg, DWLP_USER, 0);
    ReleaseFusionTool(&state->tool);
    delete state;
    ToolDialogDestroyed(dlg);
    return TRUE;
}

static INT_PTR CALLBACK PowerProc(HWND dlg, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG)
        return OnInit(dlg, lParam);
    if (!StateOf(dlg))
        return FALSE;
    switch (message)
    {
    case WM_HSCROLL: return OnSlider(dlg, wParam, lParam);
    case WM_LBUTTONUP:
    case WM_TIMER:
    case WM_APP_VIEW_MOVED: return OnPreview(dlg);
    case WM_COMMAND: return OnButton(dlg, LOWORD(wParam));
    case WM_CLOSE: return OnButton(dlg, IDOK);
    case WM_MOUSEWHEEL: SendMessageW(g_hwndMain, message, wParam, lParam); return TRUE;
    case WM_DESTROY: return OnDestroyed(dlg);
    default: return FALSE;
    }
}

bool ShowPowerFusionDialog(int title)
{
    if (!PrepareToolPictures())
    {
        WarnOfShortMemory();
        return false;
    }
    const HWND dlg = OpenToolDialog(IDD_POWER_FUSION, PowerProc, title);
    if (!dlg)
        return false;
    SetStatusText(g_strings[81]);
    SetFocus(GetDlgItem(dlg, IDC_FUSION_SLIDER));
    UpdateWindow(g_hwndMain);
    SendMessageW(dlg, WM_LBUTTONUP, 0, 0);
    return true;
}
