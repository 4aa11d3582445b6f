#include "fusion/ExposureFusionDlg.h"

#include "app/AppState.h"
#include "app/AppWindows_win.h"
#include "app/CommandIds.h"
#include "app/CommandsWnd.h"
#include "app/Messages.h"
#include "app/Strings.h"
#include "app/ToolDialogWnd.h"
#include "fusion/ExposureFusionModel.h"
#include "fusion/FusionDlgIds.h"
#include "fusion/FusionToolWnd.h"

struct ExposureDialog
{
    FusionTool tool;
    ExposureFusionModel model;
};

static const SliderControl kSliders[] = {
    {IDC_FUSION_SLIDER, IDC_FUSION_VALUE, kTargetGreyRange},
};

static const struct
{
    int control, string;
} kTexts[] = {
    {IDC_FUSION_LABEL, 61},
    {IDC_FUSION_DEFAULT, 53},
    {IDOK, 45},
    {IDCANCEL, 46},
};

static HHOOK g_keyboardHook; // while the dialog is open

// No key gets to this thread's windows, or zooming and the like would take the focus away from the
// dialog; a message box, which disables the frame, keeps its keys.
static LRESULT CALLBACK OnHookedKey(int code, WPARAM wParam, LPARAM lParam)
{
    const bool released = (lParam & 0x80000000) != 0;
    const HookedKey key = KeyOfHook(code, unsigned(wParam), released);
    if (key.passOn || !IsWindowEnabled(g_hwndMain))
        return CallNextHookEx(nullptr, code, wParam, lParam);
    if (key.page != 0)
        SendMessageW(g_hwndActiveTool, key.page < 0 ? ID_SOURCE_PREV : ID_SOURCE_NEXT, 0, 0);
    return 1;
}

static ExposureDialog* StateOf(HWND dlg)
{
    return reinterpret_cast<ExposureDialog*>(GetWindowLongPtrW(dlg, DWLP_USER));
}

static void ShowExposure(HWND dlg)
{
    ShowSlider(dlg, kSliders[0], StateOf(dlg)->model.exposure);
}

static INT_PTR OnInit(HWND dlg)
{
    ReadSettings(SettingGroup::FusionTool);
    ExposureDialog* state = new ExposureDialog;
    state->model = OpenExposureFusion(g_settings, g_sourceCount);
    SetWindowLongPtrW(dlg, DWLP_USER, reinterpret_cast<LONG_PTR>(state));
    OpenFusionTool(&state->tool, dlg, IDC_FUSION_SLIDER);
    state->tool.peeksAtKeys = false; // peeking would feed keys to the hook, which swallows them
    SetDlgItemTextW(dlg, IDC_FUSION_TITLE, g_strings[g_multiImageMode ? 63 : 64]);
    for (const auto& text : kTexts)
        SetDlgItemTextW(dlg, text.control, g_strings[text.string]);
    SetUpSlider(dlg, kSliders[0], state->model.exposure);
    g_keyboardHook = SetWindowsHookExW(WH_KEYBOARD, OnHookedKey, nullptr, GetCurrentThreadId());
    return TRUE;
}

static INT_PTR OnSlider(HWND dlg, WPARAM wParam, LPARAM lParam)
{
    const SliderMove move = MoveOfScroll(wParam);
    if (!SliderOfScroll(dlg, kSliders, lParam) || move == SliderMove::Other)
        return FALSE;
    MoveExposure(&StateOf(dlg)->model, move, ThumbOfScroll(wParam));
    ShowExposure(dlg);
    SendMessageW(dlg, WM_LBUTTONUP, 0, 0);
    return TRUE;
}

// Where everything ends that may have changed the preview. One that is up to date stays.
static INT_PTR OnPreview(HWND dlg)
{
    ExposureDialog* state = StateOf(dlg);
    KillTimer(dlg, kPreviewTimer);
    ShowFusionPreview(&state->tool, ExposureTask(state->model, RegionInView()));
    return TRUE;
}

static void OnSetDefault(HWND dlg)
{
    SetFusionDefaults(&StateOf(dlg)->model);
    ShowExposure(dlg);
    SendMessageW(dlg, WM_LBUTTONUP, 0, 0);
}

static void OnOk(HWND dlg)
{
    ExposureDialog* state = StateOf(dlg);
    StoreExposureFusion(state->model, &g_settings);
    WriteSettings(SettingGroup::FusionTool);
    FinishFusion(&state->tool, ExposureTask(state->model, {}));
}

static INT_PTR OnButton(HWND dlg, int id)
{
    if (StateOf(dlg)->tool.computing)
        return FALSE;
    switch (id)
    {
    case IDC_FUSION_DEFAULT: OnSetDefault(dlg); return TRUE;
    case IDOK: OnOk(dlg); return TRUE;
    case IDCANCEL: CancelFusion(&StateOf(dlg)->tool); return TRUE;
    default: return FALSE;
    }
}

static INT_PTR OnPage(WPARAM command)
{
    SendMessageW(g_hwndMain, WM_COMMAND, command, 0);
    return TRUE;
}

static INT_PTR OnDestroyed(HWND dlg)
{
    UnhookWindowsHookEx(g_keyboardHook);
    g_keyboardHook = nullptr;
    ExposureDialog* state = StateOf(dlg);
    SetWindowLongPtrW(dlg, DWLP_USER, 0);
    ReleaseFusionTool(&state->tool);
    delete state;
    ToolDialogDestroyed(dlg);
    return TRUE;
}

static INT_PTR CALLBACK ExposureProc(HWND dlg, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG)
        return OnInit(dlg);
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
    case ID_SOURCE_PREV:
    case ID_SOURCE_NEXT: return OnPage(message);
    case WM_DESTROY: return OnDestroyed(dlg);
    default: return FALSE;
    }
}

bool ShowExposureFusionDialog()
{
    if (!PrepareToolPictures())
    {
        WarnOfShortMemory();
        return false;
    }
    const HWND dlg = OpenToolDialog(IDD_EXPOSURE_FUSION, ExposureProc, 0);
    if (!dlg)
        return false;
    if (!g_multiImageMode)
        SetStatusText(g_strings[81]);
    SetFocus(GetDlgItem(dlg, IDC_FUSION_SLIDER));
    UpdateWindow(g_hwndMain);
    SendMessageW(dlg, WM_LBUTTONUP, 0, 0);
    return true;
}
