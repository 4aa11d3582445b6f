#include "tools/ExposureFusionDlg.h"

#include "text/Strings.h"
#include "tools/ExposureFusionModel.h"
#include "tools/FusionDlgIds.h"
#include "tools/FusionToolWnd.h"
#include "tools/Settings.h"
#include "tools/ToolCommandIds.h"

// While the dialog is open. A hook has no data of its own.
struct HookedDialog
{
    HHOOK hook;
    HWND dialog, frame;
};
static HookedDialog g_hooked;

// No key gets to this thread's windows, or zooming and the like would take the focus away from the
// dialog; a message box, which disables the frame, keeps its keys.
static LRESULT CALLBACK OnHookedKey(int code, WPARAM wParam, LPARAM lParam)
{
    const bool released = (lParam & 0x80000000) != 0;
    const HookedKey key = KeyOfHook(code, unsigned(wParam), released);
    if (key.passOn || !IsWindowEnabled(g_hooked.frame))
        return CallNextHookEx(nullptr, code, wParam, lParam);
    if (key.page != 0)
        SendMessageW(g_hooked.dialog, key.page < 0 ? ID_SOURCE_PREV : ID_SOURCE_NEXT, 0, 0);
    return 1;
}

static void Opened(const ToolHost& host, HWND dlg)
{
    const HHOOK hook = SetWindowsHookExW(WH_KEYBOARD, OnHookedKey, nullptr, GetCurrentThreadId());
    g_hooked = {hook, dlg, host.frame};
    if (!host.document->series.chosenByUser)
        host.setStatusText(Text(kTextCompareHint));
}

static void Ended()
{
    UnhookWindowsHookEx(g_hooked.hook);
    g_hooked = {};
}

bool ShowExposureFusionDialog(const ToolHost& host, std::unique_ptr<FusionSources> sources)
{
    const SourceSeries& series = host.document->series;
    ReadSettings(SettingGroup::FusionTool, host.settings);
    const auto model = std::make_shared<ExposureFusionModel>(
        OpenExposureFusion(*host.settings, int(series.files.size())));
    FusionToolKind kind = {};
    kind.dialogId = IDD_EXPOSURE_FUSION;
    kind.slider = {IDC_FUSION_SLIDER, IDC_FUSION_VALUE,
                   SliderRowOf(Tool::ExposureFusion).stored.range};
    kind.title = Text(series.chosenByUser ? kTextMultiImage : kTextSingleImage);
    kind.texts = {{IDC_FUSION_LABEL, SliderRowOf(Tool::ExposureFusion).text},
                  {IDC_FUSION_DEFAULT, kTextSetDefault},
                  {IDOK, kTextOk},
                  {IDCANCEL, kTextCancel}};
    kind.value = [=] { return model->numbers.fusionTool.exposure; };
    kind.move = [=](SliderMove move, int thumb) { MoveExposure(model.get(), move, thumb); };
    kind.setDefaults = [=] { SetFusionDefaults(model.get()); };
    kind.task = [=](const CBxRect<int>& region) { return ExposureTask(*model, region); };
    kind.store = [=, settings = host.settings]
    {
        StoreExposureFusion(*model, settings);
        return WriteSettings(SettingGroup::FusionTool, settings);
    };
    kind.opened = [&host](HWND dlg) { Opened(host, dlg); };
    kind.ended = Ended;
    kind.peeksAtKeys = false; // peeking would feed keys to the hook, which swallows them
    return ShowFusionTool(host, kind, std::move(sources));
}
