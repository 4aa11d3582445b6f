#include "files/ResultFacts.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>

static std::tm BrokenDown(std::time_t now, bool local)
{
    std::tm parts = {};
#ifdef _WIN32
    (void)(local ? localtime_s(&parts, &now) : gmtime_s(&parts, &now));
#else
    (void)(local ? localtime_r(&now, &parts) : gmtime_r(&now, &parts));
#endif
    return parts;
}

static int MinutesAhead(const std::tm& local, const std::tm& world)
{
    const int kDay = 24 * 60;
    const int days = local.tm_year != world.tm_year ? local.tm_year - world.tm_year
                                                    : local.tm_yday - world.tm_yday;
    return days * kDay + (local.tm_hour - world.tm_hour) * 60 + local.tm_min - world.tm_min;
}

// The time that it is, or the one that a wide-spread custom lets people set who want the same bytes
// from the same work.
static std::time_t TimeOfResult(bool* set)
{
    const char* seconds = std::getenv("SOURCE_DATE_EPOCH");
    *set = seconds && *seconds;
    return *set ? std::time_t(std::strtoll(seconds, nullptr, 10)) : std::time(nullptr);
}

ResultFacts FactsOfResult(int width, int height, MetadataChoice choice)
{
    bool set = false;
    const std::time_t now = TimeOfResult(&set);
    const std::tm local = BrokenDown(now, !set);
    const int ahead = MinutesAhead(local, BrokenDown(now, false));
    char dateTime[32], zone[16];
    std::strftime(dateTime, sizeof dateTime, "%Y:%m:%d %H:%M:%S", &local);
    std::snprintf(zone, sizeof zone, "%c%02d:%02d", ahead < 0 ? '-' : '+',
                  std::abs(ahead) / 60 % 24, std::abs(ahead) % 60);
    ResultFacts facts;
    facts.width = width;
    facts.height = height;
    facts.choice = choice;
    facts.software = "Plenoviz " PLENOVIZ_VERSION;
    facts.dateTime = dateTime;
    facts.zone = zone;
    return facts;
}
