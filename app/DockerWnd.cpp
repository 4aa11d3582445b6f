#include "app/DockerWnd.h"

#include "app/AppWindows_win.h"
#include "app/DockerLayout.h"
#include "skin/SkinColors_win.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

struct DockerState
{
    bool dockedLeft = false;
    const wchar_t* caption = nullptr;
    HFONT captionFont = nullptr;
    std::vector<HWND> windows;
};

static const wchar_t kDockerClass[] = L"DockerWindow1";
static constexpr int kFirstWidth = 300, kFirstHeight = 1000;
static constexpr int kCaptionHeight = 30, kCaptionWeight = 300;
static constexpr size_t kMaxDocked = 64;

static DockerState* StateOf(HWND docker)
{
    return reinterpret_cast<DockerState*>(GetWindowLongPtrW(docker, GWLP_USERDATA));
}

static CBxSize<int> WindowSize(HWND hwnd)
{
    RECT rect = {};
    GetWindowRect(hwnd, &rect);
    return {rect.right - rect.left, rect.bottom - rect.top};
}

// Bottom edge of the lowest window that shows.
static int VisibleBottom(const DockerState& state)
{
    int bottom = 0, y = 0;
    for (HWND hwnd : state.windows)
    {
        y += WindowSize(hwnd).cy;
        if (IsWindowVisible(hwnd))
            bottom = y;
    }
    return bottom;
}

static void Layout(HWND docker)
{
    DockerState* state = StateOf(docker);
    if (!state)
        return;
    std::vector<CBxSize<int>> sizes;
    for (HWND hwnd : state->windows)
        sizes.push_back(WindowSize(hwnd));
    RECT client = {}, now = {};
    GetClientRect(GetParent(docker), &client);
    const DockerLayout layout = LayOutDocked(sizes, client.right, state->dockedLeft);
    for (size_t i = 0; i < state->windows.size(); ++i)
        SetWindowPos(state->windows[i], nullptr, layout.origins[i].x, layout.origins[i].y, 0, 0,
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

static void DrawCaption(HDC dc, const DockerState& state, const RECT& client)
{
    const int bottom = VisibleBottom(state);
    RECT text = {5, bottom + 5, client.right - 10, client.bottom - bottom - 10};
    const HGDIOBJ previous = SelectObject(dc, state.captionFont);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, SkinColor(COLOR_BTNTEXT));
    DrawTextW(dc, state.caption, -1, &text, DT_WORDBREAK | DT_NOPREFIX);
    SelectObject(dc, previous);
}

static LRESULT OnEraseBackground(HWND docker, WPARAM wParam, LPARAM)
{
    const HDC dc = reinterpret_cast<HDC>(wParam);
    const DockerState* state = StateOf(docker);
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
    if (state && state->caption && *state->caption)
        DrawCaption(dc, *state, client);
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
    DockerState* state = StateOf(docker);
    SetWindowLongPtrW(docker, GWLP_USERDATA, 0);
    if (state)
        DeleteObject(state->captionFont);
    delete state;
    return 0;
}

static const MessageRow kDockerMessages[] = {
    {WM_PAINT, OnPaint},
    {WM_ERASEBKGND, OnEraseBackground},
    {WM_SIZE, OnSize},
    {WM_NCDESTROY, OnDestroyed},
};

static HFONT CaptionFont()
{
    LOGFONTW font = {};
    GetObjectW(GetStockObject(DEFAULT_GUI_FONT), sizeof font, &font);
    font.lfHeight = kCaptionHeight;
    font.lfWeight = kCaptionWeight;
    return CreateFontIndirectW(&font);
}

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
    DockerState* state = new DockerState;
    state->captionFont = CaptionFont();
    SetWindowLongPtrW(docker, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(state));
    return docker;
}

void DockWindow(HWND hwnd)
{
    DockerState* state = StateOf(g_hwndDocker);
    if (!state)
        return;
    if (state->windows.size() >= kMaxDocked)
        throw std::length_error("list<T> too long");
    state->windows.push_back(hwnd);
    LayoutDocker();
}

void UndockWindow(HWND hwnd)
{
    DockerState* state = StateOf(g_hwndDocker);
    if (!state)
        return;
    auto& windows = state->windows;
    windows.erase(std::remove(windows.begin(), windows.end(), hwnd), windows.end());
    if (state->caption && *state->caption)
    {
        InvalidateRect(g_hwndDocker, nullptr, TRUE);
        UpdateWindow(g_hwndDocker);
    }
    LayoutDocker();
}

void LayoutDocker()
{
    if (g_hwndDocker)
        Layout(g_hwndDocker);
}

void SetDockerCaption(const wchar_t* caption)
{
    if (DockerState* state = StateOf(g_hwndDocker))
        state->caption = caption;
    InvalidateRect(g_hwndDocker, nullptr, TRUE);
}
