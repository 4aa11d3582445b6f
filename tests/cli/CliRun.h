#pragma once

#include "cli/CommandLine.h"
#include "cli/Progress.h"
#include "tests/support/TestFiles.h"

#include <gtest/gtest.h>

#include <sstream>

// A command line run in this process, and what came of it.
struct Outcome
{
    int code;
    std::string out, err;
};

inline Outcome RunCli(const std::vector<std::string>& arguments, bool terminal = false)
{
    std::ostringstream out, err;
    const int code = RunCommandLine(arguments, {out, err, terminal});
    return {code, out.str(), err.str()};
}

inline std::vector<std::string> Joined(std::vector<std::string> first,
                                       const std::vector<std::string>& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

// Small pictures in a fresh folder.
class InFolder : public testing::Test
{
protected:
    TempFolder folder;

    std::string Put(const std::string& name, const TestPicture& picture,
                    const TestPicture* alpha = nullptr) const
    {
        EXPECT_TRUE(Save(picture, folder.File(name), kFormatFromName, "", alpha).written);
        return folder.File(name);
    }
    ~InFolder() override { ForgetStop(); }
};
