#include "cli/PhotoCommand.h"

#include "cli/Failure.h"
#include "cli/Progress.h"
#include "cli/ResultFile.h"
#include "cli/ShownText.h"
#include "cli/TargetCheck.h"

#include "base/Stopwatch.h"
#include "base/SystemFiles.h"
#include "files/ImageCodec.h"
#include "files/ImageFileText.h"
#include "picture/Picture.h"

#include <filesystem>
#include <iomanip>
#include <memory>
#include <ostream>
#include <set>
#include <sstream>

namespace fs = std::filesystem;

struct Photo
{
    std::string input, output;
    Picture picture, alpha, result;
    double readSeconds = 0.0, workSeconds = 0.0, writeSeconds = 0.0;
};

RunControl ControlOf(const PhotoProgress& progress, int steps)
{
    RunControl control;
    control.cancelled = progress.stopped;
    const auto done = std::make_shared<int>(0);
    control.progress = [=](int by)
    {
        *done += by;
        progress.show(double(*done) / steps);
    };
    return control;
}

// "name-vexa.ext" in the folder. An ending that cannot be written gives way to one that can.
static std::string ResultPath(const std::string& input, const std::string& folder)
{
    const fs::path path = fs::u8path(input);
    FormatId format;
    const std::string extension = path.extension().u8string();
    const bool writable = FormatOfResult(input, &format).empty();
    return (fs::u8path(folder) / fs::u8path(path.stem().u8string() + "-vexa" +
                                            (writable ? extension : std::string(".png"))))
        .u8string();
}

// Two inputs of one name would write one result over the other.
static std::string PlanOutputs(const CliOptions& options, std::vector<std::string>* outputs)
{
    if (options.output.empty() == options.outDir.empty())
        return "give either --output OUT or --out-dir DIR";
    if (!options.output.empty())
    {
        if (options.inputs.size() > 1)
            return "several pictures need --out-dir DIR instead of --output";
        outputs->push_back(options.output);
        return "";
    }
    std::set<std::string> taken;
    for (const std::string& input : options.inputs)
    {
        outputs->push_back(ResultPath(input, options.outDir));
        if (!taken.insert(PathKey(outputs->back())).second)
            return "'" + input + "' and another input would both become " + outputs->back();
    }
    return "";
}

// "Name: 42 %, 3 s left": the share of the photograph at hand.
static std::string ProgressText(const std::string& name, double share, const Stopwatch& watch)
{
    std::ostringstream text;
    text << name << ": " << int(share * 100.0) << " %";
    const double passed = watch.Seconds();
    if (share > 0.05 && passed > 0.5)
        text << ", " << int(passed / share * (1.0 - share) + 0.5) << " s left";
    return text.str();
}

static std::string MakePhoto(Photo* photo, Progress* progress, const PhotoWork& work)
{
    LoadReport report;
    const Stopwatch watch;
    if (LoadPicturePair(photo->input.c_str(), photo->picture.Record(), photo->alpha.Record(),
                        &report))
        return LoadProblemText(report.problem);
    photo->readSeconds = watch.Seconds();

    FormatId format;
    std::string problem = FormatOfResult(photo->output, &format);
    if (problem.empty())
        problem = FormatFits(format, photo->picture);
    if (!problem.empty())
        return problem + " (" + photo->output + ")";

    const Stopwatch working;
    PhotoProgress shown;
    shown.show = [&](double share)
    { ShowProgress(progress, ProgressText(photo->input, share, working)); };
    shown.stopped = StopRequested;
    problem = work(photo->result.Record(), photo->picture, shown);
    photo->workSeconds = working.Seconds();
    return StopRequested() ? "stopped" : problem;
}

static std::string WritePhoto(Photo* photo, std::string* note)
{
    FormatId format;
    FormatOfResult(photo->output, &format);
    const Stopwatch watch;
    photo->picture.Free();
    const std::string problem =
        SaveResult(photo->result, photo->alpha, photo->output, photo->input, format, note);
    photo->writeSeconds = watch.Seconds();
    return problem;
}

