#include "tools/Parameters.h"

#include "series/DaylightSeries.h"
#include "series/ExposureSeries.h"

#include <algorithm>
#include <iterator>

static constexpr SliderRange kToneSlider = {1, 50};
static constexpr SliderRange kStrength = {0, 10};

static constexpr ParameterChoice kNoiseChoices[] = {{kTextNoiseNone, "none"},
                                                    {kTextNoiseLow, "low"},
                                                    {kTextNoiseMedium, "medium"},
                                                    {kTextNoiseHigh, "high"}};
static_assert(std::size(kNoiseChoices) == kNoiseLevels);

using Kind = ParameterKind;

static constexpr ParameterRow Kept(Tool tool, size_t field, StoredNumber stored)
{
    return {tool, Kind::Kept, field, stored, kNoText, nullptr, nullptr};
}

// The label of a level is its size in pixels; all levels share an option.
static constexpr ParameterRow Level(size_t field, const wchar_t* key, const char* help = nullptr)
{
    return {Tool::SmartContrast, Kind::Slider, field, {key, 10, {0, 30}}, kNoText, "--lod", help};
}

#define FIELD(name) offsetof(ToolNumbers, name)

// The two fusion dialogs share the key "Exposure" but not its default and range. "power" of the run
// and "Power" are one key in the file as well: a number that the slider cannot show, such as the 1
// of a first run without the tool, counts as none.
static constexpr ParameterRow kParameters[] = {
    {Tool::ToneMap,
     Kind::Slider,
     FIELD(toneMap.contrast),
     {L"uiPowerT1", 10, kToneSlider},
     kTextContrast,
     "--contrast",
     "what counts as detail: more = larger differences too"},
    {Tool::ToneMap,
     Kind::Slider,
     FIELD(toneMap.noiseAmplitude),
     {L"uiPowerT2", 10, kToneSlider},
     kTextNoiseAmplitude,
     "--noise-amplitude",
     "differences up to this are noise and stay as they are"},
    {Tool::ToneMap,
     Kind::Slider,
     FIELD(toneMap.details),
     {L"uiPowerT3", 10, kToneSlider},
     kTextDetails,
     "--details",
     "how much detail is lifted"},
    {Tool::ToneMap,
     Kind::Slider,
     FIELD(toneMap.equalization),
     {L"uiPowerT4", 10, kToneSlider},
     kTextEqualization,
     "--equalization",
     "how much large differences are evened out"},
    {Tool::ToneMap,
     Kind::CheckBox,
     FIELD(toneMap.useColors),
     {L"uiUseColors", 10, kAnyNumber},
     kTextUseColors,
     "--luminance-only",
     "leave the colours alone: faster and calmer"},

    Kept(Tool::PowerFusion, FIELD(powerTool.exposure), {L"Exposure", 128, kAnyNumber}),
    Kept(Tool::PowerFusion, FIELD(powerTool.flatness), {L"Flatness", 3, kAnyNumber}),
    {Tool::PowerFusion,
     Kind::Slider,
     FIELD(powerTool.power),
     {L"Power", 15, {3, kDaylightVariants}, OutOfRange::UseDefault},
     kTextPower,
     "--power",
     "how many of the 39 variants are fused"},

    Kept(Tool::ExposureFusion, FIELD(fusionTool.sharpStrength), {L"Sharp Strength", 5, kStrength}),
    Kept(Tool::ExposureFusion, FIELD(fusionTool.satStrength), {L"Sat Strength", 5, kStrength}),
    Kept(Tool::ExposureFusion, FIELD(fusionTool.expStrength), {L"Exp Strength", 5, kStrength}),
    {Tool::ExposureFusion,
     Kind::Slider,
     FIELD(fusionTool.exposure),
     {L"Exposure", 100, {48, 160}},
     kTextExposure,
     "--exposure",
     "brightness to aim at, as a grey of an 8-bit picture: more = brighter"},

    Level(FIELD(levelsOfDetail[0]), L"LOD_0",
          "detail of each level from the finest to the coarsest: 0 none, 10 as it is, 30 "
          "threefold"),
    Level(FIELD(levelsOfDetail[1]), L"LOD_1"),
    Level(FIELD(levelsOfDetail[2]), L"LOD_2"),
    Level(FIELD(levelsOfDetail[3]), L"LOD_3"),
    Level(FIELD(levelsOfDetail[4]), L"LOD_4"),
    Level(FIELD(levelsOfDetail[5]), L"LOD_5"),
    Level(FIELD(levelsOfDetail[6]), L"LOD_6"),
    Level(FIELD(levelsOfDetail[7]), L"LOD_7"),

    {Tool::NoisePrompt,
     Kind::List,
     FIELD(denoiseStrength),
     {L"Denoise Strength", 1, {0, kNoiseLevels - 1}},
     kTextNoiseReduction,
     "--noise",
     "noise reduction",
     kNoiseChoices},
};

