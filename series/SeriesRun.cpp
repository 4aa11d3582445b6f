#include "series/SeriesRun.h"

#include "base/ShortMemory.h"
#include "base/SystemFiles.h"
#include "files/ImageFile.h"
#include "picture/Picture.h"

SeriesBar SeriesBarOf(SeriesKind kind)
{
    return kind == SeriesKind::Single ? SeriesBar{100, 5} : SeriesBar{40, 0};
}

// Without metadata: the result gets that from the photograph, and nobody else sees these files.
static void WriteSeriesFile(const std::string& path, const SBxPicBuf& picture)
{
    std::string savePath;
    if (SavePathFromUtf8(&savePath, path.c_str(), PathUse::Target) != Outcome::Done)
        return;
    SaveExtras extras;
    extras.passing = true;
    SavePicturePair(picture, Picture(), savePath.c_str(), "", kFormatTiff, nullptr, &extras);
}

// A series that nobody stopped ended early because memory was short. What there is of it would give
// another picture than the whole.
static bool IsCutShort(const SeriesRun& run, int made, int whole)
{
    return made < whole && !run.control.Ending();
}

static void MakeFiles(SeriesRun* run)
{
    const SeriesSink write = [run](int, const SBxPicBuf& picture, const char* name)
    {
        WriteSeriesFile(run->folder + name, picture);
        return Outcome::Done;
    };
    if (run->kind == SeriesKind::Single)
    {
        const int count = MakeExposureSeries(run->source, run->noiseLevel, write, run->control);
        if (IsCutShort(*run, count, kExposures))
            return;
        for (int number = 0; number < count; ++number)
            run->files.push_back(ExposureFileName(number));
        return;
    }
    const DaylightMode mode =
        run->kind == SeriesKind::DaylightUp ? DaylightMode::Up : DaylightMode::Down;
    const std::vector<unsigned> keys = MakeDaylightSeries(run->source, mode, write, run->control);
    if (IsCutShort(*run, int(keys.size()), kDaylightVariants))
        return;
    for (const int number : DaylightOrder(mode, keys))
        run->files.push_back(DaylightFileName(number));
}

void MakeSeriesFiles(SeriesRun* run)
{
    run->files.clear();
    const auto make = [run]
    {
        MakeFiles(run);
        return Outcome::Done;
    };
    if (FailWithoutMemory(make) != Outcome::Done)
        run->files.clear();
}
