#pragma once

#include "cli/TargetCheck.h"

#include "files/FileReplace.h"

#include <filesystem>

// Files that one command writes into a folder, all or none of them. Each is written beside its
// place, and when all are complete they move there together. What is not finished leaves nothing
// behind, not even a folder that was made for it.
class ResultSet
{
public:
    ResultSet() = default;
    ~ResultSet();
    ResultSet(const ResultSet&) = delete;
    ResultSet& operator=(const ResultSet&) = delete;

    // Makes the folder and looks whether files of these names can be written there, over none of
    // the inputs. Paths are UTF-8.
    TargetComplaint Open(const std::string& folder, const std::vector<std::string>& names,
                         const std::vector<std::string>& inputs);

    std::string PathOf(const std::string& name) const; // UTF-8

    // Where SavePicturePair and SaveResult leave the next file.
    ReplacingFile* NextHeld();

    // All that are held take their places.
    TargetComplaint Finish();

private:
    std::string MakeFolder();

    std::filesystem::path folder;
    std::filesystem::path madeFolder; // the topmost one that had to be made
    std::vector<ReplacingFile> held;
};
