#include "bench/BenchRun.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>

static const char* const kNotOnThisProcessor = "not on this processor";

static bool g_small = false;

// The library ends with success when results are wrong and when nothing matches the filter, so the
// runs are counted here, by the name of the benchmark's function.
class CountingReporter : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs)
        {
            int& good = goodRuns[run.run_name.function_name];
            good += run.error_occurred ? 0 : 1;
            wrongRuns += run.error_occurred && run.error_message != kNotOnThisProcessor;
        }
        ConsoleReporter::ReportRuns(runs);
    }

    bool AllRight() const
    {
        for (const auto& [name, good] : goodRuns)
            if (good == 0)
                std::fprintf(stderr, "%s: no right result\n", name.c_str());
        if (goodRuns.empty())
            std::fprintf(stderr, "no benchmark was run\n");
        for (const auto& family : goodRuns)
            if (family.second == 0)
                return false;
        return wrongRuns == 0 && !goodRuns.empty();
    }

private:
    std::map<std::string, int> goodRuns;
    int wrongRuns = 0;
};

int RunBenchmarks(int argc, char** argv)
{
    if (argc > 1 && std::strcmp(argv[1], "--small") == 0)
    {
        g_small = true;
        argv[1] = argv[0];
        --argc;
        ++argv;
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return EXIT_FAILURE;
    CountingReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return reporter.AllRight() ? EXIT_SUCCESS : EXIT_FAILURE;
}

int BenchSide(int full)
{
    return g_small ? full / 16 * 2 : full;
}

bool SmallBench()
{
    return g_small;
}

bool UseInstructionSet(benchmark::State& state, int64_t number)
{
    const InstructionSet set = InstructionSet(number);
    if (!ProcessorRuns(set))
    {
        state.SkipWithError(kNotOnThisProcessor);
        return false;
    }
    ForceInstructionSet(set);
    state.SetLabel(InstructionSetName(set));
    return true;
}

void CheckResult(benchmark::State& state, bool right)
{
    if (!right)
        state.SkipWithError("wrong result");
}

void ReportPixels(benchmark::State& state, int width, int height)
{
    state.SetItemsProcessed(state.iterations() * int64_t(width) * height);
}

BenchFolder::BenchFolder()
{
    std::string name = (std::filesystem::temp_directory_path() / "bench-XXXXXX").string();
    if (!mkdtemp(name.data()))
    {
        std::perror(name.c_str());
        std::abort();
    }
    path = name + "/";
}

BenchFolder::~BenchFolder()
{
    std::error_code error;
    std::filesystem::remove_all(path, error);
}
