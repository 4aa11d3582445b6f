#include "cli/Failure.h"

#include "cli/ShownText.h"

#include <ostream>

int Fail(const CliStreams& streams, const std::string& file, const std::string& reason)
{
    streams.err << "plenoviz-cli: " << ShownText(file) << (file.empty() ? "" : ": ")
                << ShownText(reason) << std::endl;
    return kExitFailed;
}

int FailUsage(const CliStreams& streams, const char* command, const std::string& reason)
{
    Fail(streams, "", reason + "; see plenoviz-cli " + command + " --help");
    return kExitUsage;
}
