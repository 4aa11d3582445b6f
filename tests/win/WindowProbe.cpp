// Looks at the running program from outside, for the scripts that play a person: where its windows
// are, what they show, and how many handles it holds. Reads one command a line and answers with
// rows that end in a line with a dot.
//
//   WindowProbe.exe NAME    the program has NAME in its title when it is first looked at
//
//   windows    T|W id class left top right bottom visible,enabled value text   (T: top level)
//              B id left top right bottom enabled                 (buttons of the toolbar)
//   ready ID   when the control, wherever it is below the frame, can be used and the frame answers
//   handles    H kernel gdi user
//   repaint    has everything painted anew, as if it had been covered
//   close      as the system menu closes it
//   endsession E 1 when the program agrees that the user logs off; it is told so then. What it asks
//              before is answered with Yes
//
// Coordinates are those of the screen. The value is the position of a slider with its thumb's
// centre and its range, or of a progress bar, the mark of a check box, the choice of a combo box.

#include "base/Win.h"

#include <commctrl.h>
#include <fcntl.h>
#include <io.h>
#include <winternl.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <string>
#include <vector>

struct Program
{
    std::wstring name; // in the title: others may run as well
    HWND frame = nullptr;
    DWORD id = 0;
    HANDLE process = nullptr;
    void* memory = nullptr; // in the program, for messages that answer through a pointer
};
static Program g_program;

static LRESULT Ask(HWND hwnd, UINT message, WPARAM wParam = 0, LPARAM lParam = 0)
{
    DWORD_PTR answer = 0;
    SendMessageTimeoutW(hwnd, message, wParam, lParam, SMTO_BLOCK, 60000, &answer);
    return LRESULT(answer);
}

