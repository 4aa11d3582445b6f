#pragma once

// The only way to <windows.h>, for files that end in Dlg, Wnd or _win: wide functions, no min and
// max macros, and nothing that is not asked for by name.

#ifndef UNICODE
#define UNICODE
#endif
#ifndef _UNICODE
#define _UNICODE
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
