#pragma once

#include "contrast/LevelsOfDetail.h"
#include "text/Strings.h"
#include "tonemap/ToneMapParams.h"
#include "tools/SliderRules.h"

#include <climits>
#include <cstddef>

// The numbers that users choose: one row for each slider, check box and list of every tool. The
// settings file, models, dialogs, command line and manual page all read it; a number's range,
// default and words are written nowhere else.

enum class Tool
{
    ToneMap,
    PowerFusion,
    ExposureFusion,
    SmartContrast,
    NoisePrompt,
};
constexpr int kToolCount = 5;

struct PowerNumbers // of the fusion dialog with the Power slider
{
    int exposure, flatness; // only handed on
    int power;              // sources fused
};

struct FusionNumbers // of the one with the Exposure slider
{
    int sharpStrength, satStrength, expStrength; // only handed on: the weights are fixed
    int exposure;                                // grey to aim at
};

struct ToolNumbers
{
    ToneMapNumbers toneMap;
    PowerNumbers powerTool;
    FusionNumbers fusionTool;
    int levelsOfDetail[kDetailLevels]; // tenths of a gain, finest level first
    int denoiseStrength;               // 0 none, 1 low, 2 medium, 3 high
};

// What becomes of a stored number that the range does not have.
enum class OutOfRange
{
    Clamp,
    UseDefault,
};

struct StoredNumber
{
    const wchar_t* key; // in the settings file
    int standard;       // when the key is missing
    SliderRange range;
    OutOfRange outOfRange = OutOfRange::Clamp;
};
constexpr SliderRange kAnyNumber = {INT_MIN, INT_MAX};

// The number that counts when that one is stored.
int AllowedNumber(const StoredNumber& stored, int number);

enum class ParameterKind
{
    Slider,
    CheckBox, // any number but 0 is checked
    List,     // of `choices`
    Kept,     // nobody shows it; it goes back to the file as it came
};

struct ParameterChoice
{
    TextId text;
    const char* word; // on the command line
};

struct ParameterRow
{
    Tool tool;
    ParameterKind kind;
    size_t field; // offset in ToolNumbers
    StoredNumber stored;
    TextId text; // of the label; kNoText where the dialog's own labels need no translation
    // On the command line, with both dashes; null where it has none. A check box's option takes no
    // value and turns the default round. Rows of a tool with the same option are its list of
    // numbers, with the first row's help.
    const char* option;
    const char* help;                         // without range and default, which are added
    const ParameterChoice* choices = nullptr; // one for each number of the range
};

// The rows of a tool, in the order of their controls and keys.
struct ParameterRows
{
    const ParameterRow* first;
    int count;

    const ParameterRow* begin() const { return first; }
    const ParameterRow* end() const { return first + count; }
    const ParameterRow& operator[](int i) const { return first[i]; }
};
ParameterRows AllParameters();
ParameterRows ParametersOf(Tool tool);

// The only one of a tool that has no other.
const ParameterRow& SliderRowOf(Tool tool);

int* NumberAt(ToolNumbers* numbers, const ParameterRow& row);
int NumberOf(const ToolNumbers& numbers, const ParameterRow& row);

ToolNumbers DefaultNumbers();

// What a tool's dialog opens with: stored numbers in their ranges, boxes 0 or 1.
ToolNumbers OpenedNumbers(Tool tool, const ToolNumbers& stored);

void CopyNumbers(ToolNumbers* to, Tool tool, const ToolNumbers& from);
bool SameNumbers(Tool tool, const ToolNumbers& a, const ToolNumbers& b);

// True when the number is another one now.
bool MoveNumber(ToolNumbers* numbers, const ParameterRow& row, SliderMove move, int thumb);
