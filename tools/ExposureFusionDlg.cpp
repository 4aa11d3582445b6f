#include "tools/ExposureFusionDlg.h"

#include "app/AppState.h"
#include "app/AppWindows_win.h"
#include "app/CommandIds.h"
#include "app/CommandsWnd.h"
#include "text/Strings.h"
#include "tools/ExposureFusionModel.h"
#include "tools/FusionDlgIds.h"
#include "tools/FusionToolWnd.h"
#include "tools/Settings.h"

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

static void Opened()
{
    g_keyboardHook = SetWindowsHookExW(WH_KEYBOARD, OnHookedKey, nullptr, GetCurrentThreadId());
    if (!g_multiImageMode)
        SetStatusText(Text(kTextCompareHint));
}

static void Ended()
{
    UnhookWindowsHookEx(g_keyboardHook);
    g_keyboardHook = nullptr;
}

bool ShowExposureFusionDialog()
{
    return ShowExposureFusionDialog(nullptr);
}

bool ShowExposureFusionDialog(std::unique_ptr<FusionSources> sources)
{
    ReadSettings(SettingGroup::FusionTool);
    const auto model =
        std::make_shared<ExposureFusionModel>(OpenExposureFusion(g_settings, g_sourceCount));
    FusionToolKind kind = {};
    kind.dialogId = IDD_EXPOSURE_FUSION;
    kind.slider = {IDC_FUSION_SLIDER, IDC_FUSION_VALUE,
                   SliderRowOf(Tool::ExposureFusion).stored.range};
    kind.title = Text(g_multiImageMode ? kTextMultiImage : kTextSingleImage);
    kind.texts = {{IDC_FUSION_LABEL, SliderRowOf(Tool::ExposureFusion).text},
                  {IDC_FUSION_DEFAULT, kTextSetDefault},
                  {IDOK, kTextOk},
                  {IDCANCEL, kTextCancel}};
    kind.value = [=] { return model->numbers.fusionTool.exposure; };
    kind.move = [=](SliderMove move, int thumb) { MoveExposure(model.get(), move, thumb); };
    kind.setDefaults = [=] { SetFusionDefaults(model.get()); };
    kind.task = [=](const CBxRect<int>& region) { return ExposureTask(*model, region); };
    kind.store = [=]
    {
        StoreExposureFusion(*model, &g_settings);
        return WriteSettings(SettingGroup::FusionTool);
    };
    kind.opened = Opened;
    kind.ended = Ended;
    kind.peeksAtKeys = false; // peeking would feed keys to the hook, which swallows them
    return ShowFusionTool(kind, std::move(sources));
}
