// The skin over real windows: colours on their pixels, converted buttons, and nothing left behind.

#include "app/AppWindows_win.h"
#include "app/FrameView_win.h"
#include "tests/win/SkinHarness.h"

#include <commctrl.h>

#include <string>
#include <vector>

TEST_F(Skin, AnswersForTheSystemsColours)
{
    EXPECT_EQ(SkinScheme(), 2);
    EXPECT_EQ(SkinColor(30), 0u);
    EXPECT_EQ(SkinColor(13), GetSysColor(13));
    EXPECT_EQ(SkinBrush(13), GetSysColorBrush(13));
    EXPECT_EQ(SkinBrush(-1), nullptr);
    EXPECT_EQ(Shot(g_hwndDocker, WM_ERASEBKGND).At(0, kSide - 1), RGB(70, 70, 70));
    EXPECT_EQ(Shot(dialog, WM_ERASEBKGND).At(5, 5), RGB(70, 70, 70));
    RedrawView();
    EXPECT_EQ(ViewPixel(500, 100), Bytes({48, 48, 48}));
    RemoveSkin();
    EXPECT_EQ(SkinColor(15), GetSysColor(15));
    RedrawView();
    EXPECT_EQ(ViewPixel(500, 100), Bytes({190, 190, 190}));
}

// The context of the erasing is the one that the view is painted on next.
TEST_F(Skin, ErasesWithoutClosingTheViewToPaint)
{
    const Shot erased(g_hwndMain, WM_ERASEBKGND);
    EXPECT_EQ(erased.At(kSide / 2, 1), RGB(70, 70, 70));
    EXPECT_TRUE(erased.IsOpen(kSide / 2, kSide - 10));
}

TEST_F(Skin, ColoursLists)
{
    const HWND list = Make(WC_LISTVIEWW, LVS_LIST), box = Make(L"LISTBOX", 0);
    EXPECT_EQ(COLORREF(SendMessageW(list, LVM_GETBKCOLOR, 0, 0)), RGB(65, 65, 65));
    EXPECT_EQ(COLORREF(SendMessageW(list, LVM_GETTEXTBKCOLOR, 0, 0)), RGB(65, 65, 65));
    EXPECT_EQ(COLORREF(SendMessageW(list, LVM_GETTEXTCOLOR, 0, 0)), RGB(190, 190, 190));
    const HDC dc = CreateCompatibleDC(nullptr);
    const LRESULT brush = SendMessageW(dialog, WM_CTLCOLORLISTBOX, reinterpret_cast<WPARAM>(dc),
                                       reinterpret_cast<LPARAM>(box));
    EXPECT_EQ(reinterpret_cast<HBRUSH>(brush), SkinBrush(COLOR_WINDOW));
    EXPECT_EQ(GetTextColor(dc), RGB(190, 190, 190));
    EXPECT_EQ(GetBkColor(dc), RGB(65, 65, 65));
    DeleteDC(dc);
    const HWND extended = Make(WC_COMBOBOXEXW, CBS_DROPDOWN);
    EXPECT_EQ(Shot(extended, WM_ERASEBKGND).At(5, 5), RGB(65, 65, 65));
}

TEST_F(Skin, ShowsTheStateOfACheckBox)
{
    const HWND box = Make(L"BUTTON", BS_AUTOCHECKBOX);
    const COLORREF cleared = Shot(box).At(4, 6);
    EnableWindow(box, FALSE);
    const COLORREF disabled = Shot(box).At(4, 6);
    SendMessageW(box, BM_SETCHECK, BST_CHECKED, 0);
    const COLORREF disabledChecked = Shot(box).At(4, 6);
    EnableWindow(box, TRUE);
    const COLORREF checked = Shot(box).At(4, 6);
    // As res/icons/dark_on.css and dark_off.css colour the drawings.
    EXPECT_EQ(cleared, RGB(0x36, 0x36, 0x36));
    EXPECT_EQ(disabled, RGB(0x42, 0x42, 0x42));
    EXPECT_EQ(checked, RGB(0x3f, 0x93, 0xdd));
    EXPECT_EQ(disabledChecked, RGB(0x5c, 0x5c, 0x5c));
    EXPECT_EQ(Shot(box).At(kSide - 2, 2), RGB(70, 70, 70));
}

static bool IsOn(HWND button)
{
    return (GetWindowLongPtrW(button, GWLP_USERDATA) & 1) != 0;
}

