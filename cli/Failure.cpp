#include "cli/Failure.h"

#include "cli/ShownText.h"

#include <ostream>

int Fail(const CliStreams& streams, const std::string& file, const std::string& reason)
{
    streams.err << "plenoviz-cli: " << ShownText(file) << (file.empty() ? "" : ": ")
                << ShownText(reason) << std::endl;
    return kExitFailed;
}

void TellNotes(const CliStreams& streams, const CliOptions& options, const std::string& file,
               const LoadReport& report)
{
    if (!options.quiet || report.damaged)
        for (const std::string& note : report.notes)
            streams.err << "plenoviz-cli: " << file << ": " << note << std::endl;
}

LoadOptions LoadOptionsOf(const CliOptions& options)
{
    LoadOptions reading;
    reading.acceptDamaged = options.acceptDamaged;
    reading.megapixelLimit = options.megapixelLimit;
    return reading;
}

int FailUsage(const CliStreams& streams, const char* command, const std::string& reason)
{
    Fail(streams, "", reason + "; see plenoviz-cli " + command + " --help");
    return kExitUsage;
}
