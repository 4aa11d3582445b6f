#include "app/FileDialogsDlg.h"

#include "app/AppWindows_win.h"
#include "app/FileDialogsIds.h"
#include "app/FileNames.h"
#include "app/Frame_win.h"
#include "base/Format_win.h"
#include "base/SystemFiles.h"
#include "files/ImageFile.h"
#include "text/Strings.h"
#include "tools/Settings.h"

#include <cderr.h>
#include <commctrl.h>
#include <commdlg.h>
#include <dlgs.h>

#include <algorithm>
#include <cerrno>
#include <cwchar>

static constexpr DWORD kDialogFlags =
    OFN_EXPLORER | OFN_HIDEREADONLY | OFN_NOREADONLYRETURN | OFN_OVERWRITEPROMPT;
static constexpr int kNameChars = 1024;   // of a single file
static constexpr int kSeriesChars = 4096; // of a folder and the names in it
static constexpr int kLowestQuality = 10, kHighestQuality = 100;

static std::string Utf8(const std::wstring& text)
{
    const int length = WideCharToMultiByte(CP_UTF8, 0, text.c_str(), int(text.size()), nullptr, 0,
                                           nullptr, nullptr);
    std::string utf8(size_t(length), 0);
    WideCharToMultiByte(CP_UTF8, 0, text.c_str(), int(text.size()), utf8.data(), length, nullptr,
                        nullptr);
    return utf8;
}

// What all three dialogs have in common. `name` goes in and comes out.
static OPENFILENAMEW FileDialog(HWND owner, const wchar_t* title, const std::wstring& filter,
                                wchar_t* name, int capacity)
{
    OPENFILENAMEW dialog = {};
    dialog.lStructSize = sizeof dialog;
    dialog.hwndOwner = owner;
    dialog.lpstrFilter = filter.c_str();
    dialog.nFilterIndex = 1;
    dialog.lpstrFile = name;
    dialog.nMaxFile = DWORD(capacity);
    dialog.lpstrTitle = title;
    dialog.Flags = kDialogFlags;
    return dialog;
}

bool AskForPicture(HWND owner, const wchar_t* title, std::wstring* path)
{
    wchar_t name[kNameChars] = L"";
    const std::wstring filter = DialogFilter({OpenPattern(false)});
    OPENFILENAMEW dialog = FileDialog(owner, title, filter, name, kNameChars);
    if (!GetOpenFileNameW(&dialog))
        return false;
    *path = name;
    return true;
}

PickedFiles AskForSeries(HWND owner)
{
    wchar_t names[kSeriesChars] = L"";
    const std::wstring filter = DialogFilter({OpenPattern(true)});
    OPENFILENAMEW dialog = FileDialog(owner, Text(kTextSelectSource), filter, names, kSeriesChars);
    dialog.Flags |= OFN_ALLOWMULTISELECT;
    PickedFiles picked;
    if (!GetOpenFileNameW(&dialog))
    {
        picked.tooMany = CommDlgExtendedError() == FNERR_BUFFERTOOSMALL;
        return picked;
    }
    // The folder, then the names, each with its end; a single file is one full path.
    const std::wstring folder = names;
    for (const wchar_t* name = names + folder.size() + 1; *name; name += std::wcslen(name) + 1)
        picked.paths.push_back(VcFormatText(L"%s\\%s", folder.c_str(), name));
    picked.onlyOne = picked.paths.empty();
    return picked;
}

bool LoadSilently(const wchar_t* path, Picture* picture, Picture* alpha)
{
    std::wstring chosen = path;
    if (chosen.empty() && !AskForPicture(GetActiveWindow(), Text(kTextLoadItem), &chosen))
        return false;
    return !LoadPicturePair(Utf8(chosen).c_str(), picture->Record(), alpha->Record());
}

bool LoadForDocument(const wchar_t* path, Picture* picture, Picture* alpha)
{
    const bool loaded = LoadSilently(path, picture, alpha);
    const SBxPicBuf& found = *picture;
    const bool fits = loaded && (found.components == 1 || found.components == 3) &&
                      (found.bitsPerComponent == 8 || found.bitsPerComponent == 16);
    if (fits)
        return true;
    picture->Free();
    alpha->Free();
    MessageBoxW(g_hwndMain, Text(kTextFormatNotSupported), L"", MB_OK);
    return false;
}

