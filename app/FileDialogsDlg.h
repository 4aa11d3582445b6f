#pragma once

#include "base/Win.h"
#include "picture/Picture.h"

#include <string>
#include <vector>

// Opening and saving pictures with the system's dialogs. Window thread only.

// The dialog of the Open command, and of tools that ask for a picture. False on Cancel.
bool AskForPicture(HWND owner, const wchar_t* title, std::wstring* path);

// Several files for a series. An empty list on Cancel; `onlyOne` when the user picked just one
// file; `tooMany` when their names did not fit.
struct PickedFiles
{
    std::vector<std::wstring> paths;
    bool onlyOne = false;
    bool tooMany = false;
};
PickedFiles AskForSeries(HWND owner);

// Main loader: every failure shows string 41 and changes nothing.
bool LoadForDocument(const wchar_t* path, Picture* picture, Picture* alpha);

// Loader of the tools: silent. An empty path asks for a picture first.
bool LoadSilently(const wchar_t* path, Picture* picture, Picture* alpha);

// Save As for a picture with the metadata of `source`: writes to `path`, whose ending decides the
// format, and leaves the quality of JPEG files in FrameSettings(), to be stored. An empty path asks
// for name, type and quality first. False on Cancel or when nothing was written, which the user has
// been told. `path` is the name that was written on success.
bool SavePictureAs(HWND owner, const SBxPicBuf& picture, const SBxPicBuf& alpha,
                   const wchar_t* source, std::wstring* path);
