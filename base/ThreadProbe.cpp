#include "base/ThreadProbe.h"

#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

int ThreadsThatStart(int wanted)
{
    std::vector<std::thread> threads;
    std::mutex gate; // all stay until the last one has started
    {
        const std::lock_guard<std::mutex> closed(gate);
        try
        {
            while (int(threads.size()) + 1 < wanted)
            {
                threads.reserve(threads.size() + 1);
                threads.emplace_back([&] { const std::lock_guard<std::mutex> passed(gate); });
            }
        }
        catch (const std::system_error&)
        {
        }
    }
    for (std::thread& thread : threads)
        thread.join();
    return int(threads.size()) + 1;
}
