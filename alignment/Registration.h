#pragma once

#include "alignment/Homography.h"
#include "alignment/LumaPyramid.h"
#include "picture/PicBuf.h"

// Bringing hand-held frames of one scene into register, however far their exposures are apart:
// tiles with texture are found again by masked normalised correlation from coarse to fine, and a
// robust fit makes a map of them that moving things and parallax do not sway.

enum class FrameVerdict
{
    Registered,
    Still,         // moved by less than 0.3 pixels anywhere, or with a series that did not move
    TooFewPlaces,  // too little texture in common, or nothing that agrees on one motion
    TooFar,        // a corner moved by more than 15 % of the diagonal
    NotACamera,    // the map shears or tips more than a hand does
    NoImprovement, // places do not agree better than without it
};

struct Registration
{
    FrameVerdict verdict = FrameVerdict::TooFewPlaces;
    // From pixel centres of the frame that stays to those of the other. The identity unless the
    // verdict is Registered or Still; a frame that is not understood is not moved.
    Homography map;
    int places = 0;      // tiles that agree with the map
    double residual = 0; // of those, root mean square in pixels of the level they were matched on
    double correlationBefore = 0, correlationAfter = 0; // mean over the tiles
};

// What registration looks at of a frame; the picture itself is not needed any more then. 11 bytes a
// pixel of pictures up to 2600 pixels wide or high, 3 and less of larger ones.
struct FrameLook
{
    CBxSize<int> size = {0, 0};
    LumaPyramid pyramid;
    double brightness = 0;  // mean luma, 0 .. 255
    double wellExposed = 0; // share of the frame that is neither blocked nor blown
};

// The picture has 1 or 3 components of 8 or 16 bits, and sides of at least kLeastRegisteredSide.
// Like everything here: the same bits on every machine and with any number of threads, work is
// spread over the task pool, std::bad_alloc when memory is short.
constexpr int kLeastRegisteredSide = 96;
FrameLook LookAt(const SBxPicBuf& picture);

// Two frames of one size.
Registration RegisterFrame(const FrameLook& stays, const FrameLook& moving);

// A series of frames of one size, in any order.
struct SeriesRegistration
{
    int stays = 0; // the frame that the others are brought to: the best exposed one
    // Of each frame, from the frame that stays.
    std::vector<Registration> frames;
};

// Each frame is compared with its neighbour in brightness, towards the frame that stays, since the
// ends of a long series have nothing in common; a neighbour that could not be understood is
// skipped. Where no frame has moved by more than 0.7 pixels on average the camera stood on a
// tripod, and every frame is Still: resampling would cost more than it gains.
SeriesRegistration RegisterSeries(const std::vector<FrameLook>& frames);
