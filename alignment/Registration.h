#pragma once

#include "alignment/Homography.h"
#include "picture/PicBuf.h"

// Bringing hand-held frames of one scene into register, however far their exposures are apart:
// tiles with texture are found again by masked normalised correlation from coarse to fine, and a
// robust fit makes a map of them that moving things and parallax do not sway.

enum class FrameVerdict
{
    Registered,
    Still,         // moved by less than 0.3 pixels anywhere: nothing to do
    TooFewPlaces,  // too little texture in common, or nothing that agrees on one motion
    TooFar,        // a corner moved by more than 15 % of the diagonal
    NotACamera,    // the map shears or tips more than a hand does
    NoImprovement, // places do not agree better than without it
};

struct Registration
{
    FrameVerdict verdict = FrameVerdict::TooFewPlaces;
    // From pixel centres of the frame that stays to those of the other. The identity unless the
    // verdict is Registered: a frame that is not understood stays as it is.
    Homography map;
    int places = 0;      // tiles that agree with the map
    double residual = 0; // of those, root mean square in pixels of the level they were matched on
    double correlationBefore = 0, correlationAfter = 0; // mean over the tiles
};

// Both pictures have the same size, 1 or 3 components, 8 or 16 bits. The same bits on every machine
// and with any number of threads; rows and tiles are spread over the task pool. Throws
// std::bad_alloc. Memory: 11 bytes a pixel of pictures up to 2600 pixels wide, less of larger ones.
Registration RegisterFrame(const SBxPicBuf& stays, const SBxPicBuf& moving);
