#include "app/FrameView_win.h"

#include "app/AppState.h"
#include "app/AppWindows_win.h"
#include "app/Messages.h"
#include "app/ToolbarWnd.h"
#include "skin/SkinColors.h"

ImageView g_view;
DisplayDocument g_document;

// The alpha plane belongs to the opened photograph; it lies over whatever of it is shown.
static const SBxPicBuf* AlphaToShow()
{
    const bool fits = g_alphaPicture.data && g_alphaPicture.width == g_sourcePicture.width &&
                      g_alphaPicture.height == g_sourcePicture.height;
    return fits ? &g_alphaPicture : nullptr;
}

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
    if (!HasPicture(g_sourcePicture))
        ShowNothing();
    else if (g_showSources || !HasPicture(g_resultPicture))
        Render(rebuild, &g_sourcePicture, ViewShows::Source);
    else
        Render(rebuild, &g_resultPicture, ViewShows::Result);
}

void ShowSource(const SBxPicBuf& picture)
{
    g_showSources = true;
    Render(ViewRebuild::Rebuild, &picture, ViewShows::Source);
}

void ShowResult()
{
    g_showSources = false;
    Render(ViewRebuild::Rebuild, &g_resultPicture, ViewShows::Result);
}

void ShowPreview()
{
    g_showSources = false;
    Render(ViewRebuild::Rebuild, &g_previewPicture, ViewShows::Result);
}

void ShowNothing()
{
    Render(ViewRebuild::Keep, nullptr, ViewShows::Nothing);
}

void ZoomChanged()
{
    SetZoomBoxText(ZoomText(g_view.state.scale).c_str());
    SetFocus(g_hwndMain);
    RedrawView();
    ViewMoved();
}

void ViewMoved()
{
    if (g_hwndActiveTool && !g_showSources)
        PostMessageW(g_hwndActiveTool, WM_APP_VIEW_MOVED, 0, 0);
}

const SBxPicBuf& ShownPicture()
{
    return g_sourcePicture;
}
