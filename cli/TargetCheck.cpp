#include "cli/TargetCheck.h"

#include "cli/Failure.h"

#include "base/SystemFiles.h"
#include "files/FileReplace.h"
#include "files/ImageFileText.h"

#include <map>
#include <set>

static const char kSameResult[] = "another result would be written to the same file";

TargetComplaint CheckCollisions(const std::vector<std::string>& outputs,
                                const std::vector<std::string>& inputs)
{
    std::map<FileIdentity, std::string> read;
    FileIdentity identity;
    for (const std::string& input : inputs)
        if (IdentifyFile(&identity, input.c_str()))
            read.emplace(identity, input);
    std::set<FileIdentity> taken;
    std::set<std::string> names;
    for (const std::string& output : outputs)
    {
        if (!names.insert(PathKey(output)).second)
            return {output, kSameResult};
        if (!IdentifyFile(&identity, output.c_str()))
            continue;
        const auto input = read.find(identity);
        if (input != read.end())
            return {output, "the result would overwrite the input '" + input->second + "'"};
        if (!taken.insert(identity).second)
            return {output, kSameResult};
    }
    return {};
}

TargetComplaint CheckPlaces(const std::vector<std::string>& outputs)
{
    for (const std::string& output : outputs)
    {
        std::string path;
        if (SavePathFromUtf8(&path, output.c_str(), PathUse::Target) != Outcome::Done)
            return {output, "this name is too long or has letters that the system cannot express"};
        SaveReport report;
        report.problem = SaveProblem::CannotCreate;
        report.systemError = CheckTarget(path.c_str());
        if (report.systemError)
            return {output, SaveReportText(report)};
    }
    return {};
}

int FailTarget(const CliStreams& streams, const TargetComplaint& complaint)
{
    Fail(streams, complaint.file, complaint.reason);
    return kExitUsage;
}
