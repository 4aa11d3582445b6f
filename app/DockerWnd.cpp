#include "app/DockerWnd.h"

#include "app/AppWindows_win.h"
#include "app/DockerLayout.h"
#include "skin/SkinColors_win.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

// What the docker keeps with its window: the docked ones, from the top.
using DockedWindows = std::vector<HWND>;

static const wchar_t kDockerClass[] = L"DockerWindow1";
static constexpr int kFirstWidth = 300, kFirstHeight = 1000;
static constexpr size_t kMaxDocked = 64;

static DockedWindows* WindowsOf(HWND docker)
{
    return reinterpret_cast<DockedWindows*>(GetWindowLongPtrW(docker, GWLP_USERDATA));
}

static CBxSize<int> WindowSize(HWND hwnd)
{
    RECT rect = {};
    GetWindowRect(hwnd, &rect);
    return {rect.right - rect.left, rect.bottom - rect.top};
}

static void Layout(HWND docker)
{
    const DockedWindows* windows = WindowsOf(docker);
    if (!windows)
        return;
    std::vector<CBxSize<int>> sizes;
    for (HWND hwnd : *windows)
        sizes.push_back(WindowSize(hwnd));
    RECT client = {}, now = {};
    GetClientRect(GetParent(docker), &client);
    const DockerLayout layout = LayOutDocked(sizes, client.right);
    for (size_t i = 0; i < windows->size(); ++i)
        SetWindowPos((*windows)[i], nullptr, layout.origins[i].x, layout.origins[i].y, 0, 0,
                     SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);

    GetWindowRect(docker, &now);
    MapWindowPoints(nullptr, GetParent(docker), reinterpret_cast<POINT*>(&now), 2);
    if (now.left == layout.left && now.right - now.left == layout.width)
        return; // sizing would come back here
    SetWindowPos(docker, nullptr, layout.left, now.top, layout.width, now.bottom - now.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    // The view reaches up to the docker: what was under it, or is now, must be drawn.
    RECT strip = {std::min<LONG>(now.left, layout.left), now.top, client.right, now.bottom};
    InvalidateRect(GetParent(docker), &strip, FALSE);
}

// Only what lies between the docked windows: filling under them as well would flicker.
static LRESULT OnEraseBackground(HWND docker, WPARAM wParam, LPARAM)
{
    const HDC dc = reinterpret_cast<HDC>(wParam);
    RECT client;
    GetClientRect(docker, &client);
    for (HWND child = GetWindow(docker, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
    {
        if (!IsWindowVisible(child))
            continue;
        RECT rect;
        GetWindowRect(child, &rect);
        MapWindowPoints(nullptr, docker, reinterpret_cast<POINT*>(&rect), 2);
        ExcludeClipRect(dc, rect.left, rect.top, rect.right, rect.bottom);
    }
    FillRect(dc, &client, SkinBrush(COLOR_BTNFACE));
    return 1;
}

static LRESULT OnPaint(HWND docker, WPARAM, LPARAM)
{
    PAINTSTRUCT paint;
    BeginPaint(docker, &paint); // erases, and that is all there is to paint
    EndPaint(docker, &paint);
    return 0;
}

static LRESULT OnSize(HWND docker, WPARAM, LPARAM)
{
    Layout(docker);
    return 0;
}

static LRESULT OnDestroyed(HWND docker, WPARAM, LPARAM)
{
    delete WindowsOf(docker);
    SetWindowLongPtrW(docker, GWLP_USERDATA, 0);
    return 0;
}

static const MessageRow kDockerMessages[] = {
    {WM_PAINT, OnPaint},
    {WM_ERASEBKGND, OnEraseBackground},
    {WM_SIZE, OnSize},
    {WM_NCDESTROY, OnDestroyed},
};

HWND CreateDocker(HWND parent)
{
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = TableProc<kDockerMessages>;
    windowClass.hInstance = g_hInst;
    windowClass.hCursor = LoadCursorW(nullptr, MAKEINTRESOURCEW(32512)); // the arrow
    windowClass.hbrBackground = SkinBrush(COLOR_BTNFACE);
    windowClass.lpszClassName = kDockerClass;
    RegisterClassW(&windowClass); // fails harmlessly when it is there already

    const HWND docker =
        CreateWindowExW(0, kDockerClass, L"", WS_CHILD | WS_CLIPSIBLINGS | WS_CLIPCHILDREN, 0, 0,
                        kFirstWidth, kFirstHeight, parent, nullptr, g_hInst, nullptr);
    if (!docker)
        return nullptr;
    SetWindowLongPtrW(docker, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(new DockedWindows));
    return docker;
}

void DockWindow(HWND hwnd)
{
    DockedWindows* windows = WindowsOf(g_hwndDocker);
    if (!windows)
        return;
    if (windows->size() >= kMaxDocked)
        throw std::length_error("list<T> too long"); // tools dock one at a time: a leak, not a use
    windows->push_back(hwnd);
    LayoutDocker();
}

void UndockWindow(HWND hwnd)
{
    DockedWindows* windows = WindowsOf(g_hwndDocker);
    if (!windows)
        return;
    windows->erase(std::remove(windows->begin(), windows->end(), hwnd), windows->end());
    LayoutDocker();
}

void LayoutDocker()
{
    if (g_hwndDocker)
        Layout(g_hwndDocker);
}
