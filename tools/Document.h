#pragma once

#include "base/Outcome.h"
#include "picture/Picture.h"

#include <functional>
#include <string>
#include <vector>

// The photograph that is open, with everything that is made of it. The frame owns one and hands it
// to the tools. Window thread only: a worker gets what it reads and writes with its run.
//
// Three pictures go through a tool. The source is the photograph as it was opened and never
// changes; tools render into the preview; OK makes the result. Opening a tool makes result and
// preview copies of the source.

// What goes on over the document.
enum class DocumentPhase
{
    Idle,      // its pictures may go; a dialog that has made its result may still be open
    ToolOpen,  // a tool's dialog works on them
    Computing, // a worker reads the source: the mouse rests, and nothing may be opened or closed
};

// The sources that are fused when they are not the photograph alone.
struct SourceSeries
{
    std::vector<std::wstring> files;
    int shown = 0;             // of them, from 0
    bool chosenByUser = false; // not made by a tool: they are looked through with the arrow keys,
                               // and the tools for one photograph are off
};

struct Document
{
    Picture source, result, preview;
    Picture alpha;     // of the source; saved with the result
    std::wstring file; // the opened one: proposed name and metadata of a save
    SourceSeries series;
    DocumentPhase phase = DocumentPhase::Idle;
    std::function<void()> stopJob; // asks what computes to end early; empty while nothing does
    bool showsSource = true;       // the view does, not the result
    bool unsaved = false;          // there is a result that is in no file
};

bool HasPicture(const SBxPicBuf& picture);

// Makes dst a copy of src: geometry and pixels. Fails when memory is short; dst is empty then.
Outcome CopyPicture(Picture* dst, const SBxPicBuf& src);

// A photograph has been opened: it becomes the source. Everything of the one before goes, with its
// series.
void TakeSource(Document* document, Picture picture, Picture alpha, const std::wstring& path);

// The photograph has been closed.
void ForgetSource(Document* document);

// The files to be fused from now on, the first of them shown. Who chose them stays as it is.
void TakeSeries(Document* document, std::vector<std::wstring> files);

// Before a tool starts: result and preview become copies of the source. Fails when memory is short.
Outcome PrepareToolPictures(Document* document);

// A tool has made this of the source; it is in no file yet.
void GiveResult(Document* document, Picture result);

// There is no result any more, and no preview.
void DropResult(Document* document);

// A tool was cancelled: the preview, which is the source again, goes over the result.
void RestoreResult(Document* document);

// A worker starts, which `stop` asks to end early. It is at work until the phase is another one.
void BeginJob(Document* document, std::function<void()> stop);

// The worker, if there was one, has ended, and its tool with it.
void EndWork(Document* document);

// Asks the worker to end early, if there is one.
void StopJob(const Document& document);