static_assert(kDaylightVariants == 39, "the help line of the power says so");

#undef FIELD

ParameterRows AllParameters()
{
    return {kParameters, int(std::size(kParameters))};
}

// Rows of a tool stand together.
ParameterRows ParametersOf(Tool tool)
{
    const auto isOfTool = [=](const ParameterRow& row) { return row.tool == tool; };
    const ParameterRow* const first =
        std::find_if(std::begin(kParameters), std::end(kParameters), isOfTool);
    return {first, int(std::find_if_not(first, std::end(kParameters), isOfTool) - first)};
}

const ParameterRow& SliderRowOf(Tool tool)
{
    const ParameterRows rows = ParametersOf(tool);
    return *std::find_if(rows.begin(), rows.end(),
                         [](const ParameterRow& row) { return row.kind == Kind::Slider; });
}

int AllowedNumber(const StoredNumber& stored, int number)
{
    const int allowed = std::clamp(number, stored.range.low, stored.range.high);
    return stored.outOfRange == OutOfRange::Clamp || allowed == number ? allowed : stored.standard;
}

int* NumberAt(ToolNumbers* numbers, const ParameterRow& row)
{
    return reinterpret_cast<int*>(reinterpret_cast<char*>(numbers) + row.field);
}

int NumberOf(const ToolNumbers& numbers, const ParameterRow& row)
{
    return *reinterpret_cast<const int*>(reinterpret_cast<const char*>(&numbers) + row.field);
}

ToolNumbers DefaultNumbers()
{
    ToolNumbers numbers = {};
    for (const ParameterRow& row : kParameters)
        *NumberAt(&numbers, row) = row.stored.standard;
    return numbers;
}

ToolNumbers OpenedNumbers(Tool tool, const ToolNumbers& stored)
{
    ToolNumbers numbers = stored;
    for (const ParameterRow& row : ParametersOf(tool))
    {
        const int number = AllowedNumber(row.stored, NumberOf(stored, row));
        *NumberAt(&numbers, row) = row.kind == Kind::CheckBox ? number != 0 : number;
    }
    return numbers;
}

void CopyNumbers(ToolNumbers* to, Tool tool, const ToolNumbers& from)
{
    for (const ParameterRow& row : ParametersOf(tool))
        *NumberAt(to, row) = NumberOf(from, row);
}

bool SameNumbers(Tool tool, const ToolNumbers& a, const ToolNumbers& b)
{
    const ParameterRows rows = ParametersOf(tool);
    return std::all_of(rows.begin(), rows.end(),
                       [&](const ParameterRow& row)
                       { return NumberOf(a, row) == NumberOf(b, row); });
}

bool MoveNumber(ToolNumbers* numbers, const ParameterRow& row, SliderMove move, int thumb)
{
    int* number = NumberAt(numbers, row);
    const int before = *number;
    *number = MovedSlider(row.stored.range, before, move, thumb);
    return *number != before;
}
