#include "cli/FuseCommand.h"

#include "base/Stopwatch.h"
#include "cli/Failure.h"
#include "cli/Progress.h"
#include "cli/ResultFile.h"
#include "cli/ShownText.h"
#include "cli/TargetCheck.h"

#include "files/ImageFileText.h"
#include "pipeline/FusionFeed.h"
#include "pipeline/SeriesAlignment.h"

#include <cmath>
#include <iomanip>
#include <ostream>

// Sources are added one after the other, in the order given. While one is being added the next is
// read on a second thread, so at most two are in memory, and the result does not depend on which
// thread is faster.

static std::string Kind(const SBxPicBuf& p)
{
    return std::to_string(p.width) + " x " + std::to_string(p.height) + ", " +
           std::to_string(p.bitsPerComponent) + "-bit " + (p.components == 1 ? "grey" : "colour");
}

struct FuseJob
{
    const CliOptions& options;
    const CliStreams& streams;
    Progress progress = StartProgress(options, streams);
    FormatId format = kFormatFromName;
    SeriesAlignment alignment = {};
    FusionSums sums = {};
    SBxPicBuf geometry = {}; // of the first source; no data
    Picture alpha = {};      // of the first source
    double aligned = 0.0, waited = 0.0, added = 0.0, composed = 0.0,
           written = 0.0; // seconds; reading that nobody waits for does not count
    std::string problem{}, problemFile{};
};

// Notes why there will be no result.
static Outcome Refuse(FuseJob* job, const std::string& file, const std::string& reason)
{
    job->problemFile = file;
    job->problem = reason;
    return Outcome::Failed;
}

static const char kNoMemory[] = "not enough memory to fuse pictures of this size";

static bool ReadsAhead(const FuseJob& job)
{
    return job.options.threads != 1;
}

// Looks at the first source and sets up what depends on it.
static Outcome StartJob(FuseJob* job, DecodedSource* first)
{
    const std::string& path = job->options.inputs[0];
    const SBxPicBuf& picture = first->picture;
    if (!VcFusionAcceptsSize(picture.width, picture.height))
        return Refuse(job, path,
                      "the picture is " + std::to_string(picture.width) + " x " +
                          std::to_string(picture.height) + "; fusion needs at least " +
                          std::to_string(kFusionMinSide) + " pixels each way");
    const std::string misfit = FormatFits(job->format, picture);
    if (!misfit.empty())
        return Refuse(job, job->options.output, misfit);

    job->geometry = picture;
    job->geometry.data = nullptr;
    job->alpha = std::move(first->alpha);
    const Outcome started =
        StartSums(&job->sums, picture, unsigned(job->options.numbers.fusionTool.exposure));
    return started == Outcome::Done ? started : Refuse(job, path, kNoMemory);
}

static Outcome AddSource(FuseJob* job, DecodedSource* source, size_t index, const SourceTaker& take)
{
    const std::string& path = job->options.inputs[index];
    if (source->report.problem != LoadProblem::None)
        return StopRequested() ? Outcome::Cancelled
                               : Refuse(job, path, LoadReportText(source->report));
    TellNotes(job->streams, job->options, path, source->report);
    if (index == 0 && StartJob(job, source) != Outcome::Done)
        return Outcome::Failed;
    source->alpha.Free();
    if (!IsLike(source->picture, job->geometry))
        return Refuse(job, path,
                      "the picture is " + Kind(source->picture) + ", but the first one is " +
                          Kind(job->geometry));
    const Outcome taken = take(source->picture);
    if (taken == Outcome::Failed)
        return Refuse(job, path, kNoMemory);
    return StopRequested() ? Outcome::Cancelled : taken;
}

static Outcome FeedSources(FuseJob* job, const SourceTaker& take)
{
    const std::vector<std::string>& inputs = job->options.inputs;
    SourceReader reader(inputs, StepOf(job->alignment), ReadsAhead(*job),
                        LoadOptionsOf(job->options));
    for (size_t i = 0; i < inputs.size(); i++)
    {
        ShowProgress(&job->progress, "Fusing " + std::to_string(i + 1) + " of " +
                                         std::to_string(inputs.size()) + ": " + inputs[i]);
        const Stopwatch waiting;
        DecodedSource source = reader.Next();
        job->waited += waiting.Seconds();
        const Stopwatch adding;
        const Outcome added = AddSource(job, &source, i, take);
        job->added += adding.Seconds();
        if (added != Outcome::Done)
            return added;
    }
    return Outcome::Done;
}

// Looks at all sources before any is fused.
static Outcome Align(FuseJob* job)
{
    const std::vector<std::string>& inputs = job->options.inputs;
    if (job->options.align == "off")
        return Outcome::Done;
    const Stopwatch watch;
    const auto comes = [&](int number)
    {
        ShowProgress(&job->progress, "Looking at " + std::to_string(number + 1) + " of " +
                                         std::to_string(inputs.size()) + ": " +
                                         inputs[size_t(number)]);
        return StopRequested();
    };
    const AlignmentBorder border =
        job->options.crop ? AlignmentBorder::Crop : AlignmentBorder::Mirror;
    const Outcome aligned = AlignSeries(&job->alignment, inputs, border, ReadsAhead(*job), comes,
                                        LoadOptionsOf(job->options));
    job->aligned = watch.Seconds();
    return aligned == Outcome::Failed ? Refuse(job, inputs[0], kNoMemory) : aligned;
}

