#include "tests/win/ModalScript.h"

#include <gtest/gtest.h>

#include <set>

constexpr UINT kTickMs = 10;
constexpr ULONGLONG kLongestMs = 20000;

struct ModalScript
{
    const std::vector<std::function<void(HWND)>>* steps;
    size_t next = 0;
    std::set<HWND> seen;
    ULONGLONG deadline = GetTickCount64() + kLongestMs;
};

static ModalScript* g_script;

static BOOL CALLBACK FindOpenDialog(HWND window, LPARAM result)
{
    wchar_t className[16] = L"";
    GetClassNameW(window, className, 16);
    if (std::wstring(className) != L"#32770" || !IsWindowVisible(window) ||
        !IsWindowEnabled(window))
        return TRUE;
    *reinterpret_cast<HWND*>(result) = window;
    return FALSE;
}

static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD)
{
    HWND dlg = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), FindOpenDialog, reinterpret_cast<LPARAM>(&dlg));
    if (!dlg)
        return;
    const bool late = GetTickCount64() > g_script->deadline;
    if (!late && !g_script->seen.insert(dlg).second)
        return;
    if (late || g_script->next == g_script->steps->size())
    {
        ADD_FAILURE() << (late ? "still open: " : "not expected: ") << WindowText(dlg).c_str();
        PressButton(dlg, IDCANCEL);
        return;
    }
    (*g_script->steps)[g_script->next++](dlg);
}

void RunModal(const std::function<void()>& call,
              const std::vector<std::function<void(HWND)>>& steps)
{
    ModalScript script;
    script.steps = &steps;
    g_script = &script;
    const UINT_PTR timer = SetTimer(nullptr, 0, kTickMs, Tick);
    call();
    KillTimer(nullptr, timer);
    g_script = nullptr;
    EXPECT_EQ(script.next, steps.size()) << "dialogs opened";
}

void PressButton(HWND dlg, int id)
{
    PostMessageW(dlg, WM_COMMAND, WPARAM(id), LPARAM(GetDlgItem(dlg, id)));
}

std::wstring WindowText(HWND window)
{
    wchar_t text[1024] = L"";
    GetWindowTextW(window, text, 1024);
    return text;
}

std::wstring MessageBoxText(HWND box)
{
    return WindowText(GetDlgItem(box, 0xFFFF));
}
