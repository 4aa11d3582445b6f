#include "tools/NoisePromptDlg.h"

#include "text/Strings.h"
#include "tools/SeriesDlgIds.h"
#include "tools/Settings_win.h"
#include "tools/ToolDialogWnd.h"

static const ParameterRow& NoiseRow()
{
    return ParametersOf(Tool::NoisePrompt)[0];
}

// The prompt that is open; it outlives its dialog, since whoever asked waits for the answer.
struct NoisePrompt
{
    const ToolHost* host;
    unsigned* level;
    int answer = kPromptConfirmed;
};

static const ControlText kTexts[] = {
    {0, kTextNoiseQuestion},
    {IDC_SERIES_TITLE, kTextNoiseQuestion},
    {IDOK, kTextOk},
    {IDCANCEL, kTextCancel},
};

static NoisePrompt* PromptOf(HWND dlg)
{
    return DialogData<NoisePrompt>(dlg);
}

static unsigned* LevelOf(HWND dlg)
{
    return PromptOf(dlg)->level;
}

static INT_PTR OnInit(HWND dlg)
{
    Settings* settings = PromptOf(dlg)->host->settings;
    ReadSettings(SettingGroup::NoisePrompt, settings);
    *LevelOf(dlg) = unsigned(settings->denoiseStrength);
    ShowTexts(dlg, kTexts);
    SetDlgItemTextW(dlg, IDC_NOISE_LABEL, Text(NoiseRow().text));
    SendDlgItemMessageW(dlg, IDC_NOISE_LEVEL, CB_RESETCONTENT, 0, 0);
    for (int level = 0; level <= NoiseRow().stored.range.high; ++level)
        SendDlgItemMessageW(dlg, IDC_NOISE_LEVEL, CB_ADDSTRING, 0,
                            reinterpret_cast<LPARAM>(Text(NoiseRow().choices[level].text)));
    SendDlgItemMessageW(dlg, IDC_NOISE_LEVEL, CB_SETCURSEL, *LevelOf(dlg), 0);
    return TRUE;
}

static Outcome StoreLevel(HWND dlg)
{
    const LRESULT selected = SendDlgItemMessageW(dlg, IDC_NOISE_LEVEL, CB_GETCURSEL, 0, 0);
    if (selected == CB_ERR)
        return Outcome::Done;
    Settings* settings = PromptOf(dlg)->host->settings;
    *LevelOf(dlg) = unsigned(selected);
    settings->denoiseStrength = int(selected);
    return WriteSettings(SettingGroup::NoisePrompt, settings);
}

static INT_PTR OnButton(HWND dlg, int id)
{
    if (id != IDOK && id != IDCANCEL)
        return FALSE;
    NoisePrompt* prompt = PromptOf(dlg);
    prompt->answer = id == IDOK ? kPromptConfirmed : kPromptCancelled;
    const Outcome stored = id == IDOK ? StoreLevel(dlg) : Outcome::Done;
    DestroyWindow(dlg);
    if (stored != Outcome::Done)
        TellSettingsUnsaved(prompt->host->frame);
    return TRUE;
}

static INT_PTR OnMessage(HWND dlg, UINT message, WPARAM wParam, LPARAM)
{
    switch (message)
    {
    case WM_INITDIALOG: return OnInit(dlg);
    case WM_COMMAND: return OnButton(dlg, LOWORD(wParam));
    case WM_DESTROY: DockedDestroyed(*PromptOf(dlg)->host, dlg); return TRUE;
    default: return FALSE;
    }
}

// Cancel counts from the press on, as the user means it, unless OK is what follows.
static void WaitForAnswer(HWND dlg, NoisePrompt* prompt)
{
    MSG message;
    while (IsWindow(dlg))
    {
        if (GetMessageW(&message, nullptr, 0, 0) <= 0)
        {
            PostQuitMessage(int(message.wParam)); // the program's own loop has to see it too
            return;
        }
        if (message.message == WM_LBUTTONDOWN && message.hwnd == GetDlgItem(dlg, IDCANCEL))
            prompt->answer = kPromptCancelled;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

int RunNoiseLevelPrompt(const ToolHost& host, unsigned* noiseLevel)
{
    NoisePrompt prompt = {&host, noiseLevel};
    const HWND dlg = OpenDocked(host, IDD_NOISE_PROMPT, DialogProc<NoisePrompt, OnMessage>,
                                reinterpret_cast<LPARAM>(&prompt));
    if (!dlg)
        return kPromptCancelled;
    host.redrawView();
    SetFocus(GetDlgItem(dlg, IDC_NOISE_LEVEL));
    WaitForAnswer(dlg, &prompt);
    if (IsWindow(dlg)) // the program ends: what it looks at goes now
        DestroyWindow(dlg);
    if (IsWindow(host.frame))
        host.redrawView();
    return prompt.answer;
}
