#include "tonemap/ToneMapParams.h"

ToneMapParams ToneMapParamsOf(const ToneMapNumbers& numbers)
{
    // Quotients in single precision, then double: the settings mean these very numbers.
    return {double(float(numbers.contrast + 1) / 50.0f),
            double(float(numbers.noiseAmplitude + 1) / 50.0f),
            double(float(50 - numbers.details) / 80.0f),
            double(float(50 - numbers.equalization) / 50.0f), numbers.useColors != 0};
}
