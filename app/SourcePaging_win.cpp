#include "app/SourcePaging_win.h"

#include "app/AppState.h"
#include "app/AppWindows_win.h"
#include "app/CommandsWnd.h"
#include "app/FileDialogsDlg.h"
#include "app/FrameView_win.h"
#include "base/Format_win.h"
#include "text/Strings.h"

void ShowSourceStatus(TextId hint)
{
    const std::wstring text =
        VcFormatText(L"%s %i %s %i. %s", Text(kTextShowing), int(g_sourceIndex) + 1, Text(kTextOf),
                     int(g_sourceCount), Text(hint));
    SetStatusText(text.c_str());
}

// Only the view takes the picture: metadata and tools stay with the first source. False when the
// file is gone or no picture any more; the view stays as it is then.
static bool ShowSourceAt(int index)
{
    SBxPicBuf picture, alpha;
    CBxPicBufAPI::Init(&picture);
    CBxPicBufAPI::Init(&alpha);
    g_sourceIndex = index;
    const bool loaded = LoadSilently(g_sourceFiles[index], &picture, &alpha);
    if (loaded)
        ShowSource(picture);
    CBxPicBufAPI::DoneHeap(&picture);
    CBxPicBufAPI::DoneHeap(&alpha);
    return loaded;
}

static void PageBy(int step)
{
    const bool mayPage = g_showSources || g_hwndActiveTool; // a tool shows a preview in between
    if (!g_multiImageMode || !mayPage || g_sourceCount <= 0 || g_toolBusy)
        return;
    // No box: the keys come through a hook. The next press goes on to the next source.
    if (ShowSourceAt(int((g_sourceIndex + g_sourceCount + step) % g_sourceCount)))
        ShowSourceStatus(kTextUseArrowsOrF5);
    else
        SetStatusText(
            VcFormatText(L"%s %s", Text(kTextCannotOpenFile), g_sourceFiles[g_sourceIndex])
                .c_str());
}

void ShowPreviousSource()
{
    PageBy(-1);
}

void ShowNextSource()
{
    PageBy(1);
}

void SwitchView()
{
    if (!g_multiImageMode || g_sourceCount <= 0 || g_toolBusy)
        return;
    g_showSources = !g_showSources;
    RedrawView();
    if (g_showSources)
        ShowSourceStatus(kTextUseArrows);
    else
        SetStatusText(Text(kTextPressF5));
}
