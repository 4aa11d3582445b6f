#include "app/CommandsWnd.h"

#include "Version.h"
#include "app/AppWindows_win.h"
#include "app/CommandIds.h"
#include "app/FileDialogsDlg.h"
#include "app/FrameView_win.h"
#include "app/Frame_win.h"
#include "app/OptionsDlg.h"
#include "app/SourcePaging_win.h"
#include "app/ToolbarWnd.h"
#include "app/ToolsWnd.h"
#include "base/Format_win.h"
#include "text/ProfileStore.h"
#include "text/Strings.h"
#include "tools/Settings_win.h"

#include <commctrl.h>

// The dialog of a tool that has made its result stays open until its pictures go to something else.
static void CloseFinishedTool()
{
    if (g_hwndActiveTool && FrameDocument().phase == DocumentPhase::Idle)
        DestroyWindow(g_hwndActiveTool);
}

bool MayLoseResult()
{
    const bool may = !FrameDocument().unsaved ||
                     MessageBoxW(g_hwndMain, Text(kTextUnsavedQuestion), Text(kTextWarning),
                                 MB_YESNO | MB_ICONASTERISK) == IDYES;
    if (may)
        CloseFinishedTool();
    return may;
}

void SetStatusText(const wchar_t* text)
{
    SendMessageW(g_hwndStatus, SB_SETTEXTW, 0, reinterpret_cast<LPARAM>(text));
}

void EnableToolCommands(bool enable)
{
    ToolCommandsEnabled(&FrameCommands(), enable, FrameDocument().series.chosenByUser);
    ShowCommandStates();
}

static void SetTitle(const wchar_t* path)
{
    SetWindowTextW(g_hwndMain, VcFormatText(L"Plenoviz - %s", path).c_str());
}

// The photograph at 100 %, its centre in the middle.
static void ShowOpened()
{
    const Picture& source = FrameDocument().source;
    UpdateViewArea();
    ZoomTo100(&g_view, source);
    SetZoomBoxText(ZoomText(g_view.state.scale).c_str());
    ShowCommandStates();
    ShowSource(source);
}

bool OpenPictureFile(const wchar_t* path)
{
    Picture picture, alpha;
    const HCURSOR before = SetCursor(LoadCursorW(nullptr, MAKEINTRESOURCEW(32514))); // hourglass
    // Into pictures of its own: when it fails, the photograph that is open stays as it is.
    const bool loaded = LoadForDocument(path, &picture, &alpha);
    SetCursor(before);
    if (!loaded)
        return false;
    ForgetViewPicture(&g_view);
    TakeSource(&FrameDocument(), std::move(picture), std::move(alpha), path);
    PictureOpened(&FrameCommands());
    SetTitle(path);
    SetStatusText(L"");
    ShowOpened();
    return true;
}

static void OnOpen()
{
    std::wstring path;
    if (MayLoseResult() && AskForPicture(g_hwndMain, Text(kTextSelectSource), &path))
        OpenPictureFile(path.c_str());
}

static void OnSaveAs()
{
    Document& document = FrameDocument();
    std::wstring path;
    if (!SavePictureAs(g_hwndMain, document.result, document.alpha, document.file.c_str(), &path))
        return;
    SetTitle(path.c_str());
    document.unsaved = false;
    if (WriteSettings(SettingGroup::SaveDialog, &FrameSettings()) != Outcome::Done)
        TellSettingsUnsaved(g_hwndMain);
}

static void OnClose()
{
    if (!MayLoseResult())
        return;
    SetStatusText(Text(kTextNothing));
    ForgetSource(&FrameDocument());
    PictureClosed(&FrameCommands());
    ForgetViewPicture(&g_view);
    ShowCommandStates();
    SetWindowTextW(g_hwndMain, L"Plenoviz");
    SetFocus(g_hwndMain); // the zoom box may have had it
    ShowNothing();
}

// By the same way as the cross of the window, with its question about unsaved work.
static void OnExit()
{
    SendMessageW(g_hwndMain, WM_CLOSE, 0, 0);
}

// The packages bring the libraries' terms; a program that lies alone does not promise them.
static std::wstring NoticesHint()
{
    const std::wstring folder = ProgramFolder() + L"\\Notices";
    const DWORD attributes = GetFileAttributesW(folder.c_str());
    return attributes == INVALID_FILE_ATTRIBUTES ? L""
                                                 : VcFormatText(L"\n\n%s", Text(kTextNotices));
}

static void OnAbout()
{
    const std::wstring text = VcFormatText(
        L"Plenoviz, Version " PLENOVIZ_SHORT_VERSION L"\n"
        L"%s\n\n"
        L"%s\n"
        L"FreeImage (FreeImage Public License 1.0)\n"
        L"oneTBB (Apache License 2.0)\n"
        L"libjpeg-turbo (BSD; based in part on the work of the Independent JPEG Group)\n"
        L"libpng (libpng License 2.0)\n"
        L"LibTIFF (libtiff License)\n"
        L"libwebp, Imath (BSD)\n"
        L"LibRaw (CDDL 1.0)\n"
        L"zlib (zlib License)%s",
        Text(kTextPurpose), Text(kTextLibraries), NoticesHint().c_str());
    MessageBoxW(g_hwndMain, text.c_str(), Text(kTextAbout), MB_ICONASTERISK);
}

static void OnOptions()
{
    ShowOptionsDialog(g_hwndMain);
}

static void OnZoomIn()
{
    if (ZoomIn(&g_view, ShownPicture()))
        ZoomChanged();
}

static void OnZoomOut()
{
    if (ZoomOut(&g_view, ShownPicture()))
        ZoomChanged();
}

static void OnZoom100()
{
    UpdateViewArea();
    if (ZoomTo100(&g_view, ShownPicture()))
        ZoomChanged();
}

static void OnZoomFit()
{
    UpdateViewArea();
    if (ZoomToFit(&g_view, ShownPicture()))
        ZoomChanged();
}

static void OnZoomPreset()
{
    const int index = int(SendMessageW(g_hwndZoomCombo, CB_GETCURSEL, 0, 0));
    if (!IsComputing() && ZoomToPreset(&g_view, ShownPicture(), index))
        ZoomChanged();
}

void ApplyTypedZoom()
{
    if (IsComputing())
        return;
    wchar_t text[16] = L"";
    GetWindowTextW(g_hwndZoomCombo, text, 11); // ten characters count
    if (ZoomToTyped(&g_view, ShownPicture(), text))
        ZoomChanged();
    else
        SetZoomBoxText(ZoomText(g_view.state.scale).c_str());
}

static void OnHelp() {} // the key is taken, so that it types nothing

struct HandlerRow
{
    int id;
    void (*run)();
};

#define COMMAND(id, handler, ...) {id, handler},
static const HandlerRow kHandlers[] = {
#include "app/Commands.inl"
};
#undef COMMAND

// Menu, toolbar and keys all end here. Keys reach it even where a button is grey, so the state is
// asked again; and the zoom box sends more than its choice.
LRESULT RunCommand(HWND, int id, int notification)
{
    if (!IsCommandEnabled(FrameCommands(), id) ||
        (id == ID_ZOOM_COMBO && notification != CBN_SELCHANGE))
        return 0;
    for (const HandlerRow& row : kHandlers)
        if (row.id == id)
            row.run();
    return 0;
}
