#include "app/OptionsDlg.h"

#include "app/Frame_win.h"
#include "app/OptionsIds.h"
#include "text/LanguageFile.h"
#include "text/Strings.h"
#include "tools/Settings_win.h"

static const struct
{
    int control; // 0: the caption
    TextId text;
} kOptionsTexts[] = {
    {0, kTextOptions},
    {IDC_OPTIONS_LABEL, kTextSelectLanguage},
    {IDOK, kTextOk},
    {IDCANCEL, kTextCancel},
};

static void CentreOverParent(HWND dlg)
{
    RECT parent, own;
    if (!GetWindowRect(GetParent(dlg), &parent) || !GetWindowRect(dlg, &own))
        return;
    const int x = (parent.right - parent.left - (own.right - own.left)) / 2;
    const int y = (parent.bottom - parent.top - (own.bottom - own.top)) / 2;
    SetWindowPos(dlg, nullptr, parent.left + x, parent.top + y, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
}

static INT_PTR OnInitOptions(HWND dlg)
{
    CentreOverParent(dlg);
    const HWND combo = GetDlgItem(dlg, IDC_OPTIONS_LANGUAGE);
    SendMessageW(combo, CB_RESETCONTENT, 0, 0);
    for (const Language& language : g_languages.languages)
        SendMessageW(combo, CB_ADDSTRING, 0, LPARAM(language.name.c_str()));
    SendMessageW(combo, CB_SETCURSEL, WPARAM(g_languages.current), 0);
    for (const auto& text : kOptionsTexts)
        SetWindowTextW(text.control ? GetDlgItem(dlg, text.control) : dlg, Text(text.text));
    return TRUE;
}

static INT_PTR OnOptionsCommand(HWND dlg, int id, bool* stored)
{
    if (id != IDOK && id != IDCANCEL)
        return FALSE;
    if (id == IDOK)
    {
        // -1 when nothing is selected, as in an empty list.
        const LRESULT selected = SendDlgItemMessageW(dlg, IDC_OPTIONS_LANGUAGE, CB_GETCURSEL, 0, 0);
        *stored = ChooseLanguage(LocalizationFile(), &g_languages, int(selected)) == Outcome::Done;
    }
    EndDialog(dlg, id);
    return TRUE;
}

static INT_PTR CALLBACK OptionsProc(HWND dlg, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_INITDIALOG: SetWindowLongPtrW(dlg, DWLP_USER, lParam); return OnInitOptions(dlg);
    case WM_COMMAND:
        return OnOptionsCommand(dlg, LOWORD(wParam),
                                reinterpret_cast<bool*>(GetWindowLongPtrW(dlg, DWLP_USER)));
    default: return FALSE;
    }
}

void ShowOptionsDialog(HWND owner)
{
    const int previous = g_languages.current;
    LoadSettings(&FrameSettings());
    bool stored = false;
    const INT_PTR answer = DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDD_OPTIONS),
                                           owner, OptionsProc, reinterpret_cast<LPARAM>(&stored));
    if (answer != IDOK)
        return;
    if (!stored)
    {
        g_languages.current = previous;
        TellSettingsUnsaved(owner);
        return;
    }
    // The note is for who reads the new language; all else stays as it is until the restart.
    ReloadString(LocalizationFile(), g_languages.current, kTextRestartNeeded);
    ReloadString(LocalizationFile(), g_languages.current, kTextReport);
    if (g_languages.current != previous)
        MessageBoxW(owner, Text(kTextRestartNeeded), Text(kTextReport), MB_ICONASTERISK);
}
