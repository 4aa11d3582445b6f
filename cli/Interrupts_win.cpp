#include "cli/Interrupts.h"

#include "base/Win.h"
#include "cli/Progress.h"

// Files that are being written go by themselves when their program ends
// (FileReplaceSystem_win.cpp). Called on a thread of its own.
static BOOL WINAPI OnInterrupt(DWORD event)
{
    const bool key = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
    const bool goesOn = key && !StopRequested();
    RequestStop();
    return goesOn; // else the program ends when this returns
}

void WatchInterrupts()
{
    SetConsoleCtrlHandler(OnInterrupt, TRUE);
}
