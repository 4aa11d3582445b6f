#include "app/AppState.h"

#include "picture/ParallelCopy.h"

#include <cwchar>
#include <utility>

SBxPicBuf g_sourcePicture;
SBxPicBuf g_resultPicture;
SBxPicBuf g_previewPicture;
SBxPicBuf g_scratchPictures[3];
SBxPicBuf g_alphaPicture;

wchar_t g_szCurrentFile[kPathChars];
wchar_t g_sourceFiles[kMaxSources][kSourcePathChars];
int32_t g_sourceCount;
int32_t g_sourceIndex;

bool g_multiImageMode;
bool g_showSources;
bool g_resultUnsaved;
bool g_toolBusy;
bool g_workerBusy;

CommandStates g_commandStates;

std::atomic<bool> g_cancelRequested;
std::atomic<bool> g_stopRequested;

void FreePictures()
{
    for (SBxPicBuf* picture :
         {&g_sourcePicture, &g_resultPicture, &g_previewPicture, &g_scratchPictures[0],
          &g_scratchPictures[1], &g_scratchPictures[2], &g_alphaPicture})
        CBxPicBufAPI::DoneHeap(picture);
}

bool HasPicture(const SBxPicBuf& picture)
{
    return picture.data && picture.width > 0 && picture.height > 0;
}

bool CopyPicture(SBxPicBuf* dst, const SBxPicBuf& src)
{
    CBxPicBufAPI::ReinitHeap(dst, src);
    if (!dst->data)
        return false;
    VcCopyPixels(dst, src, {src.width, src.height});
    return true;
}

static void ForgetSeries()
{
    g_multiImageMode = false;
    g_sourceCount = 0;
    g_sourceIndex = 0;
}

void TakeSource(SBxPicBuf* picture, SBxPicBuf* alpha, const wchar_t* path)
{
    FreePictures();
    g_sourcePicture = std::exchange(*picture, SBxPicBuf());
    g_alphaPicture = std::exchange(*alpha, SBxPicBuf());
    if (path != g_szCurrentFile)
    {
        std::wcsncpy(g_szCurrentFile, path, kPathChars - 1);
        g_szCurrentFile[kPathChars - 1] = 0;
    }
    ForgetSeries();
    g_showSources = true;
    g_resultUnsaved = false;
    PictureOpened(&g_commandStates);
}

void ForgetSource()
{
    FreePictures();
    g_szCurrentFile[0] = 0;
    ForgetSeries();
    g_showSources = false;
    g_resultUnsaved = false;
    PictureClosed(&g_commandStates);
}

bool PrepareToolPictures()
{
    return CopyPicture(&g_resultPicture, g_sourcePicture) &&
           CopyPicture(&g_previewPicture, g_sourcePicture);
}

void RestoreResult()
{
    g_workerBusy = false;
    g_toolBusy = false;
    g_resultUnsaved = false;
    if (HasPicture(g_previewPicture))
        CopyPicture(&g_resultPicture, g_previewPicture);
}
