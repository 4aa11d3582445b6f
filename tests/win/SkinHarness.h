#pragma once

#include "skin/SkinColors_win.h"
#include "skin/SkinHooks_win.h"
#include "tests/win/FrameHarness.h"

// The skin over a dialog of its own, which belongs to the frame window, and pictures of controls.

constexpr int kSide = 120; // of the pictures

class Skin : public FrameTest
{
protected:
    HWND dialog = nullptr;

    void SetUp() override
    {
        InstallSkin();
        FrameTest::SetUp();
        dialog = MakeDialog(0);
    }
    void TearDown() override
    {
        DestroyWindow(dialog);
        FrameTest::TearDown();
        RemoveSkin();
    }

    static INT_PTR CALLBACK NoProc(HWND, UINT, WPARAM, LPARAM) { return FALSE; }
    static HWND MakeDialog(DWORD style)
    {
        struct
        {
            DLGTEMPLATE head;
            WORD menu, windowClass, title;
        } dlg = {{WS_POPUP | style, 0, 0, 0, 0, 200, 150}, 0, 0, 0};
        return CreateDialogIndirectParamW(nullptr, &dlg.head, g_hwndMain, NoProc, 0);
    }
    HWND Make(const wchar_t* name, DWORD style, HWND parent = nullptr)
    {
        return CreateWindowExW(0, name, L"", WS_CHILD | WS_VISIBLE | style, 0, 0, kSide, 20,
                               parent ? parent : dialog, nullptr, nullptr, nullptr);
    }
};

// A bitmap to paint on. With a window it has what the control shows, as its message for pictures
// paints it; or what its background is.
class Shot
{
public:
    Shot()
    {
        BITMAPINFO info = {};
        info.bmiHeader = {sizeof info.bmiHeader, kSide, -kSide, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        void* bits = nullptr;
        dc = CreateCompatibleDC(nullptr);
        bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
        before = SelectObject(dc, bitmap);
    }
    explicit Shot(HWND hwnd, UINT message = WM_PRINTCLIENT) : Shot()
    {
        SendMessageW(hwnd, message, reinterpret_cast<WPARAM>(dc), PRF_CLIENT);
    }
    ~Shot()
    {
        SelectObject(dc, before);
        DeleteObject(bitmap);
        DeleteDC(dc);
    }
    Shot(const Shot&) = delete;
    Shot& operator=(const Shot&) = delete;

    COLORREF At(int x, int y) const { return GetPixel(dc, x, y); }
    bool IsOpen(int x, int y) const { return PtVisible(dc, x, y) != FALSE; }

    HDC dc;

private:
    HBITMAP bitmap;
    HGDIOBJ before;
};
