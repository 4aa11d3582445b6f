#pragma once

#include "app/CommandRules.h"
#include "picture/PicBuf.h"

#include <atomic>
#include <cstdint>

// The state of the application: one instance, owned by the frame window and touched on its thread
// only, except for the two flags that workers poll. Window handles are in AppWindows_win.h.
//
// Three pictures go through a tool. The source is the photograph as it was opened and never
// changes; tools render previews into the preview; OK makes the result. Opening a tool makes
// preview and result copies of the source.
extern SBxPicBuf g_sourcePicture;
extern SBxPicBuf g_resultPicture;
extern SBxPicBuf g_previewPicture;
extern SBxPicBuf g_scratchPictures[3]; // of the tools
extern SBxPicBuf g_alphaPicture;       // of the source; saved with the result

constexpr int kPathChars = 1024;       // of the opened file, final zero included
constexpr int kSourcePathChars = 2048; // of a source of a series
constexpr int kMaxSources = 1024;

extern wchar_t g_szCurrentFile[kPathChars]; // the opened file: default name and metadata of a save

extern wchar_t g_sourceFiles[kMaxSources][kSourcePathChars]; // the series being fused
extern int32_t g_sourceCount;
extern int32_t g_sourceIndex; // of the one shown, from 0

extern bool g_multiImageMode; // the series are files that the user chose
extern bool g_showSources;    // the view shows a source, not the result
extern bool g_resultUnsaved;  // there is a result that is in no file
extern bool g_toolBusy;       // a computation or a series worker runs: the frame ignores the mouse
extern bool g_workerBusy;     // a tool's dialog is open

extern CommandStates g_commandStates;

// Wishes to stop, polled by workers. Abort of the progress panel, and Stop of tone mapping.
extern std::atomic<bool> g_cancelRequested;
extern std::atomic<bool> g_stopRequested;

// Frees all pictures and makes them empty.
void FreePictures();

bool HasPicture(const SBxPicBuf& picture);

// Makes dst a copy of src: geometry and pixels. False when memory is short; dst is empty then.
bool CopyPicture(SBxPicBuf* dst, const SBxPicBuf& src);

// A photograph has been opened: it becomes the source, everything of the one before goes, with the
// series and the multi-image mode. Takes the blocks of both records.
void TakeSource(SBxPicBuf* picture, SBxPicBuf* alpha, const wchar_t* path);

// The picture has been closed.
void ForgetSource();

// Before a tool starts: result and preview become copies of the source. False when memory is short.
bool PrepareToolPictures();

// A tool was cancelled: the preview, which is the source again, goes over the result.
void RestoreResult();
