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
ToneMapParams ToneMapParamsOf(const ToneMapNumbers& numbers);
