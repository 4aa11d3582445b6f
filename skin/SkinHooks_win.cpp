// Four hooks of this thread.
//
//   before a procedure   a sent message that the skin takes finds the skin's
//   procedure in place of
//                        the control's own for as long as it is handled
//   after a procedure    puts the control's own back; gives new windows their
//   colours; follows
//                        clicks on converted buttons and the opening of menus
//   out of the queue     a paint message is handled right here, since no hook
//   stands around its
//                        dispatch; and the mouse tells which control is to
//                        light up
//   message filter       keys of modal dialogs, for converted buttons
//
// Replacing the procedure only while a message is handled leaves no trace
// between messages: whoever subclasses a control, or asks for its procedure,
// finds the control's own.

#include "skin/SkinHooks_win.h"

#include "skin/SkinButtonRules.h"
#include "skin/SkinButtons_win.h"
#include "skin/SkinColors_win.h"
#include "skin/SkinImages_win.h"
#include "skin/SkinKeyboard_win.h"
#include "skin/SkinMenus_win.h"
#include "skin/SkinNewWindow_win.h"
#include "skin/SkinProcedure_win.h"
#include "skin/SkinSubclass_win.h"
#include "skin/SkinWindow_win.h"

#include <algorithm>
#include <vector>

// Sent messages that are being handled by the skin's procedure, innermost last.
struct Claim
{
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
};
static std::vector<Claim> g_claims;

static HHOOK g_afterHook, g_beforeHook, g_queueHook, g_filterHook;

// Cheap questions first: this is asked for every message that is sent in this
// thread.
static bool Claims(HWND hwnd, UINT message)
{
    return SkinScheme() != kNoScheme && SkinMayTake(message) &&
           SkinTakes(DescribeWindow(hwnd), message) && !IsExcludedFromSkin(hwnd);
}

static LRESULT CALLBACK BeforeProcedure(int code, WPARAM wParam, LPARAM lParam)
{
    const CWPSTRUCT& call = *reinterpret_cast<const CWPSTRUCT*>(lParam);
    if (code == HC_ACTION && Claims(call.hwnd, call.message))
    {
        SubclassWindowForSkin(call.hwnd, SkinProcedure);
        g_claims.push_back({call.hwnd, call.message, call.wParam, call.lParam});
    }
    return CallNextHookEx(g_beforeHook, code, wParam, lParam);
}

// Ends the claim on a message, and with it claims inside of it whose end was
// never told.
static void EndClaim(const CWPRETSTRUCT& call)
{
    for (size_t i = g_claims.size(); i-- > 0;)
    {
        const Claim& claim = g_claims[i];
        if (claim.hwnd != call.hwnd || claim.message != call.message ||
            claim.wParam != call.wParam || claim.lParam != call.lParam)
            continue;
        while (g_claims.size() > i)
        {
            UnsubclassWindowForSkin(g_claims.back().hwnd);
            g_claims.pop_back();
        }
        return;
    }
}

// The window is gone; its handle may soon be another's.
static void ForgetWindow(HWND hwnd)
{
    ForgetSkinnedWindow(hwnd);
    const auto isOf = [hwnd](const Claim& claim) { return claim.hwnd == hwnd; };
    g_claims.erase(std::remove_if(g_claims.begin(), g_claims.end(), isOf), g_claims.end());
    if (HotWindow() == hwnd)
        SetHotWindow(nullptr);
}

static void OnSentMessage(const CWPRETSTRUCT& call)
{
    switch (call.message)
    {
    case WM_CREATE:
        if (call.lResult != -1) // or the window has refused to be created
            StyleNewWindow(call.hwnd);
        break;
    case WM_NCDESTROY: ForgetWindow(call.hwnd); break;
    case WM_COMMAND:
        if (HIWORD(call.wParam) == BN_CLICKED &&
            IsConvertedPushLike(reinterpret_cast<HWND>(call.lParam)))
            OnConvertedClick(reinterpret_cast<HWND>(call.lParam));
        break;
    case WM_INITMENUPOPUP:
        if (!HIWORD(call.lParam)) // the system's own menu keeps its look
            OwnerDrawMenu(reinterpret_cast<HMENU>(call.wParam));
        break;
    case WM_UNINITMENUPOPUP: RestoreMenu(reinterpret_cast<HMENU>(call.wParam)); break;
    }
}

