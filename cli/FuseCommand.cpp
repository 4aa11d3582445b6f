#include "base/Stopwatch.h"
#include "cli/CommandLine.h"
#include "cli/Progress.h"
#include "cli/ResultFile.h"

#include "files/ImageFileText.h"
#include "fusion/FusionAccumulator.h"
#include "picture/Picture.h"

#include <future>
#include <iomanip>
#include <memory>
#include <ostream>

// Sources go into the accumulator one after the other, in the order given. While one is being
// added the next is read on a second thread, so at most two are in memory, and the result does
// not depend on which thread is faster.

struct Source
{
    Picture picture, alpha;
    LoadReport report;
    bool failed;
};

using SourcePtr = std::unique_ptr<Source>;

static SourcePtr LoadSource(const std::string& path)
{
    auto source = std::make_unique<Source>();
    source->failed = LoadPicturePair(path.c_str(), source->picture.Record(), source->alpha.Record(),
                                     &source->report);
    return source;
}

static std::string Kind(const SBxPicBuf& p)
{
    return std::to_string(p.width) + " x " + std::to_string(p.height) + ", " +
           std::to_string(p.bitsPerComponent) + "-bit " + (p.components == 1 ? "grey" : "colour");
}

struct FuseJob
{
    const CliOptions& options;
    const CliStreams& streams;
    Progress progress;
    FormatId format;
    VcFusionAccumulator accumulator;
    SBxPicBuf geometry; // of the first source; no data
    Picture alpha;      // of the first source
    double waited, added, composed,
        written; // seconds; reading that nobody waits for does not count
};

static void FreeJob(FuseJob* job)
{
    EndProgress(&job->progress);
    VcFreeAccumulator(&job->accumulator);
}

static int FailJob(FuseJob* job, const std::string& file, const std::string& reason)
{
    EndProgress(&job->progress);
    return Fail(job->streams, file, reason);
}

// Looks at the first source and sets up what depends on it.
static int StartJob(FuseJob* job, Source* first)
{
    const std::string& path = job->options.inputs[0];
    const SBxPicBuf& picture = first->picture;
    if (!VcFusionAcceptsSize(picture.width, picture.height))
        return FailJob(job, path,
                       "the picture is " + std::to_string(picture.width) + " x " +
                           std::to_string(picture.height) + "; fusion needs at least " +
                           std::to_string(kFusionMinSide) + " pixels each way");
    const std::string misfit = FormatFits(job->format, picture);
    if (!misfit.empty())
        return FailJob(job, job->options.output, misfit);

    job->geometry = picture;
    job->geometry.data = nullptr;
    job->alpha = std::move(first->alpha);
    if (VcInitAccumulator(&job->accumulator, picture,
                          unsigned(job->options.numbers.fusionTool.exposure)))
        return FailJob(job, path, "not enough memory to fuse pictures of this size");
    return kExitDone;
}

static int AddSource(FuseJob* job, Source* source, size_t index)
{
    const std::string& path = job->options.inputs[index];
    if (source->failed)
        return FailJob(job, path, LoadProblemText(source->report.problem));
    if (index == 0)
    {
        const int failed = StartJob(job, source);
        if (failed)
            return failed;
    }
    source->alpha.Free();

    const SBxPicBuf& first = job->geometry;
    const SBxPicBuf& picture = source->picture;
    if (picture.width != first.width || picture.height != first.height ||
        picture.components != first.components ||
        picture.bitsPerComponent != first.bitsPerComponent)
        return FailJob(job, path,
                       "the picture is " + Kind(picture) + ", but the first one is " + Kind(first));
    if (VcAccumulateImage(&job->accumulator, picture, StopRequested))
        return FailJob(job, StopRequested() ? "" : path,
                       StopRequested() ? "stopped"
                                       : "not enough memory to fuse pictures of this size");
    return kExitDone;
}

static int AddSources(FuseJob* job)
{
    const std::vector<std::string>& inputs = job->options.inputs;
    const std::launch how = job->options.threads == 1 ? std::launch::deferred : std::launch::async;
    std::future<SourcePtr> next = std::async(how, LoadSource, inputs[0]);
    for (size_t i = 0; i < inputs.size(); i++)
    {
        ShowProgress(&job->progress, "Fusing " + std::to_string(i + 1) + " of " +
                                         std::to_string(inputs.size()) + ": " + inputs[i]);
        Clock::time_point start = Clock::now();
        const SourcePtr source = next.get();
        job->waited += SecondsSince(start);
        if (i + 1 < inputs.size())
            next = std::async(how, LoadSource, inputs[i + 1]);
        start = Clock::now();
        const int failed = AddSource(job, source.get(), i);
        job->added += SecondsSince(start);
        if (failed)
            return failed;
        if (StopRequested())
            return FailJob(job, "", "stopped");
    }
    return kExitDone;
}

static void Report(const FuseJob& job, const std::string& note)
{
    const size_t count = job.options.inputs.size();
    std::ostream& out = job.streams.out;
    out << job.options.output << ": " << Kind(job.geometry) << ", fused from " << count
        << (count == 1 ? " picture" : " pictures") << note;
    if (job.options.times)
        out << std::fixed << std::setprecision(2) << ", waited for reading " << job.waited
            << " s, added in " << job.added << " s, composed in " << job.composed
            << " s, written in " << job.written << " s";
    out << std::endl;
}

static int FinishJob(FuseJob* job)
{
    ShowProgress(&job->progress, "Writing " + job->options.output);
    Clock::time_point start = Clock::now();
    Picture result = Picture::Like(job->geometry);
    if (result.Empty() || VcComposeResult(result.Record(), job->accumulator))
        return FailJob(job, job->options.output, "not enough memory for the result");
    VcFreeAccumulator(&job->accumulator);
    job->composed = SecondsSince(start);
    if (StopRequested())
        return FailJob(job, "", "stopped");

    std::string note;
    start = Clock::now();
    const std::string problem = SaveResult(result, job->alpha, job->options.output,
                                           job->options.inputs[0], job->format, &note);
    if (!problem.empty())
        return FailJob(job, job->options.output, problem);
    EndProgress(&job->progress);
    job->written = SecondsSince(start);
    if (!job->options.quiet)
        Report(*job, note);
    return kExitDone;
}

int RunFuse(const CliOptions& options, const CliStreams& streams)
{
    FuseJob job = {
        options, streams, StartProgress(options, streams), kFormatFromName, {}, {}, {}, 0.0, 0.0,
        0.0,     0.0};
    const std::string problem = FormatOfResult(options.output, &job.format);
    if (!problem.empty())
        return Fail(streams, options.output, problem);

    std::unique_ptr<FuseJob, void (*)(FuseJob*)> release(&job, FreeJob);
    const int failed = AddSources(&job);
    return failed ? failed : FinishJob(&job);
}
