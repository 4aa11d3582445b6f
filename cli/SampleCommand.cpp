#include "cli/SampleCommand.h"

#include "cli/Failure.h"
#include "cli/Progress.h"

#include "base/SystemFiles.h"
#include "files/ExifBlock.h"
#include "files/ImageFile.h"
#include "files/ImageFileText.h"
#include "sample/Exposure.h"

#include <filesystem>
#include <iterator>
#include <memory>
#include <ostream>

// The series appears as a whole or not at all: every frame is written under a name of its own
// first, and only when all of them are complete do they take their final names.

namespace fs = std::filesystem;

struct Frame
{
    int stops;             // from the middle of the series
    ExifRational exposure; // seconds
    fs::path part, target;
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

static std::vector<Frame> PlanFrames(const fs::path& folder, int count)
{
    std::vector<Frame> frames;
    for (int i = 0; i < count; i++)
    {
        const int stops = 2 * i - (count - 1);
        const std::string name = "sample_" + std::to_string(i + 1) + ".jpg";
        frames.push_back(
            {stops, ExposureTime(stops), folder / ("." + name + ".part"), folder / name});
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

static std::string SaveFrame(const SampleRadiance& scene, const Frame& frame)
{
    std::string path;
    if (SavePathFromUtf8(&path, frame.part.u8string().c_str(), PathUse::Target) != Outcome::Done)
        return "this name is too long or has letters that the system cannot express";
    const Picture picture = ExposeSample(scene, frame.stops);
    if (picture.Empty())
        return "not enough memory for the picture";
    SaveReport report;
    const SaveExtras extras = {ExifOf(frame)};
    SavePicturePair(picture, Picture(), path.c_str(), "", kFormatJpeg, &report, &extras);
    return report.written ? "" : SaveReportText(report);
}

// What would keep a complete frame from taking its place later.
static std::string TargetProblem(const fs::path& target)
{
    std::error_code error;
    const fs::file_status status = fs::status(target, error);
    if (!fs::exists(status))
        return "";
    if (!fs::is_regular_file(status))
        return "something that is no file has this name";
    if ((status.permissions() & fs::perms::owner_write) == fs::perms::none)
        return "the file is write-protected";
    return "";
}

struct SampleJob
{
    const CliOptions& options;
    const CliStreams& streams;
    Progress progress;
    fs::path folder;
    std::vector<Frame> frames;
    fs::path madeFolder; // the topmost folder that this run had to make
};

// Removes what an unfinished run leaves: parts, and folders that it made.
static void CleanUp(SampleJob* job)
{
    EndProgress(&job->progress);
    std::error_code ignored;
    for (const Frame& frame : job->frames)
        fs::remove(frame.part, ignored);
    for (fs::path folder = job->folder; !job->madeFolder.empty(); folder = folder.parent_path())
    {
        fs::remove(folder, ignored); // only if it is empty
        if (folder == job->madeFolder)
            return;
    }
}

static int FailJob(SampleJob* job, const std::string& file, const std::string& reason)
{
    CleanUp(job);
    return Fail(job->streams, file, reason);
}

static std::string MakeFolder(SampleJob* job)
{
    std::error_code error;
    fs::path top = job->folder;
    while (!fs::exists(top, error) && top.has_relative_path())
    {
        job->madeFolder = top;
        top = top.parent_path();
        if (top.empty())
            break;
    }
    error.clear();
    fs::create_directories(job->folder, error);
    if (error)
        return "the folder cannot be made: " + error.message();
    return fs::is_directory(job->folder, error) ? "" : "this is not a folder";
}

static SampleRadiance RenderFrame(const SampleJob& job, size_t frame)
{
    const CliOptions& options = job.options;
    return RenderSampleScene(options.width, options.height,
                             options.handHeld ? CameraInHand(frame, job.frames.size())
                                              : SampleCamera());
}

// The scene is rendered once, or anew for each place of the camera.
static int WriteFrames(SampleJob* job)
{
    ShowProgress(&job->progress, "Rendering the scene");
    SampleRadiance scene = RenderFrame(*job, 0);
    for (size_t i = 0; i < job->frames.size(); i++)
    {
        const Frame& frame = job->frames[i];
        if (StopRequested())
            return FailJob(job, "", "stopped");
        ShowProgress(&job->progress, "Writing " + std::to_string(i + 1) + " of " +
                                         std::to_string(job->frames.size()));
        if (i > 0 && job->options.handHeld)
            scene = RenderFrame(*job, i);
        const std::string problem = SaveFrame(scene, frame);
        if (!problem.empty())
            return FailJob(job, frame.target.u8string(), problem);
        if (StopRequested())
            return FailJob(job, "", "stopped");
    }
    for (const Frame& frame : job->frames)
    {
        std::error_code error;
        fs::rename(frame.part, frame.target, error);
        if (error)
            return FailJob(job, frame.target.u8string(), error.message());
    }
    EndProgress(&job->progress);
    for (const Frame& frame : job->frames)
        if (!job->options.quiet)
            job->streams.out << frame.target.u8string() << " (" << TimeText(frame.exposure)
                             << ")\n";
    job->streams.out.flush();
    return kExitDone;
}

int RunSample(const CliOptions& options, const CliStreams& streams)
{
    fs::path folder = fs::u8path(options.outDir).lexically_normal();
    if (!folder.has_filename() && folder.has_relative_path()) // ends in a slash
        folder = folder.parent_path();
    SampleJob job = {options, streams, StartProgress(options, streams), folder, {}, {}};
    const std::string problem = MakeFolder(&job);
    if (!problem.empty())
        return FailJob(&job, options.outDir, problem);
    job.frames = PlanFrames(folder, options.frames);
    for (const Frame& frame : job.frames)
    {
        const std::string taken = TargetProblem(frame.target);
        if (!taken.empty())
            return FailJob(&job, frame.target.u8string(), taken);
    }

    try
    {
        return WriteFrames(&job);
    }
    catch (...)
    {
        CleanUp(&job);
        throw;
    }
}