TEST_F(Skin, ChecksOneRadioButtonOfAGroup)
{
    constexpr DWORD kRadio = BS_AUTORADIOBUTTON | BS_PUSHLIKE;
    const HWND buttons[] = {Make(L"BUTTON", kRadio | WS_GROUP), Make(L"BUTTON", kRadio),
                            Make(L"BUTTON", kRadio), Make(L"BUTTON", kRadio | WS_GROUP)};
    const auto click = [&](HWND button)
    { SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(0, BN_CLICKED), LPARAM(button)); };
    click(buttons[3]);
    click(buttons[0]);
    EXPECT_TRUE(IsOn(buttons[0]));
    click(buttons[1]);
    EXPECT_FALSE(IsOn(buttons[0]));
    EXPECT_TRUE(IsOn(buttons[1]));
    EXPECT_FALSE(IsOn(buttons[2]));
    EXPECT_TRUE(IsOn(buttons[3])) << "of another group";

    const HWND check = Make(L"BUTTON", BS_AUTOCHECKBOX | BS_PUSHLIKE);
    click(check);
    EXPECT_TRUE(IsOn(check));
    click(check);
    EXPECT_FALSE(IsOn(check));
}

TEST_F(Skin, KeepsTheDefaultButton)
{
    const HWND ok = Make(L"BUTTON", BS_DEFPUSHBUTTON);
    EXPECT_EQ(GetWindowLongPtrW(ok, GWL_STYLE) & 0x1F, 0x1B);
    EXPECT_TRUE(SendMessageW(ok, WM_GETDLGCODE, 0, 0) & DLGC_DEFPUSHBUTTON);
    const COLORREF marked = Shot(ok).At(10, 0);
    SendMessageW(ok, BM_SETSTYLE, BS_PUSHBUTTON, TRUE);
    EXPECT_EQ(GetWindowLongPtrW(ok, GWL_STYLE) & 0x1F, 0x1B);
    EXPECT_FALSE(SendMessageW(ok, WM_GETDLGCODE, 0, 0) & DLGC_DEFPUSHBUTTON);
    EXPECT_NE(Shot(ok).At(10, 0), marked);
}

TEST_F(Skin, LeavesDialogsThatAskForIt)
{
    for (const DWORD style : {0x100, 0x200})
    {
        const HWND plain = MakeDialog(style);
        const HWND button = Make(L"BUTTON", BS_PUSHBUTTON, plain);
        EXPECT_EQ(GetWindowLongPtrW(button, GWL_STYLE) & 0x1F, 0);
        EXPECT_EQ(Shot(plain, WM_ERASEBKGND).At(5, 5), GetSysColor(COLOR_BTNFACE));
        DestroyWindow(plain);
    }
}

TEST_F(Skin, PutsProceduresBack)
{
    for (const wchar_t* name : {L"BUTTON", L"STATIC", L"EDIT", L"COMBOBOX", L"LISTBOX",
                                TRACKBAR_CLASSW, PROGRESS_CLASSW, WC_TABCONTROLW})
    {
        const HWND control = Make(name, 0);
        const LONG_PTR procedure = GetWindowLongPtrW(control, GWLP_WNDPROC);
        SetWindowTextW(control, L"text");
        EnableWindow(control, FALSE);
        const COLORREF shown = Shot(control).At(kSide / 2, 10);
        EXPECT_LT(GetRValue(shown), 120) << name;
        RedrawWindow(control, nullptr, nullptr, RDW_INVALIDATE | RDW_FRAME | RDW_UPDATENOW);
        EXPECT_EQ(GetWindowLongPtrW(control, GWLP_WNDPROC), procedure) << name;
    }
}

// As many as the process may still have.
static size_t FreeGdiObjects()
{
    std::vector<HBRUSH> made;
    while (const HBRUSH brush = CreateSolidBrush(RGB(1, 2, 3)))
        made.push_back(brush);
    for (const HBRUSH brush : made)
        DeleteObject(brush);
    return made.size();
}

TEST_F(Skin, LeavesNothingBehind)
{
    const HWND box = Make(L"BUTTON", BS_AUTOCHECKBOX), ok = Make(L"BUTTON", BS_PUSHBUTTON);
    size_t before = 0;
    for (int i = 0; i < 51; ++i)
    {
        InstallSkin();
        ASSERT_EQ(Shot(box).At(4, 6), RGB(0x36, 0x36, 0x36)) << i;
        ASSERT_EQ(Shot(ok).At(8, 4), RGB(74, 74, 74)) << i;
        RemoveSkin();
        if (i == 0)
            before = FreeGdiObjects();
    }
    EXPECT_EQ(FreeGdiObjects(), before);
    InstallSkin();
    EXPECT_EQ(Shot(dialog, WM_ERASEBKGND).At(5, 5), RGB(70, 70, 70));
}
