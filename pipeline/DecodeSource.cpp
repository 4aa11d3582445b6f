#include "pipeline/DecodeSource.h"

DecodedSource DecodeSource(const std::string& path, int number, const SourceStep& step)
{
    DecodedSource source;
    LoadReport report;
    const bool failed =
        LoadPicturePair(path.c_str(), source.picture.Record(), source.alpha.Record(), &report);
    if (failed)
        source.problem = report.problem;
    else if (step && step(&source.picture, &source.alpha, number) != Outcome::Done)
    {
        source = {};
        source.problem = LoadProblem::OutOfMemory;
    }
    return source;
}

SourceReader::SourceReader(const std::vector<std::string>& sourcePaths, SourceStep sourceStep,
                           bool readAhead)
    : paths(sourcePaths), step(std::move(sourceStep)), ahead(readAhead)
{
    StartReading();
}

void SourceReader::StartReading()
{
    if (started == paths.size())
        return;
    const size_t number = started++;
    next = std::async(ahead ? std::launch::async : std::launch::deferred,
                      [this, number] { return DecodeSource(paths[number], int(number), step); });
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
