#pragma once

#include "cli/CommandLine.h"

#include "files/ImageFile.h"

// Writing what a command made. Each function gives the reason of a failure, empty when all is well.

// The format that the ending asks for (.bmp .jpg .jpeg .tif .tiff .png in any case).
std::string FormatOfResult(const std::string& path, int* format);

// Whether that format can hold the picture: 16 bits want TIFF or PNG.
std::string FormatFits(int format, const SBxPicBuf& picture);

// Saves with the profile and the metadata of `source`. `note` says what did not fit into the
// file, empty if all did.
std::string SaveResult(const SBxPicBuf& picture, const SBxPicBuf& alpha, const std::string& path,
                       const std::string& source, int format, std::string* note);