static LRESULT CALLBACK AfterProcedure(int code, WPARAM wParam, LPARAM lParam)
{
    const CWPRETSTRUCT& call = *reinterpret_cast<const CWPRETSTRUCT*>(lParam);
    if (code == HC_ACTION)
    {
        EndClaim(call);
        if (SkinScheme() != kNoScheme)
            OnSentMessage(call);
    }
    return CallNextHookEx(g_afterHook, code, wParam, lParam);
}

// Nothing is left to dispatch afterwards.
static void PaintInHook(MSG* message)
{
    const HWND hwnd = message->hwnd;
    SubclassWindowForSkin(hwnd, SkinProcedure);
    SkinProcedure(hwnd, WM_PAINT, message->wParam, message->lParam);
    UnsubclassWindowForSkin(hwnd);
    message->message = WM_NULL;
}

// The control under the mouse lights up. Leaving is told once per asking.
static void FollowMouse(HWND hwnd)
{
    if (hwnd == HotWindow())
        return;
    SetHotWindow(hwnd);
    if (!HotWindow())
        return;
    TRACKMOUSEEVENT tracking = {sizeof tracking, TME_LEAVE, hwnd, 0};
    TrackMouseEvent(&tracking);
}

static void OnQueuedMessage(MSG* message)
{
    const HWND hwnd = message->hwnd;
    switch (message->message)
    {
    case WM_MOUSEMOVE: FollowMouse(hwnd); break;
    case WM_MOUSELEAVE:
        if (HotWindow() == hwnd)
            SetHotWindow(nullptr);
        break;
    case WM_LBUTTONDBLCLK:
        // An owner-drawn button would tell of a double click what a push button
        // takes for a click.
        if (SkinClassOfWindow(hwnd) == SkinClass::Button &&
            IsConvertedButton(DescribeWindow(hwnd).style))
            message->message = WM_LBUTTONDOWN;
        break;
    }
    // A scroll bar draws its thumb by itself while it is dragged, over the
    // skin's.
    const bool moves = message->message == WM_MOUSEMOVE || message->message == WM_LBUTTONUP;
    if (moves && SkinIsDark() && SkinClassOfWindow(hwnd) == SkinClass::ScrollBar)
        InvalidateRect(hwnd, nullptr, FALSE);
}

static LRESULT CALLBACK QueueProcedure(int code, WPARAM wParam, LPARAM lParam)
{
    MSG* message = reinterpret_cast<MSG*>(lParam);
    // Also called for messages that are only looked at and stay in the queue.
    const bool taken =
        code == HC_ACTION && wParam == PM_REMOVE && message->hwnd && SkinScheme() != kNoScheme;
    if (taken && message->message == WM_PAINT && Claims(message->hwnd, WM_PAINT))
    {
        const LRESULT answer = CallNextHookEx(g_queueHook, code, wParam, lParam);
        PaintInHook(message);
        return answer;
    }
    if (taken)
        OnQueuedMessage(message);
    return CallNextHookEx(g_queueHook, code, wParam, lParam);
}

static LRESULT CALLBACK FilterProcedure(int code, WPARAM wParam, LPARAM lParam)
{
    if (code == MSGF_DIALOGBOX && SkinScheme() != kNoScheme &&
        HandleButtonKey(*reinterpret_cast<const MSG*>(lParam)))
        return 1;
    return CallNextHookEx(g_filterHook, code, wParam, lParam);
}

static void Unhook(HHOOK* hook)
{
    if (*hook)
        UnhookWindowsHookEx(*hook);
    *hook = nullptr;
}

void RemoveSkin()
{
    SetHotWindow(nullptr);
    SetSkinState({});
    for (HHOOK* hook : {&g_afterHook, &g_beforeHook, &g_queueHook, &g_filterHook})
        Unhook(hook);
    ReleaseCheckImages();
    ReleaseMenuFont();
}

// The thread's own hooks alone: windows of other programs and threads are not
// ours to paint.
void InstallSkin()
{
    RemoveSkin();
    SetSkinState({kDarkScheme, false});
    const DWORD thread = GetCurrentThreadId();
    g_afterHook = SetWindowsHookExW(WH_CALLWNDPROCRET, AfterProcedure, nullptr, thread);
    g_beforeHook = SetWindowsHookExW(WH_CALLWNDPROC, BeforeProcedure, nullptr, thread);
    g_queueHook = SetWindowsHookExW(WH_GETMESSAGE, QueueProcedure, nullptr, thread);
    g_filterHook = SetWindowsHookExW(WH_MSGFILTER, FilterProcedure, nullptr, thread);
}
