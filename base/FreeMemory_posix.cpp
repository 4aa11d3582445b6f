#include "base/FreeMemory.h"

#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <string>

int64_t FreeMemoryBytes()
{
    return int64_t(sysconf(_SC_AVPHYS_PAGES)) * int64_t(sysconf(_SC_PAGESIZE));
}

// The number behind a word at the start of a line, or the file's only number for an empty word; -1
// for none, which is also what "max" is.
static int64_t NumberIn(const std::string& path, const std::string& word)
{
    std::ifstream file(path);
    for (std::string name; word.empty() || file >> name;)
    {
        int64_t number = -1;
        if (name == word)
            return file >> number ? number : -1;
        file.ignore(256, '\n');
    }
    return -1;
}

// What a group of processes leaves of its limit. Pages of files that were only read can be dropped.
static int64_t LeftInGroup(const std::string& limit, const std::string& used,
                           const std::string& stat, const std::string& droppable)
{
    const int64_t most = NumberIn(limit, ""), now = NumberIn(used, "");
    if (most < 0 || now < 0)
        return INT64_MAX;
    return std::max<int64_t>(most - now + std::max<int64_t>(NumberIn(stat, droppable), 0), 0);
}

// The least that this group and those around it leave, in both layouts of the system's folders.
static int64_t LeftInGroups()
{
    int64_t least = INT64_MAX;
    std::ifstream groups("/proc/self/cgroup");
    for (std::string line; std::getline(groups, line);)
    {
        const size_t second = line.rfind(':'); // number:controllers:path
        const bool unified = line.compare(0, 3, "0::") == 0;
        if (second == line.npos || (!unified && line.find(":memory:") == line.npos))
            continue;
        const std::string root = unified ? "/sys/fs/cgroup" : "/sys/fs/cgroup/memory";
        std::string path = line.substr(second + 1);
        for (;;)
        {
            const std::string folder = root + (path == "/" ? "" : path);
            const int64_t left =
                unified ? LeftInGroup(folder + "/memory.max", folder + "/memory.current",
                                      folder + "/memory.stat", "inactive_file")
                        : LeftInGroup(folder + "/memory.limit_in_bytes",
                                      folder + "/memory.usage_in_bytes", folder + "/memory.stat",
                                      "total_inactive_file");
            least = std::min(least, left);
            if (path.empty() || path == "/")
                break;
            path.resize(path.rfind('/'));
        }
    }
    return least;
}

int64_t AvailableMemoryBytes()
{
    const int64_t kilobytes = NumberIn("/proc/meminfo", "MemAvailable:");
    const int64_t system = kilobytes < 0 ? FreeMemoryBytes() : kilobytes * 1024;
    return std::min(system, LeftInGroups());
}
