#include "pipeline/DecodeSource.h"

DecodedSource DecodeSource(const std::string& path, int number, const SourceStep& step,
                           const LoadOptions& options)
{
    DecodedSource source;
    const Outcome loaded = LoadPicturePair(path.c_str(), source.picture.Record(),
                                           source.alpha.Record(), &source.report, options);
    if (loaded == Outcome::Done && step &&
        step(&source.picture, &source.alpha, number) != Outcome::Done)
    {
        source = {};
        source.report.problem = LoadProblem::OutOfMemory;
    }
    return source;
}

SourceReader::SourceReader(const std::vector<std::string>& sourcePaths, SourceStep sourceStep,
                           bool readAhead, const LoadOptions& loadOptions)
    : paths(sourcePaths), step(std::move(sourceStep)), ahead(readAhead), options(loadOptions)
{
    StartReading();
}

void SourceReader::StartReading()
{
    if (started == paths.size())
        return;
    const size_t number = started++;
    next = std::async(ahead ? std::launch::async : std::launch::deferred, [this, number]
                      { return DecodeSource(paths[number], int(number), step, options); });
}

DecodedSource SourceReader::Next()
{
    DecodedSource source = next.get();
    StartReading();
    return source;
}

bool IsLike(const SBxPicBuf& picture, const SBxPicBuf& geometry)
{
    return picture.width == geometry.width && picture.height == geometry.height &&
           picture.components == geometry.components &&
           picture.bitsPerComponent == geometry.bitsPerComponent;
}
