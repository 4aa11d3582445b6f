#include "fuzz/FuzzTarget.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

// Runs a fuzz target without a fuzzer, over every file of the folders named:
//
//   FuzzImage [--alter N] FOLDER...
//
// and over N altered copies of each file, always the same ones. The last line that it has printed
// when it dies names the file.

namespace fs = std::filesystem;
using Bytes = std::vector<uint8_t>;

static size_t Below(std::mt19937* random, size_t limit)
{
    return limit == 0 ? 0 : size_t((*random)()) % limit;
}

// A few bytes become others, as damage or malice would have them: numbers at their limits, bits
// flipped, pieces doubled or gone, the end cut off.
static Bytes Altered(Bytes bytes, std::mt19937* random)
{
    const uint8_t kLimits[] = {0x00, 0x01, 0x7F, 0x80, 0xFE, 0xFF};
    for (size_t changes = 1 + Below(random, 6); changes > 0 && !bytes.empty(); --changes)
    {
        // Headers stand at the start: every second change goes there.
        const size_t range = Below(random, 2) ? bytes.size() : std::min<size_t>(bytes.size(), 128);
        const size_t at = Below(random, range);
        const size_t length = std::min(bytes.size() - at, size_t(1) << Below(random, 5));
        const auto place = bytes.begin() + std::ptrdiff_t(at);
        const Bytes piece(place, place + std::ptrdiff_t(length));
        switch (Below(random, 6))
        {
        case 0: bytes[at] ^= uint8_t(1u << Below(random, 8)); break;
        case 1: bytes[at] = uint8_t((*random)()); break;
        case 2: std::fill_n(place, length, kLimits[Below(random, std::size(kLimits))]); break;
        case 3: bytes.insert(place, piece.begin(), piece.end()); break;
        case 4: bytes.erase(place, place + std::ptrdiff_t(length)); break;
        case 5: bytes.resize(Below(random, 8) ? bytes.size() : at); break;
        }
    }
    return bytes;
}

static Bytes ReadFile(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

int main(int argc, char** argv)
{
    int copies = 0, runs = 0, first = 1;
    if (argc > 2 && std::strcmp(argv[1], "--alter") == 0)
    {
        copies = std::atoi(argv[2]);
        first = 3;
    }
    std::vector<fs::path> files;
    for (int i = first; i < argc; ++i)
        for (const auto& entry : fs::recursive_directory_iterator(argv[i]))
            if (entry.is_regular_file())
                files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    for (const fs::path& path : files)
    {
        std::printf("%s\n", path.c_str());
        std::fflush(stdout);
        const Bytes bytes = ReadFile(path);
        std::mt19937 random(unsigned(bytes.size()));
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
        for (int i = 0; i < copies; ++i, ++runs)
        {
            const Bytes altered = Altered(bytes, &random);
            LLVMFuzzerTestOneInput(altered.data(), altered.size());
        }
    }
    std::printf("%d files, %d altered copies\n", int(files.size()), runs);
    return files.empty() ? 1 : 0;
}
