#include "files/ImageFileText.h"

#include <system_error>

static const char* ProblemText(LoadProblem problem)
{
    switch (problem)
    {
    case LoadProblem::None: return "no problem";
    case LoadProblem::NoSuchFile: return "no such file";
    case LoadProblem::CannotOpen: return "the file cannot be opened";
    case LoadProblem::UnknownFormat: return "not a known image format";
    case LoadProblem::NotReadable: return "this image format cannot be read";
    case LoadProblem::Damaged: return "the file is damaged";
    case LoadProblem::KindNotSupported:
        return "only grey and colour pictures with up to 16 bits are supported, not floats";
    case LoadProblem::TooLarge: return "the picture is too large";
    case LoadProblem::OverLimit: return "the picture is suspiciously large";
    case LoadProblem::OutOfMemory: return "not enough memory for the picture";
    }
    return "";
}

std::string LoadReportText(const LoadReport& report)
{
    const std::string text = ProblemText(report.problem);
    return report.detail.empty() ? text : text + ": " + report.detail;
}

static std::string ProblemText(SaveProblem problem)
{
    switch (problem)
    {
    case SaveProblem::None: return "no problem";
    case SaveProblem::NoPicture: return "there is no picture to save";
    case SaveProblem::OutOfMemory: return "not enough memory to save the picture";
    case SaveProblem::UnknownFormat: return "pictures cannot be saved in this format";
    case SaveProblem::DepthNotHeld:
        return "this format cannot hold the picture (16 bits need TIFF or PNG)";
    case SaveProblem::SourceFormat: return "the source's format gives no profile or metadata";
    case SaveProblem::SourceUnreadable: return "the source cannot be read for its metadata";
    case SaveProblem::CannotCreate: return "the file cannot be created";
    case SaveProblem::EncoderFailed: return "the picture cannot be encoded in this format";
    case SaveProblem::CannotWrite: return "the file cannot be written";
    }
    return "";
}

std::string SaveReportText(const SaveReport& report)
{
    const std::string text = ProblemText(report.problem);
    if (report.systemError == 0)
        return text;
    return text + ": " + std::generic_category().message(report.systemError);
}
