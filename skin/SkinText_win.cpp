// Labels and edits that are enabled would be right with the colours that the
// parent answers. What is painted here is what colours do not reach: the text
// of a disabled control, which the system writes in a grey of its own, and the
// frames among the static controls. Labels are painted in both states, so that
// switching between them moves no letter.

#include "skin/SkinText_win.h"

#include "skin/SkinColors_win.h"
#include "skin/SkinDraw_win.h"

// As the system reads the styles: these three types wrap, the others do not,
// and an ellipsis or centring from top to bottom asks for a single line.
static UINT StaticTextFlags(uint32_t style)
{
    UINT flags = (style & SS_NOPREFIX) ? UINT(DT_NOPREFIX) : 0U;
    switch (style & SS_ELLIPSISMASK)
    {
    case SS_ENDELLIPSIS: flags |= DT_SINGLELINE | DT_END_ELLIPSIS; break;
    case SS_PATHELLIPSIS: flags |= DT_SINGLELINE | DT_PATH_ELLIPSIS; break;
    case SS_WORDELLIPSIS: flags |= DT_SINGLELINE | DT_WORD_ELLIPSIS; break;
    }
    switch (style & SS_TYPEMASK)
    {
    case SS_CENTER: flags |= DT_CENTER | DT_WORDBREAK; break;
    case SS_RIGHT: flags |= DT_RIGHT | DT_WORDBREAK; break;
    case SS_LEFT: flags |= DT_WORDBREAK; break;
    case SS_SIMPLE: flags |= DT_SINGLELINE; break;
    }
    if (style & SS_CENTERIMAGE)
        flags = (flags & ~UINT(DT_WORDBREAK)) | DT_VCENTER | DT_SINGLELINE;
    return flags | DT_EXPANDTABS;
}

static bool DrawStaticText(const SkinCall& call, HDC dc, const RECT& client)
{
    FillRect(dc, &client, ParentBrush(call.hwnd, dc));
    DrawLabel(dc, FontOf(call.hwnd), TextOf(call.hwnd), client, StaticTextFlags(call.window.style),
              StateTextColour(call.window.enabled));
    return true;
}

// Etched lines are one edge of the box, all other frames four.
static bool DrawStaticFrame(const SkinCall& call, HDC dc, const RECT& client)
{
    FillRect(dc, &client, ParentBrush(call.hwnd, dc));
    RECT line = client;
    switch (call.window.style & SS_TYPEMASK)
    {
    case SS_ETCHEDHORZ: line.bottom = line.top + 1; break;
    case SS_ETCHEDVERT: line.right = line.left + 1; break;
    }
    FrameBox(dc, line, SkinColor(kSkinHighlight));
    return true;
}

bool PaintStatic(const SkinCall& call, LRESULT* answer)
{
    *answer = 0;
    switch (call.window.style & SS_TYPEMASK)
    {
    case SS_LEFT:
    case SS_CENTER:
    case SS_RIGHT:
    case SS_SIMPLE:
    case SS_LEFTNOWORDWRAP: return PaintBuffered(call, DrawStaticText);
    case SS_BLACKFRAME:
    case SS_GRAYFRAME:
    case SS_WHITEFRAME:
    case SS_ETCHEDHORZ:
    case SS_ETCHEDVERT:
    case SS_ETCHEDFRAME: return PaintBuffered(call, DrawStaticFrame);
    default: return false; // icons and pictures paint themselves
    }
}

static bool DrawDisabledEdit(const SkinCall& call, HDC dc, const RECT& client)
{
    RECT box = client;
    SendMessageW(call.hwnd, EM_GETRECT, 0, reinterpret_cast<LPARAM>(&box));
    const bool lines = (call.window.style & ES_MULTILINE) != 0;
    UINT flags = DT_NOPREFIX | (lines ? DT_WORDBREAK | DT_EDITCONTROL : DT_SINGLELINE);
    if (call.window.style & ES_CENTER)
        flags |= DT_CENTER;
    if (call.window.style & ES_RIGHT)
        flags |= DT_RIGHT;
    FillBox(dc, client, SkinColor(kSkinWindow));
    DrawLabel(dc, FontOf(call.hwnd), TextOf(call.hwnd), box, flags, SkinColor(kSkinGreyText));
    return true;
}

// The system's own grey would hardly show on the dark field.
bool PaintDisabledEdit(const SkinCall& call, LRESULT* answer)
{
    *answer = 0;
    // The characters of a password stand for others; the control knows which.
    const bool hidden = (call.window.style & ES_PASSWORD) != 0;
    return !hidden && PaintBuffered(call, DrawDisabledEdit);
}

static bool AnswerColours(const SkinCall& call, LRESULT* answer, int background, int text)
{
    const HWND control = reinterpret_cast<HWND>(call.lParam);
    const HDC dc = reinterpret_cast<HDC>(call.wParam);
    const bool disabled = control && !IsWindowEnabled(control);
    SetTextColor(dc, SkinColor(disabled ? int(kSkinGreyText) : text));
    SetBkColor(dc, SkinColor(background));
    *answer = reinterpret_cast<LRESULT>(SkinBrush(background));
    return true;
}

bool AnswerFieldColours(const SkinCall& call, LRESULT* answer)
{
    return AnswerColours(call, answer, kSkinWindow, kSkinText);
}

bool AnswerFaceColours(const SkinCall& call, LRESULT* answer)
{
    // An edit that nobody can write into asks as a static control does.
    const HWND control = reinterpret_cast<HWND>(call.lParam);
    if (call.message == WM_CTLCOLORSTATIC && SkinClassOfWindow(control) == SkinClass::Edit)
        return AnswerFieldColours(call, answer);
    return AnswerColours(call, answer, kSkinFace, kSkinText);
}

bool AnswerListColours(const SkinCall& call, LRESULT* answer)
{
    return AnswerColours(call, answer, kSkinWindow, kSkinWindowText);
}

bool AnswerTrackColours(const SkinCall& call, LRESULT* answer)
{
    return AnswerColours(call, answer, kSkinShadow, kSkinText);
}
