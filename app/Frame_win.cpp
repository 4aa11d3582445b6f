#include "app/Frame_win.h"

#include "app/AppWindows_win.h"
#include "app/CommandsWnd.h"
#include "app/DockerWnd.h"
#include "app/FrameView_win.h"

// Made at first use: the order in which files set up their globals does not matter then.
Document& FrameDocument()
{
    static Document document;
    return document;
}

bool IsComputing()
{
    return FrameDocument().phase == DocumentPhase::Computing;
}

CommandStates& FrameCommands()
{
    static CommandStates states;
    return states;
}

Settings& FrameSettings()
{
    static Settings settings = {};
    return settings;
}

static ToolHost g_host;

const ToolHost& FrameHost()
{
    return g_host;
}

static void ToolOpened(HWND dialog)
{
    g_hwndActiveTool = dialog;
    FrameDocument().phase = DocumentPhase::ToolOpen;
    EnableToolCommands(false);
}

static void ToolClosed(HWND dialog)
{
    if (g_hwndActiveTool != dialog)
        return;
    g_hwndActiveTool = nullptr;
    EndWork(&FrameDocument());
    EnableToolCommands(true);
}

void SetUpFrameHost()
{
    g_host.instance = g_hInst;
    g_host.frame = g_hwndMain;
    g_host.docker = g_hwndDocker;
    g_host.status = g_hwndStatus;
    g_host.document = &FrameDocument();
    g_host.view = &g_view;
    g_host.settings = &FrameSettings();
    g_host.updateViewArea = UpdateViewArea;
    g_host.redrawView = [] { RedrawView(); };
    g_host.showSource = [] { ShowSource(FrameDocument().source); };
    g_host.setStatusText = SetStatusText;
    g_host.enableToolCommands = EnableToolCommands;
    g_host.dock = DockWindow;
    g_host.undock = UndockWindow;
    g_host.toolOpened = ToolOpened;
    g_host.toolClosed = ToolClosed;
}
