#include "app/FrameView_win.h"

#include "app/AppWindows_win.h"
#include "app/Frame_win.h"
#include "app/Invitation.h"
#include "app/ToolbarWnd.h"
#include "skin/SkinColors_win.h"
#include "text/Strings.h"
#include "tools/Messages.h"

ImageView g_view;
DisplayDocument g_displayDocument;

// The alpha plane belongs to the opened photograph; it lies over whatever of it is shown.
static const SBxPicBuf* AlphaToShow()
{
    const SBxPicBuf& alpha = FrameDocument().alpha;
    const SBxPicBuf& source = FrameDocument().source;
    const bool fits = alpha.data && alpha.width == source.width && alpha.height == source.height;
    return fits ? &alpha : nullptr;
}

// The docker is measured, not remembered: it may have been moved by a size message meanwhile.
void UpdateViewArea()
{
    RECT client = {}, docker = {};
    GetClientRect(g_hwndMain, &client);
    docker.left = client.right;
    if (g_hwndDocker)
    {
        GetWindowRect(g_hwndDocker, &docker);
        MapWindowPoints(nullptr, g_hwndMain, reinterpret_cast<POINT*>(&docker), 2);
    }
    SetViewArea(&g_view, ViewAreaOf(client.bottom, ToolbarClientHeight(), docker.left));
}

static void InvalidateView()
{
    const CBxRect<int>& area = g_view.area;
    const RECT rect = {area.left, area.top, area.right, area.bottom};
    InvalidateRect(g_hwndMain, &rect, FALSE);
}

static void Render(ViewRebuild rebuild, const SBxPicBuf* picture, ViewShows which)
{
    UpdateViewArea();
    g_view.colourScheme = SkinScheme();
    // True means that the background is all there is to show: nothing more to do.
    (void)VcRenderView(&g_view, rebuild, picture, which, true, AlphaToShow());
    InvalidateView();
}

void RedrawView(ViewRebuild rebuild)
{
    const Document& document = FrameDocument();
    const SBxPicBuf &source = document.source, &result = document.result;
    if (!HasPicture(source))
        ShowNothing();
    else if (document.showsSource || !HasPicture(result))
        Render(rebuild, &source, ViewShows::Source);
    else
        Render(rebuild, &result, ViewShows::Result);
}

void ShowSource(const SBxPicBuf& picture)
{
    FrameDocument().showsSource = true;
    Render(ViewRebuild::Rebuild, &picture, ViewShows::Source);
}

static void ShowAsResult(const SBxPicBuf& picture)
{
    FrameDocument().showsSource = false;
    Render(ViewRebuild::Rebuild, &picture, ViewShows::Result);
}

void ShowResult()
{
    ShowAsResult(FrameDocument().result);
}

void ShowPreview()
{
    const SBxPicBuf& preview = FrameDocument().preview;
    ShowAsResult(HasPicture(preview) ? preview : FrameDocument().source);
}

// The font in which the system speaks to the user: it has the letters of the user's language.
static HFONT InvitationFont(int height)
{
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    metrics.lfMessageFont.lfHeight = -height;
    metrics.lfMessageFont.lfWidth = 0;
    return CreateFontIndirectW(&metrics.lfMessageFont);
}

static void DrawInvitationFrame(HDC dc, const InvitationLayout& layout)
{
    const CBxRect<int>& frame = layout.frame;
    const int grey = layout.frameGrey;
    const HGDIOBJ pen = SelectObject(dc, CreatePen(PS_SOLID, 2, RGB(grey, grey, grey)));
    const HGDIOBJ brush = SelectObject(dc, GetStockObject(NULL_BRUSH));
    RoundRect(dc, frame.left, frame.top, frame.right, frame.bottom, layout.fontHeight,
              layout.fontHeight);
    SelectObject(dc, brush);
    DeleteObject(SelectObject(dc, pen));
}

// Into the display bitmap, so that the window gets background and text in one piece.
static void DrawInvitation(HDC dc, CBxSize<int> area, int background)
{
    constexpr UINT kFormat = DT_CENTER | DT_WORDBREAK | DT_NOPREFIX;
    const wchar_t* text = Text(kTextInvitation);
    const HGDIOBJ font = SelectObject(dc, InvitationFont(InvitationFontHeight(area)));
    RECT room = {0, 0, InvitationTextWidth(area), 0};
    DrawTextW(dc, text, -1, &room, kFormat | DT_CALCRECT);
    const InvitationLayout layout = LayOutInvitation(area, {room.right, room.bottom}, background);
    DrawInvitationFrame(dc, layout);
    room = {layout.text.left, layout.text.top, layout.text.right, layout.text.bottom};
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, RGB(layout.textGrey, layout.textGrey, layout.textGrey));
    DrawTextW(dc, text, -1, &room, kFormat);
    DeleteObject(SelectObject(dc, font));
    GdiFlush(); // the view writes into the bitmap by itself
}

void ShowNothing()
{
    Render(ViewRebuild::Keep, nullptr, ViewShows::Nothing);
    if (g_displayDocument.bitmap && *Text(kTextInvitation))
        DrawInvitation(g_displayDocument.memoryDc, SizeOfArea(g_view.area),
                       ViewBackground(g_view.colourScheme));
}

void ZoomChanged()
{
    SetZoomBoxText(ZoomText(g_view.state.scale).c_str());
    SetFocus(g_hwndMain);
    RedrawView();
    ViewMoved();
}

// A tool's preview covers what is seen. Over the source there is none to bring up to date.
void ViewMoved()
{
    if (g_hwndActiveTool && !FrameDocument().showsSource)
        PostMessageW(g_hwndActiveTool, WM_APP_VIEW_MOVED, 0, 0);
}

// Source, result and preview have one geometry: for zooming and panning they are the same.
const SBxPicBuf& ShownPicture()
{
    return FrameDocument().source;
}
