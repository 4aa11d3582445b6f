#pragma once

#include "files/PictureDecoding.h"

// BMP, GIF and portable maps as their own bytes tell them. Their decoder takes memory for what a
// header claims and fills in black where a file ends early, so what it gets to see is checked here.

struct SimpleClaim
{
    bool known = false; // the header makes sense as far as it goes
    PictureClaim claim; // of the picture that the decoder makes
};
SimpleClaim FindBmpClaim(FILE* file);
SimpleClaim FindGifClaim(FILE* file);
SimpleClaim FindPnmClaim(FILE* file);

// Go through the pixels of a file with a known header and note what is missing or broken.
void CheckBmpPixels(Decoding* decoding);
void CheckGifPixels(Decoding* decoding);
void CheckPnmPixels(Decoding* decoding);
