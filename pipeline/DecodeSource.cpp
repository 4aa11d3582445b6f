#include "pipeline/DecodeSource.h"

DecodedSource DecodeSource(const std::string& path, int number, const SourceStep& step,
                           const LoadOptions& options)
{
    DecodedSource source;
    const Outcome loaded = LoadPicturePair(path.c_str(), source.picture.Record(),
                                           source.alpha.Record(), &source.report, options);
    if (loaded == Outcome::Done && step && step(&source.picture, number) != Outcome::Done)
    {
        source = {};
        source.report.problem = LoadProblem::OutOfMemory;
    }
    return source;
}

bool IsLike(const SBxPicBuf& picture, const SBxPicBuf& geometry)
{
    return picture.width == geometry.width && picture.height == geometry.height &&
           picture.components == geometry.components &&
           picture.bitsPerComponent == geometry.bitsPerComponent;
}
