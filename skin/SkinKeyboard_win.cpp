// Keys become what a mouse would have done: a press of the button, or the
// command that its parent would have got.

#include "skin/SkinKeyboard_win.h"

#include "skin/SkinButtons_win.h"
#include "skin/SkinDraw_win.h"

#include <cwctype>

// Somewhere inside of the button.
constexpr LPARAM kInside = MAKELPARAM(1, 1);

// Buttons may stand in a panel inside of the dialog: whoever answers first has
// closed something.
static bool CancelDialog(HWND button)
{
    for (HWND parent = GetParent(button); parent; parent = GetParent(parent))
        if (SendMessageW(parent, WM_COMMAND, IDCANCEL, 0) != 0)
            break;
    return true;
}

// Whether the text underlines that letter (a capital).
static bool HasLetter(HWND button, wchar_t letter)
{
    const std::wstring text = TextOf(button);
    for (size_t i = 0; i + 1 < text.size(); ++i)
    {
        if (text[i] != L'&')
            continue;
        if (text[i + 1] != L'&' && wchar_t(std::towupper(wint_t(text[i + 1]))) == letter)
            return true;
        ++i; // two of them stand for one that shows
    }
    return false;
}

static bool PressLettered(HWND button, wchar_t letter)
{
    const HWND parent = GetParent(button);
    for (HWND sibling = GetWindow(button, GW_HWNDFIRST); sibling;
         sibling = GetWindow(sibling, GW_HWNDNEXT))
        if (SkinClassOfWindow(sibling) == SkinClass::Button && IsWindowVisible(sibling) &&
            HasLetter(sibling, letter))
        {
            SendMessageW(parent, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(sibling), BN_CLICKED),
                         reinterpret_cast<LPARAM>(sibling));
            return true;
        }
    return false;
}

bool HandleButtonKey(const MSG& message)
{
    const bool down = message.message == WM_KEYDOWN, up = message.message == WM_KEYUP;
    if ((!down && !up) || !IsConvertedPushLike(message.hwnd) || IsExcludedFromSkin(message.hwnd))
        return false;
    const WPARAM key = message.wParam;
    if (key == VK_SPACE || key == VK_RETURN)
    {
        SendMessageW(message.hwnd, down ? WM_LBUTTONDOWN : WM_LBUTTONUP, 0, kInside);
        return true;
    }
    if (!down)
        return false;
    if (key == VK_ESCAPE)
        return CancelDialog(message.hwnd);
    return key >= 'A' && key <= 'Z' && PressLettered(message.hwnd, wchar_t(key));
}
