#include "cli/SeriesCommand.h"

#include "cli/Failure.h"
#include "cli/Progress.h"
#include "cli/ResultFile.h"
#include "cli/ResultSet.h"
#include "picture/Picture.h"

#include "files/ImageFileText.h"
#include "series/DaylightSeries.h"
#include "series/ExposureSeries.h"

#include <ostream>

struct SeriesJob
{
    const CliOptions& options;
    const CliStreams& streams;
    Progress progress;
    std::string input;
    ResultSet files{};
    TargetComplaint problem{}; // of the first file that could not be written
    std::vector<std::string> written{};
};

// Writes one picture of the series.
static Outcome WriteOne(SeriesJob* job, const SBxPicBuf& picture, const char* name, int count)
{
    const std::string path = job->files.PathOf(name);
    ShowProgress(&job->progress, "Writing " + std::to_string(job->written.size() + 1) + " of " +
                                     std::to_string(count) + ": " + path);
    std::string note;
    job->problem = {path, SaveResult(picture, Picture(), path, job->input, kFormatTiff, &note,
                                     job->files.NextHeld())};
    if (job->problem.reason.empty())
        job->written.push_back(name);
    return FailedIf(!job->problem.reason.empty());
}

// Names in the order of fusion; empty when the series is not complete.
static std::vector<std::string> WriteSeries(SeriesJob* job, const std::string& kind,
                                            const SBxPicBuf& photo)
{
    SeriesControl control;
    control.cancelRequested = StopRequested;
    control.denoiseThreads = unsigned(job->options.threads);
    const bool single = kind == "single";
    const int count = single ? kExposures : kDaylightVariants;
    const SeriesSink write = [&](int, const SBxPicBuf& picture, const char* name)
    { return WriteOne(job, picture, name, count); };
    if (single)
    {
        const int made = MakeExposureSeries(photo, unsigned(job->options.numbers.denoiseStrength),
                                            write, control);
        return made == count ? job->written : std::vector<std::string>();
    }
    const DaylightMode mode = kind == "daylight-up" ? DaylightMode::Up : DaylightMode::Down;
    const std::vector<unsigned> keys = MakeDaylightSeries(photo, mode, write, control);
    std::vector<std::string> names;
    if (int(keys.size()) == count)
        for (const int number : DaylightOrder(mode, keys))
            names.push_back(job->written[size_t(number)]);
    return names;
}

// The names of all files, whatever their order.
static std::vector<std::string> NamesOf(const std::string& kind)
{
    std::vector<std::string> names;
    for (int i = 0; i < (kind == "single" ? kExposures : kDaylightVariants); i++)
        names.push_back(kind == "single" ? ExposureFileName(i) : DaylightFileName(i));
    return names;
}

// What went wrong, empty when it went well.
static TargetComplaint MakeSeries(SeriesJob* job, const std::string& kind,
                                  std::vector<std::string>* names)
{
    Picture photo;
    LoadReport report;
    if (LoadPicturePair(job->input.c_str(), photo.Record(), Picture().Record(), &report))
        return {job->input, LoadProblemText(report.problem)};
    *names = WriteSeries(job, kind, photo);
    photo.Free();
    if (!job->problem.reason.empty())
        return job->problem;
    if (names->empty())
        return {job->input, "not enough memory for a picture of this size"};
    return job->files.Finish();
}

int RunSeries(const CliOptions& options, const CliStreams& streams)
{
    const std::string& kind = options.inputs[0];
    if (kind != "single" && kind != "daylight-up" && kind != "daylight-down")
        return FailUsage(streams, "series", "unknown series '" + kind + "'");
    if (options.inputs.size() > 2)
        return FailUsage(streams, "series", "a series is made from one picture");

    SeriesJob job = {options, streams, StartProgress(options, streams), options.inputs[1]};
    TargetComplaint complaint = job.files.Open(options.outDir, NamesOf(kind), {job.input});
    if (!complaint.reason.empty())
        return FailTarget(streams, complaint);
    std::vector<std::string> names;
    complaint = MakeSeries(&job, kind, &names);
    EndProgress(&job.progress);
    if (!complaint.reason.empty() && StopRequested())
        return Fail(streams, "", "stopped");
    if (!complaint.reason.empty())
        return Fail(streams, complaint.file, complaint.reason);
    for (const std::string& name : names)
        streams.out << name << "\n";
    return kExitDone;
}
