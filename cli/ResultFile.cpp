#include "cli/ResultFile.h"

#include "cli/Progress.h"

#include "base/SystemFiles.h"
#include "files/ImageFileText.h"

// ".bmp, .jpg or .png"
static std::string Listed(const std::vector<std::string>& endings, const char* comma)
{
    std::string text;
    for (size_t i = 0; i < endings.size(); ++i)
        text += (i == 0 ? "" : i + 1 < endings.size() ? comma : " or ") + endings[i];
    return text;
}

std::string ResultEndings()
{
    std::vector<std::string> all;
    const std::vector<const FormatRow*> formats = SaveFormats();
    for (auto row = formats.rbegin(); row != formats.rend(); ++row)
        for (const std::string& ending : EndingsIn((*row)->endings))
            all.push_back(ending);
    return Listed(all, " ");
}

std::string FormatOfResult(const std::string& path, FormatId* format)
{
    std::vector<std::string> all;
    for (const FormatRow& row : kFormats)
    {
        if (row.saveEntry == 0)
            continue;
        if (HasEnding(path, row.endings))
        {
            *format = row.id;
            return "";
        }
        for (const std::string& ending : EndingsIn(row.endings))
            all.push_back(ending);
    }
    return "the name must end in " + Listed(all, ", ");
}

std::string FormatFits(FormatId format, const SBxPicBuf& picture)
{
    if (FormatHoldsPicture(format, picture, false))
        return "";
    std::vector<std::string> others;
    for (const FormatRow& row : kFormats)
        if (row.saveEntry > 0 && FormatHoldsPicture(row.id, picture, false))
            others.push_back(EndingsIn(row.endings).front());
    return std::string(FindFormat(format)->name) + " files cannot hold " +
           std::to_string(picture.bitsPerComponent) + "-bit pictures; use " + Listed(others, ", ");
}

static SaveReport TrySaving(const SBxPicBuf& picture, const SBxPicBuf& alpha,
                            const std::string& path, const std::string& source, FormatId format,
                            const SaveExtras& extras)
{
    SaveReport report;
    try
    {
        SavePicturePair(picture, alpha, path.c_str(), source.c_str(), format, &report, &extras);
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
                       const std::string& source, FormatId format, std::string* note,
                       ReplacingFile* held)
{
    std::string target, from;
    if (SavePathFromUtf8(&target, path.c_str(), PathUse::Target) != Outcome::Done)
        return "this name is too long or has letters that the system cannot express";
    if (SavePathFromUtf8(&from, source.c_str(), PathUse::Source) != Outcome::Done)
        from.clear();

    SaveExtras extras;
    extras.stopped = StopRequested;
    extras.held = held;
    SaveReport report = TrySaving(picture, alpha, target, from, format, extras);
    const bool sourceFailed = report.problem == SaveProblem::SourceFormat ||
                              report.problem == SaveProblem::SourceUnreadable;
    if (!report.written && sourceFailed)
    {
        // A picture without its metadata beats no picture.
        from.clear();
        report = TrySaving(picture, alpha, target, from, format, extras);
    }
    if (!report.written)
        return SaveReportText(report);

    note->clear();
    if (from.empty() && !source.empty())
        *note += ", without the metadata of " + source;
    if (report.alphaDropped)
        *note += ", without the alpha plane, which this format cannot hold";
    if (report.losses.profile)
        *note += ", without the colour profile, which this format cannot hold";
    if (report.otherNames > 0)
        *note += ", under this name only: " + std::to_string(report.otherNames) +
                 (report.otherNames == 1 ? " other name keeps" : " other names keep") +
                 " the old file";
    return "";
}
