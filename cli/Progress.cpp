#include "cli/Progress.h"

#include "cli/ShownText.h"

#include <atomic>
#include <ostream>

static std::atomic<bool> g_stopRequested{false};

void RequestStop()
{
    g_stopRequested = true;
}

bool StopRequested()
{
    return g_stopRequested;
}

Progress StartProgress(const CliOptions& options, const CliStreams& streams)
{
    return {streams.terminal && !options.quiet ? &streams.err : nullptr, 0};
}

void ShowProgress(Progress* progress, const std::string& line)
{
    if (!progress->err)
        return;
    const std::string text = ShownText(line);
    // Cut to a narrow terminal, since a line that wraps cannot be rewritten; at a letter's start.
    size_t length = text.size() < 78 ? text.size() : 78;
    while (length > 0 && length < text.size() && (text[length] & 0xC0) == 0x80)
        length--;
    const int blanks = progress->length > int(length) ? progress->length - int(length) : 0;
    *progress->err << '\r' << text.substr(0, length) << std::string(size_t(blanks), ' ')
                   << std::flush;
    progress->length = int(length);
}

void EndProgress(Progress* progress)
{
    if (!progress->err || progress->length == 0)
        return;
    *progress->err << '\r' << std::string(size_t(progress->length), ' ') << '\r' << std::flush;
    progress->length = 0;
}
