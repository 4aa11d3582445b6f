#include "cli/Interrupts.h"

#include "cli/Progress.h"
#include "files/FileReplace.h"

#include <csignal>

#include <fcntl.h>
#include <unistd.h>

static void OnInterrupt(int number)
{
    if (!StopRequested())
    {
        RequestStop();
        return;
    }
    if (!AbandonReplacing())
        return; // names are changing hands this very moment; that is over soon
    std::signal(number, SIG_DFL);
    raise(number); // comes when the handler has ended
}

static void Watch(int number, void (*handler)(int))
{
    struct sigaction action = {};
    if (sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN)
        return;
    action = {}; // without SA_RESTART: who waits for a pipe that nobody fills is to wake up
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    sigaction(number, &action, nullptr);
}

// A standard stream that is closed would lend its number to the next file that is opened, and what
// the program says would go into a picture. In its place comes one that fails.
static void FillStandardStreams()
{
    for (int handle = STDIN_FILENO; handle <= STDERR_FILENO; handle++)
        if (fcntl(handle, F_GETFD) == -1)
            open("/dev/null", handle == STDIN_FILENO ? O_WRONLY : O_RDONLY); // the lowest free
}

void WatchInterrupts()
{
    FillStandardStreams();
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
        Watch(number, OnInterrupt);
    for (const int number : {SIGPIPE, SIGXFSZ})
        Watch(number, SIG_IGN);
}