static RECT AskForRect(HWND hwnd, UINT message, WPARAM wParam)
{
    RECT rect = {};
    Ask(hwnd, message, wParam, reinterpret_cast<LPARAM>(g_program.memory));
    ReadProcessMemory(g_program.process, g_program.memory, &rect, sizeof rect, nullptr);
    MapWindowPoints(hwnd, nullptr, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

static BOOL CALLBACK TakeFrame(HWND hwnd, LPARAM)
{
    wchar_t title[1024] = L"";
    InternalGetWindowText(hwnd, title, 1024);
    if (!std::wcsstr(title, g_program.name.c_str()) || !IsWindowVisible(hwnd))
        return TRUE;
    g_program.frame = hwnd;
    return FALSE;
}

static bool FindProgram()
{
    if (IsWindow(g_program.frame))
        return true;
    g_program.frame = nullptr;
    EnumWindows(TakeFrame, 0);
    if (!g_program.frame)
        return false;
    GetWindowThreadProcessId(g_program.frame, &g_program.id);
    g_program.process = OpenProcess(PROCESS_ALL_ACCESS, FALSE, g_program.id);
    g_program.memory = VirtualAllocEx(g_program.process, nullptr, 4096, MEM_COMMIT, PAGE_READWRITE);
    return true;
}

static std::string TextOf(HWND hwnd)
{
    wchar_t text[2048] = L"";
    char utf8[8192] = "";
    Ask(hwnd, WM_GETTEXT, 2048, reinterpret_cast<LPARAM>(text));
    WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8, sizeof utf8, nullptr, nullptr);
    for (char* c = utf8; *c; ++c)
        if (*c == '\n' || *c == '\r')
            *c = ' ';
    return utf8;
}

static std::string ValueOf(HWND hwnd, const char* name)
{
    const auto number = [&](UINT message) { return std::to_string(int(Ask(hwnd, message))); };
    if (!std::strcmp(name, "msctls_trackbar32"))
    {
        const RECT thumb = AskForRect(hwnd, TBM_GETTHUMBRECT, 0);
        return number(TBM_GETPOS) + "," + std::to_string((thumb.left + thumb.right) / 2) + "," +
               number(TBM_GETRANGEMIN) + "," + number(TBM_GETRANGEMAX);
    }
    if (!std::strcmp(name, "msctls_progress32"))
        return number(PBM_GETPOS);
    if (!std::strcmp(name, "Button"))
        return number(BM_GETCHECK);
    return std::strcmp(name, "ComboBox") ? "-" : number(CB_GETCURSEL);
}

static void PrintWindow(char kind, HWND hwnd)
{
    char name[64] = "";
    RECT rect;
    GetClassNameA(hwnd, name, sizeof name);
    std::replace(name, name + std::strlen(name), ' ', '_');
    GetWindowRect(hwnd, &rect);
    const int id = kind == 'T' ? 0 : GetDlgCtrlID(hwnd);
    std::printf("%c %d %s %ld %ld %ld %ld %d,%d %s %s\n", kind, id, name, rect.left, rect.top,
                rect.right, rect.bottom, IsWindowVisible(hwnd), IsWindowEnabled(hwnd),
                ValueOf(hwnd, name).c_str(), TextOf(hwnd).c_str());
}

static void PrintButtons(HWND toolbar)
{
    for (int id = 32771; id < 32840; ++id)
    {
        if (Ask(toolbar, TB_COMMANDTOINDEX, WPARAM(id)) < 0)
            continue;
        const RECT rect = AskForRect(toolbar, TB_GETRECT, WPARAM(id));
        const bool enabled = (Ask(toolbar, TB_GETSTATE, WPARAM(id)) & TBSTATE_ENABLED) != 0;
        std::printf("B %d %ld %ld %ld %ld %d\n", id, rect.left, rect.top, rect.right, rect.bottom,
                    enabled);
    }
}

static BOOL CALLBACK PrintChild(HWND hwnd, LPARAM)
{
    char name[64] = "";
    PrintWindow('W', hwnd);
    GetClassNameA(hwnd, name, sizeof name);
    if (!std::strcmp(name, "ToolbarWindow32") && GetParent(hwnd) == g_program.frame)
        PrintButtons(hwnd);
    return TRUE;
}

static BOOL CALLBACK PrintTop(HWND hwnd, LPARAM)
{
    DWORD process = 0;
    GetWindowThreadProcessId(hwnd, &process);
    if (process != g_program.id || !IsWindowVisible(hwnd))
        return TRUE;
    PrintWindow('T', hwnd);
    EnumChildWindows(hwnd, PrintChild, 0);
    return TRUE;
}

// What can be copied is open.
static int KernelHandles()
{
    int count = 0;
    for (uintptr_t value = 4; value < 0x8000; value += 4)
    {
        HANDLE copy = nullptr;
        if (!DuplicateHandle(g_program.process, reinterpret_cast<HANDLE>(value),
                             GetCurrentProcess(), &copy, 0, FALSE, DUPLICATE_SAME_ACCESS))
            continue;
        CloseHandle(copy);
        ++count;
    }
    return count;
}

// Wine counts none; the table of all objects, which every process shares, does.
static int GdiHandles()
{
    if (const DWORD count = GetGuiResources(g_program.process, GR_GDIOBJECTS))
        return int(count);
    struct Entry
    {
        uint64_t object;
        uint32_t owner;
        uint16_t unique;
        uint8_t type, flags;
        uint64_t user;
    };
    constexpr size_t kTableInPeb = 0xF8, kEntries = 65536;
    PROCESS_BASIC_INFORMATION info = {};
    NtQueryInformationProcess(g_program.process, ProcessBasicInformation, &info, sizeof info,
                              nullptr);
    const char* peb = reinterpret_cast<const char*>(info.PebBaseAddress);
    const void* table = nullptr;
    std::vector<Entry> entries(kEntries);
    ReadProcessMemory(g_program.process, peb + kTableInPeb, &table, sizeof table, nullptr);
    ReadProcessMemory(g_program.process, table, entries.data(), kEntries * sizeof(Entry), nullptr);
    return int(std::count_if(entries.begin(), entries.end(),
                             [](const Entry& entry) { return entry.type != 0; }));
}

// Numbers of menus, windows and the like are given out without gaps once the free ones are used
// up; what is left below the highest is in use.
static int UserHandles()
{
    if (const DWORD count = GetGuiResources(g_program.process, GR_USEROBJECTS))
        return int(count);
    constexpr int kFreeOnes = 2000, kFirst = 0x20;
    std::vector<HMENU> menus(kFreeOnes);
    int highest = 0;
    for (HMENU& menu : menus)
    {
        menu = CreatePopupMenu();
        highest = std::max(highest, int(LOWORD(reinterpret_cast<uintptr_t>(menu))));
    }
    for (const HMENU menu : menus)
        DestroyMenu(menu);
    return (highest - kFirst) / 2 + 1 - kFreeOnes;
}

static BOOL CALLBACK TakeControl(HWND hwnd, LPARAM found)
{
    HWND* control = reinterpret_cast<HWND*>(found); // in: the number that is looked for
    if (GetDlgCtrlID(hwnd) != int(reinterpret_cast<intptr_t>(*control)))
        return TRUE;
    *control = hwnd;
    return FALSE;
}

// Without the many questions of a look, which take longer than what is to be measured.
static void WaitFor(int id)
{
    HWND control = reinterpret_cast<HWND>(intptr_t(id));
    EnumChildWindows(g_program.frame, TakeControl, reinterpret_cast<LPARAM>(&control));
    for (int tries = 0; tries < 60000 && !IsWindowEnabled(control); ++tries)
        Sleep(1);
    Ask(g_program.frame, WM_NULL);
}

static BOOL CALLBACK SayYes(HWND hwnd, LPARAM)
{
    char name[64] = "";
    DWORD process = 0;
    GetWindowThreadProcessId(hwnd, &process);
    GetClassNameA(hwnd, name, sizeof name);
    if (process == g_program.id && IsWindowVisible(hwnd) && !std::strcmp(name, "#32770"))
        PostMessageW(hwnd, WM_COMMAND, IDYES, 0);
    return TRUE;
}

static void CALLBACK TakeAnswer(HWND, UINT, ULONG_PTR answer, LRESULT result)
{
    *reinterpret_cast<int*>(answer) = int(result);
}

static void EndSession()
{
    int agrees = -1;
    SendMessageCallbackW(g_program.frame, WM_QUERYENDSESSION, 0, 0, TakeAnswer,
                         reinterpret_cast<ULONG_PTR>(&agrees));
    for (int tries = 0; tries < 1500 && agrees < 0; ++tries)
    {
        MSG message;
        PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE); // lets the answer in
        EnumWindows(SayYes, 0);
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
    }
    Ask(g_program.frame, WM_ENDSESSION, agrees == 1);
    std::printf("E %d\n", agrees);
}

int main(int, char** arguments)
{
    for (const char* c = arguments[1]; c && *c; ++c)
        g_program.name += wchar_t(*c);
    char line[64];
    _setmode(_fileno(stdout), _O_BINARY); // no carriage returns for the shell to strip
    while (std::fgets(line, sizeof line, stdin))
    {
        // What the program says when its window has gone, counts as well.
        if ((FindProgram() || g_program.id) && !std::strncmp(line, "windows", 7))
            EnumWindows(PrintTop, 0);
        else if (g_program.frame && !std::strncmp(line, "ready ", 6))
            WaitFor(std::atoi(line + 6));
        else if (g_program.frame && !std::strncmp(line, "handles", 7))
            std::printf("H %d %d %d\n", KernelHandles(), GdiHandles(), UserHandles());
        else if (g_program.frame && !std::strncmp(line, "repaint", 7))
            RedrawWindow(g_program.frame, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN);
        else if (g_program.frame && !std::strncmp(line, "close", 5))
            PostMessageW(g_program.frame, WM_CLOSE, 0, 0);
        else if (g_program.frame && !std::strncmp(line, "endsession", 10))
            EndSession();
        std::printf(".\n");
        std::fflush(stdout);
    }
    return 0;
}
