// Process entry of the window program.

#include "app/AppWindows_win.h"
#include "app/CommandIds.h"
#include "app/CommandsWnd.h"
#include "app/MainWnd.h"
#include "skin/SkinHooks_win.h"
#include "text/Strings.h"

#include <commctrl.h>
#include <objidl.h>

#include <gdiplus.h>
#include <shellapi.h>

#include <clocale>

// "Open with": the first argument is a picture. Its full path is kept, since dialogs change the
// current folder.
static void OpenFromCommandLine()
{
    int count = 0;
    wchar_t** arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    wchar_t path[kPathChars] = L"";
    if (arguments && count > 1 && GetFullPathNameW(arguments[1], kPathChars, path, nullptr) > 0)
        OpenPictureFile(path);
    LocalFree(arguments);
}

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, wchar_t*, int show)
{
    LoadLocalizedStrings();
    InitCommonControls();
    InstallSkin();
    wchar_t title[100] = L"", className[100] = L"";
    LoadStringW(instance, IDS_APP_TITLE, title, 100);
    LoadStringW(instance, IDS_WINDOW_CLASS, className, 100);
    RegisterMainWindowClass(instance, className);

    Gdiplus::GdiplusStartupInput input;
    ULONG_PTR token = 0;
    Gdiplus::GdiplusStartup(&token, &input, nullptr);
    int code = 0;
    if (InitInstance(instance, className, title, show))
    {
        OpenFromCommandLine();
        code = RunMessageLoop(LoadAcceleratorsW(instance, MAKEINTRESOURCEW(IDR_ACCELERATORS)));
    }
    RemoveSkin();
    Gdiplus::GdiplusShutdown(token);
    return code;
}
