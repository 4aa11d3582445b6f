#include "cli/ResultSet.h"

#include "files/ImageFileText.h"

namespace fs = std::filesystem;

ResultSet::~ResultSet()
{
    for (ReplacingFile& file : held)
        CancelReplacing(&file);
    std::error_code ignored;
    for (fs::path made = folder; !madeFolder.empty(); made = made.parent_path())
    {
        fs::remove(made, ignored); // only if it is empty
        if (made == madeFolder)
            return;
    }
}

std::string ResultSet::MakeFolder()
{
    std::error_code error;
    fs::path made;
    for (fs::path top = folder; !top.empty() && !fs::exists(top, error);)
    {
        made = top;
        top = top.has_relative_path() ? top.parent_path() : fs::path();
    }
    error.clear();
    fs::create_directories(folder, error);
    madeFolder = made;
    if (error)
        return "the folder cannot be made: " + error.message();
    return fs::is_directory(folder, error) ? "" : "this is not a folder";
}

TargetComplaint ResultSet::Open(const std::string& folderPath,
                                const std::vector<std::string>& names,
                                const std::vector<std::string>& inputs)
{
    folder = fs::u8path(folderPath).lexically_normal();
    if (!folder.has_filename() && folder.has_relative_path()) // ends in a slash
        folder = folder.parent_path();
    std::vector<std::string> paths;
    for (const std::string& name : names)
        paths.push_back(PathOf(name));
    const TargetComplaint complaint = CheckCollisions(paths, inputs);
    if (!complaint.reason.empty())
        return complaint;
    const std::string problem = MakeFolder();
    return problem.empty() ? CheckPlaces(paths) : TargetComplaint{folderPath, problem};
}

std::string ResultSet::PathOf(const std::string& name) const
{
    return (folder / fs::u8path(name)).u8string();
}

ReplacingFile* ResultSet::NextHeld()
{
    held.emplace_back();
    return &held.back();
}

TargetComplaint ResultSet::Finish()
{
    const int failed = FinishTogether(&held);
    if (failed < 0)
    {
        held.clear();
        madeFolder.clear();
        return {};
    }
    SaveReport report;
    report.problem = SaveProblem::CannotWrite;
    report.systemError = held[size_t(failed)].error;
    return {held[size_t(failed)].target.u8string(), SaveReportText(report)};
}
