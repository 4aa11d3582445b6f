#pragma once

#include "base/Outcome.h"
#include "files/ImageFile.h"
#include "picture/Picture.h"

#include <functional>
#include <future>
#include <string>
#include <vector>

// Sources as they come out of their files, ready to be added.

// What is done to every source between its decoding and its adding; may be empty. It may put
// another picture of the same kind in the source's place, and likewise in that of its alpha plane,
// if there is one. It may be called on several threads at once, in any order. Sources are numbered
// as in the series. One that turns out to differ from the others is refused afterwards: leave it as
// it is. Anything but Done says that memory is short.
using SourceStep = std::function<Outcome(Picture* source, Picture* alpha, int number)>;

struct DecodedSource
{
    Picture picture, alpha; // empty when there is a problem
    LoadProblem problem = LoadProblem::None;
};

// Any thread. Path in UTF-8.
DecodedSource DecodeSource(const std::string& path, int number, const SourceStep& step);

// The sources of a series in their order. While one is worked on the next is read on a second
// thread
// (`ahead`), or else when it is asked for.
class SourceReader
{
public:
    SourceReader(const std::vector<std::string>& sourcePaths, SourceStep sourceStep,
                 bool readAhead);

    // As often as there are paths, which must outlive the reader.
    DecodedSource Next();

private:
    void StartReading();

    const std::vector<std::string>& paths;
    SourceStep step;
    bool ahead;
    size_t started = 0;
    std::future<DecodedSource> next;
};

// Whether a picture has the size, components and bits of the others, whose pixels do not matter.
bool IsLike(const SBxPicBuf& picture, const SBxPicBuf& geometry);
