#pragma once

// What users choose: sliders from 1 to 50, and a box.
struct ToneMapNumbers
{
    int contrast, noiseAmplitude, details, equalization;
    int useColors; // any number but 0: the chroma planes are filtered too
};

// The same as parameters of the filter.
struct ToneMapParams
{
    double contrast; // share of the range that is detail: 51/50 takes all of it
    double noiseAmplitude;
    double details;      // exponent of detail: below 0.5 or so detail grows
    double equalization; // half the gain of edges
    bool useColors;
};

inline ToneMapParams ToneMapParamsOf(const ToneMapNumbers& numbers)
{
    // Quotients in single precision, then double: the settings mean these very numbers.
    ToneMapParams params;
    params.contrast = double(float(numbers.contrast + 1) / 50.0f);
    params.noiseAmplitude = double(float(numbers.noiseAmplitude + 1) / 50.0f);
    params.details = double(float(50 - numbers.details) / 80.0f);
    params.equalization = double(float(50 - numbers.equalization) / 50.0f);
    params.useColors = numbers.useColors != 0;
    return params;
}
