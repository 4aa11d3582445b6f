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

#include <iterator>
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

// What a hand does to the camera from one exposure to the next: turns and metres. The middle one is
// where the camera of a tripod would be.
struct HandMotion
{
    float yaw, roll, aside, up;
};
constexpr HandMotion kHand[] = {
    {0.0011f, -0.0007f, 0.002f, -0.001f},
    {-0.0009f, 0.0010f, 0.001f, 0.002f},
    {0.0006f, 0.0008f, -0.002f, 0.002f},
    {-0.0013f, -0.0009f, 0.001f, 0.001f},
    {0.0f, 0.0f, 0.0f, 0.0f},
    {0.0015f, 0.0011f, -0.001f, -0.002f},
    {-0.0007f, -0.0012f, 0.002f, 0.001f},
    {0.0010f, 0.0006f, -0.001f, 0.002f},
    {-0.0014f, 0.0009f, 0.001f, -0.002f},
};

static SampleCamera CameraInHand(size_t frame, size_t frames)
{
    const size_t middle = std::size(kHand) / 2;
    const HandMotion& motion = kHand[middle - frames / 2 + frame];
    SampleCamera camera;
    camera.yaw += motion.yaw;
    camera.roll += motion.roll;
    camera.eye.x += motion.aside;
    camera.eye.y += motion.up;
    return camera;
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

static SampleRadiance RenderFrame(const CliOptions& options, size_t frame)
{
    return RenderSampleScene(options.width, options.height,
                             options.handHeld ? CameraInHand(frame, size_t(options.frames))
                                              : SampleCamera());
}

// The scene is rendered once, or anew for each place of the camera. What went wrong, empty when it
// went well.
static TargetComplaint WriteFrames(ResultSet* files, const std::vector<Frame>& frames,
                                   const CliOptions& options, Progress* progress)
{
    ShowProgress(progress, "Rendering the scene");
    SampleRadiance scene = RenderFrame(options, 0);
    for (size_t i = 0; i < frames.size(); i++)
    {
        ShowProgress(progress,
                     "Writing " + std::to_string(i + 1) + " of " + std::to_string(frames.size()));
        if (StopRequested())
            return {"", "stopped"};
        if (i > 0 && options.handHeld)
            scene = RenderFrame(options, i);
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
