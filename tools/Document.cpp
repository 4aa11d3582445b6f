#include "tools/Document.h"

#include "picture/ParallelCopy.h"

#include <utility>

bool HasPicture(const SBxPicBuf& picture)
{
    return picture.data && picture.width > 0 && picture.height > 0;
}

Outcome CopyPicture(Picture* dst, const SBxPicBuf& src)
{
    CBxPicBufAPI::ReinitHeap(dst->Record(), src);
    if (dst->Empty())
        return Outcome::Failed;
    VcCopyPixels(dst->Record(), src, {src.width, src.height});
    return Outcome::Done;
}

// Every change of the result comes by here.
static void SetResult(Document* document, Picture result, bool unsaved)
{
    document->result = std::move(result);
    document->unsaved = unsaved;
}

void TakeSource(Document* document, Picture picture, Picture alpha, const std::wstring& path)
{
    DropResult(document);
    document->source = std::move(picture);
    document->alpha = std::move(alpha);
    document->file = path;
    document->series = {};
    document->showsSource = true;
}

void ForgetSource(Document* document)
{
    TakeSource(document, {}, {}, L"");
    document->showsSource = false;
}

void TakeSeries(Document* document, std::vector<std::wstring> files)
{
    document->series.files = std::move(files);
    document->series.shown = 0;
}

// In the block that the present result has, so that there are never two.
static Outcome CopyToResult(Document* document, const SBxPicBuf& picture)
{
    Picture copy = std::move(document->result);
    const Outcome copied = CopyPicture(&copy, picture);
    SetResult(document, std::move(copy), false);
    return copied;
}

Outcome PrepareToolPictures(Document* document)
{
    return InTurn([&] { return CopyToResult(document, document->source); },
                  [&] { return CopyPicture(&document->preview, document->source); });
}

void GiveResult(Document* document, Picture result)
{
    SetResult(document, std::move(result), true);
}

void DropResult(Document* document)
{
    SetResult(document, {}, false);
    document->preview.Free();
}

void RestoreResult(Document* document)
{
    document->unsaved = false;
    if (HasPicture(document->preview))
        (void)CopyToResult(document, document->preview); // without memory there is none
}

void BeginJob(Document* document, std::function<void()> stop)
{
    document->phase = DocumentPhase::Computing;
    document->stopJob = std::move(stop);
}

void EndWork(Document* document)
{
    document->phase = DocumentPhase::Idle;
    document->stopJob = nullptr;
}

void StopJob(const Document& document)
{
    if (document.stopJob)
        document.stopJob();
}