static void Report(const FuseJob& job, const std::string& note)
{
    const size_t count = job.options.inputs.size();
    std::ostream& out = job.streams.out;
    out << ShownText(job.options.output) << ": " << Kind(job.geometry) << ", fused from " << count
        << (count == 1 ? " picture" : " pictures") << ShownText(note);
    if (job.options.times)
        out << std::fixed << std::setprecision(2) << ", aligned in " << job.aligned
            << " s, waited for reading " << job.waited << " s, added in " << job.added
            << " s, composed in " << job.composed << " s, written in " << job.written << " s";
    out << std::endl;
}

static const char* WhyLeft(FrameVerdict verdict)
{
    switch (verdict)
    {
    case FrameVerdict::Registered:
    case FrameVerdict::Still: break;
    case FrameVerdict::TooFewPlaces: return "too little in common with the others";
    case FrameVerdict::TooFar: return "it had moved too far";
    case FrameVerdict::NotACamera: return "no camera moves like that";
    case FrameVerdict::NoImprovement: return "it fits no better in another place";
    }
    return "";
}

// How a frame had moved at its middle, and what became of it.
static void ReportFrame(std::ostream& out, const Registration& frame, CBxSize<int> size)
{
    constexpr double kDegrees = 57.295779513082321;
    const double x = (size.cx - 1) / 2.0, y = (size.cy - 1) / 2.0;
    const CBxPoint<double> at = MapPoint(frame.map, x, y);
    const double* m = frame.map.m;
    out << std::fixed << std::setprecision(1) << "shift " << at.x - x << ", " << at.y - y
        << " pixels, turn " << std::setprecision(3)
        << std::atan2(m[3] - m[1], m[0] + m[4]) * kDegrees << " degrees, scale "
        << std::setprecision(4) << std::sqrt(m[0] * m[4] - m[1] * m[3]);
}

static bool IsUnderstood(const Registration& frame)
{
    return frame.verdict == FrameVerdict::Registered || frame.verdict == FrameVerdict::Still;
}

// A line for each source if that is asked for, and else for those that may blur the result, since
// nobody knows how they have moved.
static void ReportMotion(const FuseJob& job)
{
    const SeriesAlignment& alignment = job.alignment;
    const bool all = job.options.report;
    std::ostream& out = job.streams.out;
    for (size_t i = 0; i < job.options.inputs.size(); ++i)
    {
        const std::string name = ShownText(job.options.inputs[i]);
        if (alignment.found.frames.empty())
        {
            if (all)
                out << name << ": left as it is: not compared with others\n";
            continue;
        }
        const Registration& frame = alignment.found.frames[i];
        if (!all && IsUnderstood(frame))
            continue;
        out << name << ": ";
        if (int(i) == alignment.found.stays)
            out << "stays, the others are compared with it\n";
        else if (!IsUnderstood(frame))
            out << "left as it is: " << WhyLeft(frame.verdict) << "\n";
        else
        {
            ReportFrame(out, frame, alignment.frame);
            out << (frame.verdict == FrameVerdict::Registered ? ", brought into register\n"
                                                              : ", left as it is\n");
        }
    }
}

static Outcome Blend(FuseJob* job, Picture* result)
{
    ShowProgress(&job->progress, "Writing " + job->options.output);
    const Stopwatch watch;
    *result = Picture::Like(job->geometry);
    if (result->Empty() || BlendSums(result->Record(), {&job->sums}) != Outcome::Done)
        return Refuse(job, job->options.output, "not enough memory for the result");
    job->sums.Free();
    job->composed = watch.Seconds();
    return StopRequested() ? Outcome::Cancelled : Outcome::Done;
}

static Outcome Write(FuseJob* job, const Picture& result, std::string* note)
{
    const Stopwatch watch;
    const std::string problem = SaveResult(result, job->alpha, job->options.output,
                                           job->options.inputs[0], job->format, note);
    job->written = watch.Seconds();
    if (problem.empty())
        return Outcome::Done;
    return StopRequested() ? Outcome::Cancelled : Refuse(job, job->options.output, problem);
}

static Outcome RunJob(FuseJob* job, std::string* note)
{
    const auto feed = [job](const SourceTaker& take) { return FeedSources(job, take); };
    Outcome outcome = InTurn([&] { return Align(job); },
                             [&] { return AddFeed(&job->sums, feed, StopRequested); });
    Picture result;
    if (outcome == Outcome::Done)
        outcome = Blend(job, &result);
    return outcome == Outcome::Done ? Write(job, result, note) : outcome;
}

int RunFuse(const CliOptions& options, const CliStreams& streams)
{
    FuseJob job = {options, streams};
    const std::string problem = FormatOfResult(options.output, &job.format);
    if (!problem.empty())
        return FailTarget(streams, {options.output, problem});
    TargetComplaint complaint = CheckCollisions({options.output}, options.inputs);
    if (complaint.reason.empty())
        complaint = CheckPlaces({options.output});
    if (!complaint.reason.empty())
        return FailTarget(streams, complaint);

    std::string note;
    const Outcome outcome = RunJob(&job, &note);
    EndProgress(&job.progress);
    if (outcome == Outcome::Cancelled)
        return Fail(streams, "", "stopped");
    if (outcome == Outcome::Failed)
        return Fail(streams, job.problemFile, job.problem);
    if (!options.quiet)
    {
        ReportMotion(job);
        Report(job, note);
    }
    return kExitDone;
}
