#include "pipeline/DecodeSource.h"

DecodedSource DecodeSource(const std::string& path, int number, const SourceStep& step)
{
    DecodedSource source;
    LoadReport report;
    const bool failed =
        LoadPicturePair(path.c_str(), source.picture.Record(), source.alpha.Record(), &report);
    if (failed)
        source.problem = report.problem;
    else if (step && step(&source.picture, number) != Outcome::Done)
    {
        source = {};
        source.problem = LoadProblem::OutOfMemory;
    }
    return source;
}

bool IsLike(const SBxPicBuf& picture, const SBxPicBuf& geometry)
{
    return picture.width == geometry.width && picture.height == geometry.height &&
           picture.components == geometry.components &&
           picture.bitsPerComponent == geometry.bitsPerComponent;
}
