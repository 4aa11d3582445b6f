#include "app/SourcePaging_win.h"

#include "app/AppWindows_win.h"
#include "app/CommandsWnd.h"
#include "app/FileDialogsDlg.h"
#include "app/FrameView_win.h"
#include "app/Frame_win.h"
#include "base/Format_win.h"
#include "text/Strings.h"

void ShowSourceStatus(TextId hint)
{
    const SourceSeries& series = FrameDocument().series;
    const std::wstring text = VcFormatText(L"%s %i %s %i. %s", Text(kTextShowing), series.shown + 1,
                                           Text(kTextOf), int(series.files.size()), Text(hint));
    SetStatusText(text.c_str());
}

// Only the view takes the picture: metadata and tools stay with the first source. False when the
// file is gone or no picture any more; the view stays as it is then.
static bool ShowSourceFile(const std::wstring& file)
{
    Picture picture, alpha;
    const bool loaded = LoadSilently(file.c_str(), &picture, &alpha);
    if (loaded)
        ShowSource(picture);
    return loaded;
}

// Nothing to look through, or no time for it.
static bool MayNotPage()
{
    const SourceSeries& series = FrameDocument().series;
    return !series.chosenByUser || series.files.empty() || IsComputing();
}

static void PageBy(int step)
{
    Document& document = FrameDocument();
    const bool sees = document.showsSource || g_hwndActiveTool; // it shows a preview in between
    if (MayNotPage() || !sees)
        return;
    SourceSeries& series = document.series;
    const int count = int(series.files.size());
    series.shown = (series.shown + count + step) % count;
    const std::wstring& file = series.files[size_t(series.shown)];
    // No box: the keys come through a hook. The next press goes on to the next source.
    if (ShowSourceFile(file))
        ShowSourceStatus(kTextUseArrowsOrF5);
    else
        SetStatusText(VcFormatText(L"%s %s", Text(kTextCannotOpenFile), file.c_str()).c_str());
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
    if (MayNotPage())
        return;
    bool& showsSource = FrameDocument().showsSource;
    showsSource = !showsSource;
    RedrawView();
    if (showsSource)
        ShowSourceStatus(kTextUseArrows);
    else
        SetStatusText(Text(kTextPressF5));
}
