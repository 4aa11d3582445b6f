#include "cli/SampleCommand.h"

#include "cli/Failure.h"
#include "cli/Progress.h"
#include "cli/ResultSet.h"
#include "cli/ShownText.h"

#include "base/SystemFiles.h"
#include "files/ExifBlock.h"
#include "files/ImageFile.h"
#include "files/ImageFileText.h"
#include "sample/Exposure.h"

#include <memory>
#include <ostream>

struct Frame
{
    int stops;             // from the middle of the series
    ExifRational exposure; // seconds
    std::string name;
};

// The middle of the series is 1/64 s, so that every frame has a round time.
static ExifRational ExposureTime(int stops)
{
    ExifRational time = {1, 64};
    for (; stops < 0; stops++)
        time.denominator *= 2;
    for (; stops > 0; stops--)
        if (time.denominator > 1)
            time.denominator /= 2;
        else
            time.numerator *= 2;
    return time;
}

static std::string TimeText(const ExifRational& time)
{
    return std::to_string(time.numerator) +
           (time.denominator > 1 ? "/" + std::to_string(time.denominator) : "") + " s";
}

static std::vector<Frame> PlanFrames(int count)
{
    std::vector<Frame> frames;
    for (int i = 0; i < count; i++)
    {
        const int stops = 2 * i - (count - 1);
        frames.push_back({stops, ExposureTime(stops), "sample_" + std::to_string(i + 1) + ".jpg"});
    }
    return frames;
}

static std::vector<uint8_t> ExifOf(const Frame& frame)
{
    ExifFields fields;
    fields.make = "Plenoviz";
    fields.model = "Sample scene";
    fields.software = "plenoviz-cli " PLENOVIZ_VERSION;
    fields.exposureTime = frame.exposure;
    fields.fNumber = {8, 1};
    fields.iso = 100;
    fields.biasNumerator = frame.stops;
    fields.biasDenominator = 1;
    return MakeExifBlock(fields);
}

static std::string SaveFrame(ResultSet* files, const SampleRadiance& scene, const Frame& frame)
{
    std::string path;
    if (SavePathFromUtf8(&path, files->PathOf(frame.name).c_str(), PathUse::Target) !=
        Outcome::Done)
        return "this name is too long or has letters that the system cannot express";
    const Picture picture = ExposeSample(scene, frame.stops);
    if (picture.Empty())
        return "not enough memory for the picture";
    SaveReport report;
    SaveExtras extras;
    extras.exif = ExifOf(frame);
    extras.stopped = StopRequested;
    extras.held = files->NextHeld();
    SavePicturePair(picture, Picture(), path.c_str(), "", kFormatJpeg, &report, &extras);
    return report.written ? "" : SaveReportText(report);
}

// What went wrong, empty when it went well.
static TargetComplaint WriteFrames(ResultSet* files, const std::vector<Frame>& frames,
                                   const CliOptions& options, Progress* progress)
{
    ShowProgress(progress, "Rendering the scene");
    const SampleRadiance scene = RenderSampleScene(options.width, options.height);
    for (size_t i = 0; i < frames.size(); i++)
    {
        ShowProgress(progress,
                     "Writing " + std::to_string(i + 1) + " of " + std::to_string(frames.size()));
        if (StopRequested())
            return {"", "stopped"};
        const std::string problem = SaveFrame(files, scene, frames[i]);
        if (!problem.empty())
            return {files->PathOf(frames[i].name), problem};
    }
    return files->Finish();
}

int RunSample(const CliOptions& options, const CliStreams& streams)
{
    const std::vector<Frame> frames = PlanFrames(options.frames);
    std::vector<std::string> names;
    for (const Frame& frame : frames)
        names.push_back(frame.name);
    ResultSet files;
    TargetComplaint complaint = files.Open(options.outDir, names, {});
    if (!complaint.reason.empty())
        return FailTarget(streams, complaint);

    Progress progress = StartProgress(options, streams);
    complaint = WriteFrames(&files, frames, options, &progress);
    EndProgress(&progress);
    if (!complaint.reason.empty() && StopRequested())
        return Fail(streams, "", "stopped");
    if (!complaint.reason.empty())
        return Fail(streams, complaint.file, complaint.reason);
    for (const Frame& frame : frames)
        if (!options.quiet)
            streams.out << ShownText(files.PathOf(frame.name)) << " (" << TimeText(frame.exposure)
                        << ")\n";
    return kExitDone;
}
