#include "tools/PowerFusionDlg.h"

#include "text/Strings.h"
#include "tools/FusionDlgIds.h"
#include "tools/FusionToolWnd.h"
#include "tools/PowerFusionModel.h"
#include "tools/Settings.h"

// The text is that of the menu, where dots say that a dialog follows.
static std::wstring WithoutDots(const wchar_t* text)
{
    const std::wstring whole = text;
    return whole.substr(0, whole.find_last_not_of(L".\x2026 ") + 1);
}

bool ShowPowerFusionDialog(const ToolHost& host, TextId title)
{
    ReadSettings(SettingGroup::PowerTool, host.settings);
    const auto model = std::make_shared<PowerFusionModel>(
        OpenPowerFusion(*host.settings, int(host.document->series.files.size())));
    FusionToolKind kind = {};
    kind.dialogId = IDD_POWER_FUSION;
    kind.slider = {IDC_FUSION_SLIDER, IDC_FUSION_VALUE,
                   SliderRowOf(Tool::PowerFusion).stored.range};
    kind.title = WithoutDots(Text(title));
    kind.texts = {{IDC_FUSION_LABEL, SliderRowOf(Tool::PowerFusion).text},
                  {IDOK, kTextOk},
                  {IDCANCEL, kTextCancel}};
    kind.value = [=] { return model->numbers.powerTool.power; };
    kind.move = [=](SliderMove move, int thumb) { MovePower(model.get(), move, thumb); };
    kind.task = [=](const CBxRect<int>& region) { return PowerTask(*model, region); };
    kind.store = [=, settings = host.settings]
    {
        StorePower(*model, settings);
        return WriteSettings(SettingGroup::PowerTool, settings);
    };
    kind.opened = [&host](HWND) { host.setStatusText(Text(kTextCompareHint)); };
    kind.peeksAtKeys = true;
    return ShowFusionTool(host, kind, nullptr);
}
