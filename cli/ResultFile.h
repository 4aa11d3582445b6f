#pragma once

#include "cli/CommandLine.h"

#include "files/ImageFile.h"

// Writing what a command made. Each function gives the reason of a failure, empty when all is well.

// The format that the ending asks for, in any case: one of those in which results are offered.
std::string FormatOfResult(const std::string& path, FormatId* format);

// Their endings for the help, what is wanted most first: ".jpg .jpeg .png or .bmp".
std::string ResultEndings();

// Whether that format can hold the picture: 16 bits want TIFF or PNG.
std::string FormatFits(FormatId format, const SBxPicBuf& picture);

// Saves with the profile and the metadata of `source`. `note` says what did not fit into the
// file, empty if all did. With `held`, the complete file waits there for others (ResultSet.h). A
// wish to stop that comes before the last byte is written leaves the old file; the reason does not
// matter then.
std::string SaveResult(const SBxPicBuf& picture, const SBxPicBuf& alpha, const std::string& path,
                       const std::string& source, FormatId format, std::string* note,
                       ReplacingFile* held = nullptr);
