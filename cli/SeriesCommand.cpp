#include "cli/SeriesCommand.h"

#include "cli/Failure.h"
#include "cli/Progress.h"
#include "cli/ResultFile.h"
#include "picture/Picture.h"

#include "files/ImageFileText.h"
#include "series/DaylightSeries.h"
#include "series/ExposureSeries.h"

#include <filesystem>
#include <ostream>

namespace fs = std::filesystem;

struct SeriesJob
{
    const CliOptions& options;
    const CliStreams& streams;
    Progress progress;
    std::string input;
    std::string problem, problemFile; // of the first file that could not be written
    std::vector<std::string> written;
};

// Writes one picture of the series.
static Outcome WriteOne(SeriesJob* job, const SBxPicBuf& picture, const char* name, int count)
{
    const std::string path = (fs::u8path(job->options.outDir) / fs::u8path(name)).u8string();
    ShowProgress(&job->progress, "Writing " + std::to_string(job->written.size() + 1) + " of " +
                                     std::to_string(count) + ": " + path);
    std::string note;
    job->problem = SaveResult(picture, Picture(), path, job->input, kFormatTiff, &note);
    job->problemFile = path;
    if (job->problem.empty())
        job->written.push_back(name);
    return FailedIf(!job->problem.empty());
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

int RunSeries(const CliOptions& options, const CliStreams& streams)
{
    const std::string& kind = options.inputs[0];
    if (kind != "single" && kind != "daylight-up" && kind != "daylight-down")
        return FailUsage(streams, "series", "unknown series '" + kind + "'");
    if (options.inputs.size() > 2)
        return FailUsage(streams, "series", "a series is made from one picture");

    SeriesJob job = {options, streams, StartProgress(options, streams), options.inputs[1], {},
                     {},      {}};
    Picture photo;
    LoadReport report;
    if (LoadPicturePair(job.input.c_str(), photo.Record(), Picture().Record(), &report))
        return Fail(streams, job.input, LoadProblemText(report.problem));
    std::error_code error;
    fs::create_directories(fs::u8path(options.outDir), error);
    const std::vector<std::string> names =
        error ? std::vector<std::string>() : WriteSeries(&job, kind, photo);
    photo.Free();
    EndProgress(&job.progress);
    if (error)
        return Fail(streams, options.outDir, "the folder cannot be made");
    if (!job.problem.empty())
        return Fail(streams, job.problemFile, job.problem);
    if (names.empty())
        return Fail(streams, StopRequested() ? "" : job.input,
                    StopRequested() ? "stopped" : "not enough memory for a picture of this size");
    for (const std::string& name : names)
        streams.out << name << "\n";
    return kExitDone;
}