static void Report(const Photo& photo, const std::string& note, const CliOptions& options,
                   const CliStreams& streams)
{
    streams.out << ShownText(photo.output) << ": " << photo.result->width << " x "
                << photo.result->height << ShownText(note);
    if (options.times)
        streams.out << std::fixed << std::setprecision(2) << ", read in " << photo.readSeconds
                    << " s, computed in " << photo.workSeconds << " s, written in "
                    << photo.writeSeconds << " s";
    streams.out << std::endl;
}

// What is wrong with the places that the results are to go to; makes the folder for them.
static TargetComplaint PreparePlaces(const CliOptions& options,
                                     const std::vector<std::string>& outputs)
{
    FormatId format;
    for (const std::string& output : outputs)
        if (const std::string problem = FormatOfResult(output, &format); !problem.empty())
            return {output, problem};
    const TargetComplaint complaint = CheckCollisions(outputs, options.inputs);
    if (!complaint.reason.empty())
        return complaint;
    std::error_code error;
    if (!options.outDir.empty())
        fs::create_directories(fs::u8path(options.outDir), error);
    if (error)
        return {options.outDir, "the folder cannot be made: " + error.message()};
    return CheckPlaces(outputs);
}

// A photograph from its file to that of its result. A wish to stop counts until the last byte of
// the result is written.
static Outcome RunOnPhoto(Photo* photo, const CliOptions& options, const CliStreams& streams,
                          const PhotoWork& work)
{
    Progress progress = StartProgress(options, streams);
    std::string note, problem = MakePhoto(photo, &progress, work);
    std::string file = photo->input;
    if (problem.empty())
    {
        problem = WritePhoto(photo, &note);
        file = photo->output;
    }
    EndProgress(&progress);
    if (problem.empty() && !options.quiet)
        Report(*photo, note, options, streams);
    if (problem.empty())
        return Outcome::Done;
    if (StopRequested())
        return Outcome::Cancelled;
    Fail(streams, file, problem);
    return Outcome::Failed;
}

// "2 of 4 pictures done, 1 failed, 1 not tried"
static std::string Tally(size_t all, size_t done, size_t failed)
{
    std::string text =
        std::to_string(done) + " of " + std::to_string(all) + (all == 1 ? " picture" : " pictures");
    text += " done, " + std::to_string(failed) + " failed";
    if (done + failed < all)
        text += ", " + std::to_string(all - done - failed) + " not tried";
    return text;
}

int RunOnPhotos(const char* command, const CliOptions& options, const CliStreams& streams,
                const PhotoWork& work)
{
    std::vector<std::string> outputs;
    const std::string wrong = PlanOutputs(options, &outputs);
    if (!wrong.empty())
        return FailUsage(streams, command, wrong);
    const TargetComplaint complaint = PreparePlaces(options, outputs);
    if (!complaint.reason.empty())
        return FailTarget(streams, complaint);

    size_t done = 0, failed = 0;
    for (size_t i = 0; i < outputs.size() && !StopRequested(); ++i)
    {
        Photo photo;
        photo.input = options.inputs[i];
        photo.output = outputs[i];
        const Outcome outcome = RunOnPhoto(&photo, options, streams, work);
        done += outcome == Outcome::Done;
        failed += outcome == Outcome::Failed;
    }
    const bool several = outputs.size() > 1;
    if (done + failed < outputs.size())
        return Fail(streams, "",
                    "stopped" + (several ? ": " + Tally(outputs.size(), done, failed) : ""));
    if (several && failed > 0)
        return Fail(streams, "", Tally(outputs.size(), done, failed));
    if (several && !options.quiet)
        streams.out << outputs.size() << " pictures done" << std::endl;
    return failed > 0 ? kExitFailed : kExitDone;
}