// Puts the trackbar, the number and the stored quality on one value.
static void ShowQuality(HWND row, int quality)
{
    g_jpegQuality = quality;
    SendDlgItemMessageW(row, IDC_QUALITY_SLIDER, TBM_SETPOS, TRUE, quality);
    SetDlgItemInt(row, IDC_QUALITY_VALUE, UINT(quality), FALSE);
}

// The row keeps the bits of the picture, which decide what is in the box of types.
static UINT_PTR OnQualityInit(HWND row, const OPENFILENAMEW* dialog)
{
    SetWindowLongPtrW(row, DWLP_USER, dialog->lCustData);
    SetDlgItemTextW(row, IDC_QUALITY_LABEL, Text(kTextJpegQuality));
    SendDlgItemMessageW(row, IDC_QUALITY_SLIDER, TBM_SETRANGE, TRUE,
                        MAKELPARAM(kLowestQuality, kHighestQuality));
    SendDlgItemMessageW(row, IDC_QUALITY_SLIDER, TBM_SETPAGESIZE, 0, 0);
    ShowQuality(row, std::max(g_jpegQuality, kLowestQuality));
    return 0; // the keyboard stays with the name
}

// The stored number may step one past the trackbar's range, which stops by itself.
static UINT_PTR OnQualityScroll(HWND row, WPARAM wParam)
{
    const int position = int(SendDlgItemMessageW(row, IDC_QUALITY_SLIDER, TBM_GETPOS, 0, 0));
    switch (LOWORD(wParam))
    {
    case TB_LINEUP:
    case TB_PAGEUP: ShowQuality(row, position - 1); break;
    case TB_LINEDOWN:
    case TB_PAGEDOWN: ShowQuality(row, position + 1); break;
    case TB_THUMBTRACK:
    case TB_THUMBPOSITION: ShowQuality(row, HIWORD(wParam)); break;
    }
    return 0;
}

