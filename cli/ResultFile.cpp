#include "cli/ResultFile.h"

#include "base/SystemFiles.h"
#include "files/ImageCodec.h"
#include "files/ImageFileText.h"

struct EndingRow
{
    const char* ending;
    int format;
    const char* name;
};

static const EndingRow kEndings[] = {
    {".bmp", kFormatBmp, "BMP"},   {".jpg", kFormatJpeg, "JPEG"},  {".jpeg", kFormatJpeg, "JPEG"},
    {".tif", kFormatTiff, "TIFF"}, {".tiff", kFormatTiff, "TIFF"}, {".png", kFormatPng, "PNG"},
};

static char Lower(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? char(letter - 'A' + 'a') : letter;
}

static bool EndsWith(const std::string& path, const std::string& ending)
{
    if (path.size() < ending.size())
        return false;
    const size_t start = path.size() - ending.size();
    for (size_t i = 0; i < ending.size(); i++)
        if (Lower(path[start + i]) != ending[i])
            return false;
    return true;
}

std::string FormatOfResult(const std::string& path, int* format)
{
    for (const EndingRow& row : kEndings)
        if (EndsWith(path, row.ending))
        {
            *format = row.format;
            return "";
        }
    return "the name must end in .bmp, .jpg, .jpeg, .tif, .tiff or .png";
}

std::string FormatFits(int format, const SBxPicBuf& picture)
{
    if (FormatHoldsPicture(format, picture, false))
        return "";
    for (const EndingRow& row : kEndings)
        if (row.format == format)
            return std::string(row.name) + " files cannot hold " +
                   std::to_string(picture.bitsPerComponent) + "-bit pictures; use .tif or .png";
    return "this format cannot hold the picture";
}

static SaveReport TrySaving(const SBxPicBuf& picture, const SBxPicBuf& alpha,
                            const std::string& path, const std::string& source, int format)
{
    SaveReport report;
    try
    {
        SavePicturePair(picture, alpha, path.c_str(), source.c_str(), format, &report);
    }
    catch (const UnsupportedImageFormat&)
    {
        report.written = false; // the report's problem tells which of the two files it was
    }
    catch (const ImageReadError&)
    {
        report.written = false;
    }
    return report;
}

std::string SaveResult(const SBxPicBuf& picture, const SBxPicBuf& alpha, const std::string& path,
                       const std::string& source, int format, std::string* note)
{
    std::string target, from;
    if (SavePathFromUtf8(&target, path.c_str(), PathUse::Target))
        return "this name is too long or has letters that the system cannot express";
    if (SavePathFromUtf8(&from, source.c_str(), PathUse::Source))
        from.clear();

    SaveReport report = TrySaving(picture, alpha, target, from, format);
    const bool sourceFailed = report.problem == SaveProblem::SourceFormat ||
                              report.problem == SaveProblem::SourceUnreadable;
    if (!report.written && sourceFailed)
    {
        // A picture without its metadata beats no picture.
        from.clear();
        report = TrySaving(picture, alpha, target, from, format);
    }
    if (!report.written)
        return SaveReportText(report);

    note->clear();
    if (from.empty() && !source.empty())
        *note += ", without the metadata of " + source;
    if (report.alphaDropped)
        *note += ", without the alpha plane, which this format cannot hold";
    if (report.profileDropped)
        *note += ", without the colour profile, which this format cannot hold";
    return "";
}