static RECT PlaceIn(HWND row, HWND control)
{
    RECT place = {};
    GetWindowRect(control, &place);
    MapWindowPoints(nullptr, row, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

static void SpanControl(HWND row, int control, int left, int right)
{
    const HWND hwnd = GetDlgItem(row, control);
    const RECT now = PlaceIn(row, hwnd);
    SetWindowPos(hwnd, nullptr, left, now.top, right - left, now.bottom - now.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

static int TextWidth(HWND control)
{
    wchar_t text[kNameChars];
    const int length = GetWindowTextW(control, text, kNameChars);
    const HDC dc = GetDC(control);
    const HGDIOBJ before =
        SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
    SIZE size = {};
    GetTextExtentPoint32W(dc, text, length, &size);
    SelectObject(dc, before);
    ReleaseDC(control, dc);
    return size.cx;
}

// The label begins below the one of the file types, the slider's channel and the percent sign span
// their box, unless the label needs more room. Where these are is the system's choice and known
// when the dialog is complete.
static void AlignQualityRow(HWND row)
{
    const HWND typeLabel = GetDlgItem(GetParent(row), stc2);
    const HWND typeBox = GetDlgItem(GetParent(row), cmb1);
    if (!typeLabel || !typeBox)
        return;
    const int labelLeft = PlaceIn(row, typeLabel).left;
    const RECT box = PlaceIn(row, typeBox);
    const RECT value = PlaceIn(row, GetDlgItem(row, IDC_QUALITY_VALUE));
    const RECT percent = PlaceIn(row, GetDlgItem(row, IDC_QUALITY_PERCENT));
    const HWND slider = GetDlgItem(row, IDC_QUALITY_SLIDER);
    RECT channel = {};
    SendMessageW(slider, TBM_GETCHANNELRECT, 0, reinterpret_cast<LPARAM>(&channel));
    const int sliderLeft = std::max(int(box.left - channel.left),
                                    labelLeft + TextWidth(GetDlgItem(row, IDC_QUALITY_LABEL)));
    const int percentLeft = box.right - (percent.right - percent.left);
    const int valueLeft = percentLeft - (percent.left - value.left);
    if (sliderLeft >= valueLeft)
        return; // an unusual dialog: the row stays as it was drawn
    SpanControl(row, IDC_QUALITY_LABEL, labelLeft, sliderLeft);
    SpanControl(row, IDC_QUALITY_SLIDER, sliderLeft, valueLeft);
    SpanControl(row, IDC_QUALITY_VALUE, valueLeft, valueLeft + int(value.right - value.left));
    SpanControl(row, IDC_QUALITY_PERCENT, percentLeft, box.right);
}

static void EnableQualityRow(HWND row)
{
    const LRESULT entry = SendDlgItemMessageW(GetParent(row), cmb1, CB_GETCURSEL, 0, 0);
    const std::vector<SaveType> types = SaveTypesFor(int(GetWindowLongPtrW(row, DWLP_USER)));
    const bool jpeg =
        entry >= 0 && size_t(entry) < types.size() && types[size_t(entry)].format == kFormatJpeg;
    for (const int control :
         {IDC_QUALITY_LABEL, IDC_QUALITY_SLIDER, IDC_QUALITY_VALUE, IDC_QUALITY_PERCENT})
        EnableWindow(GetDlgItem(row, control), jpeg);
}

// The dialog would ask about the name as it was typed; with the ending it will get in the file-name
// box, it asks about the file that is really meant. True when the name has changed.
static bool CompleteName(HWND row, const OFNOTIFYW* notification)
{
    const OPENFILENAMEW* dialog = notification->lpOFN;
    const SaveTarget target =
        SaveTargetOf(dialog->lpstrFile, int(dialog->nFilterIndex), int(dialog->lCustData));
    if (target.path == dialog->lpstrFile)
        return false;
    const DWORD attributes = GetFileAttributesW(target.path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return false;
    SendMessageW(GetParent(row), CDM_SETCONTROLTEXT, cmb13,
                 reinterpret_cast<LPARAM>(target.path.c_str()));
    return true;
}

static UINT_PTR OnQualityNotify(HWND row, const OFNOTIFYW* notification)
{
    EnableQualityRow(row);
    if (notification->hdr.code == CDN_INITDONE)
        AlignQualityRow(row);
    if (notification->hdr.code == CDN_FILEOK && CompleteName(row, notification))
    {
        // Not this time: OK again, with the full name, brings the question.
        SetWindowLongPtrW(row, DWLP_MSGRESULT, 1);
        PostMessageW(GetParent(row), WM_COMMAND, IDOK, 0);
        return 1;
    }
    return 0;
}

static UINT_PTR CALLBACK QualityHook(HWND row, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_INITDIALOG: return OnQualityInit(row, reinterpret_cast<const OPENFILENAMEW*>(lParam));
    case WM_HSCROLL: return OnQualityScroll(row, wParam);
    case WM_NOTIFY: return OnQualityNotify(row, reinterpret_cast<const OFNOTIFYW*>(lParam));
    default: return 0;
    }
}

static bool AskForTarget(HWND owner, int bitsPerComponent, const wchar_t* source,
                         SaveTarget* target)
{
    ReadSettings(SettingGroup::SaveDialog, &FrameSettings());
    g_jpegQuality = FrameSettings().jpegQuality;
    wchar_t name[kNameChars];
    VcFormat(name, kNameChars, L"%s", ProposedSaveName(source).c_str());
    std::vector<std::wstring> patterns;
    const std::vector<SaveType> types = SaveTypesFor(bitsPerComponent);
    for (const SaveType& type : types)
        patterns.push_back(type.pattern);
    const std::wstring filter = DialogFilter(patterns);

    OPENFILENAMEW dialog = FileDialog(owner, Text(kTextSaveAs), filter, name, kNameChars);
    if (const int type = PreselectedSaveType(source, bitsPerComponent))
    {
        dialog.nFilterIndex = DWORD(type);
        dialog.lpstrDefExt = types[size_t(type) - 1].extension.c_str() + 1; // without the dot
    }
    dialog.hInstance = GetModuleHandleW(nullptr);
    dialog.lCustData = bitsPerComponent;
    dialog.lpfnHook = QualityHook;
    dialog.lpTemplateName = MAKEINTRESOURCEW(IDD_JPEG_QUALITY);
    dialog.Flags |= OFN_ENABLESIZING | OFN_ENABLEHOOK | OFN_ENABLETEMPLATE;
    if (!GetSaveFileNameW(&dialog))
        return false;
    *target = SaveTargetOf(name, int(dialog.nFilterIndex), bitsPerComponent);
    return true;
}

static const struct
{
    SaveProblem problem;
    TextId text;
} kSaveProblems[] = {
    {SaveProblem::OutOfMemory, kTextSaveMemory},   {SaveProblem::UnknownFormat, kTextSaveFormat},
    {SaveProblem::DepthNotHeld, kTextSaveDepth},   {SaveProblem::CannotCreate, kTextSaveCreate},
    {SaveProblem::EncoderFailed, kTextSaveEncode}, {SaveProblem::CannotWrite, kTextSaveWrite},
};

// The errors of files that a user can do something about, as the system calls them.
static const struct
{
    int number; // errno
    DWORD system;
} kFileErrors[] = {
    {ENOSPC, ERROR_DISK_FULL}, {EACCES, ERROR_ACCESS_DENIED},  {EROFS, ERROR_WRITE_PROTECT},
    {EIO, ERROR_IO_DEVICE},    {ENOENT, ERROR_PATH_NOT_FOUND}, {ENAMETOOLONG, ERROR_BAD_PATHNAME},
};

// Why a picture was not saved: in the user's language, and in the system's words what is behind it.
static std::wstring SaveReason(const SaveReport& report)
{
    std::wstring reason;
    for (const auto& row : kSaveProblems)
        if (row.problem == report.problem)
            reason = Text(row.text);
    for (const auto& row : kFileErrors)
        if (row.number == report.systemError)
            reason += L"\n" + SystemErrorText(row.system);
    return reason;
}

static void TellFailure(HWND owner, TextId what, const wchar_t* path, const std::wstring& reason)
{
    const std::wstring text = VcFormatText(L"%s\n%s\n%s", Text(what), path, reason.c_str());
    MessageBoxW(owner, text.c_str(), Text(kTextError), MB_OK | MB_ICONERROR);
}

static SaveReport TrySave(const SBxPicBuf& picture, const SBxPicBuf& alpha,
                          const std::string& target, const std::string& source, FormatId format)
{
    SaveReport report;
    try
    {
        SavePicturePair(picture, alpha, target.c_str(), source.c_str(), format, &report);
    }
    catch (const UnsupportedImageFormat&)
    {
        report.written = false;
    }
    catch (const ImageReadError&)
    {
        report.written = false;
    }
    return report;
}

// Writes the picture; tells what went wrong. A source that cannot be read any more costs its
// metadata, never the result.
static bool WritePicture(HWND owner, const SBxPicBuf& picture, const SBxPicBuf& alpha,
                         const wchar_t* source, const SaveTarget& target)
{
    std::string path, from;
    if (SavePathFromWide(&path, target.path.c_str(), PathUse::Target) != Outcome::Done)
    {
        TellFailure(owner, kTextFormatNotSupported, target.path.c_str(), L"");
        return false;
    }
    if (*source && SavePathFromWide(&from, source, PathUse::Source) != Outcome::Done)
        from.clear();
    SaveReport report = TrySave(picture, alpha, path, from, target.format);
    if (!report.written && (report.problem == SaveProblem::SourceFormat ||
                            report.problem == SaveProblem::SourceUnreadable))
    {
        TellFailure(owner, kTextCannotOpenFile, source, L"");
        report = TrySave(picture, alpha, path, "", target.format);
    }
    if (!report.written)
        TellFailure(owner, kTextCannotOpenFile, target.path.c_str(), SaveReason(report));
    return report.written;
}

bool SavePictureAs(HWND owner, const SBxPicBuf& picture, const SBxPicBuf& alpha,
                   const wchar_t* source, std::wstring* path)
{
    if (!picture.data)
        return false;
    SaveTarget target;
    if (!path->empty())
        target = SaveTargetOf(*path, 0, picture.bitsPerComponent);
    else if (!AskForTarget(owner, picture.bitsPerComponent, source, &target))
        return false;
    if (!WritePicture(owner, picture, alpha, source, target))
        return false;
    FrameSettings().jpegQuality = g_jpegQuality;
    *path = target.path;
    return true;
}
