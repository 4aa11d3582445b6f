#pragma once

#include "view/ImageView.h"

// What the view draws over a picture. The buffers have 8 bits and 3 components; pixels outside of
// them are skipped, and loops are cut to them first: at a high zoom coordinates reach into the
// thousands of millions.

// Lays the picture over squares of 15 x 15 pixels, by the weights of an alpha plane of its size.
void BlendOverChecker(SBxPicBuf* picture, const SBxPicBuf& alpha);

// Inverts a frame two pixels thick, its edges included. Every pixel is inverted once, also where
// the frame is so small that its sides meet; so a second call restores the picture.
void InvertFrame(SBxPicBuf* display, const CBxRect<int>& frame);

// A smooth green curve through the points in their order, and a square around each, yellow when it
// is selected and red otherwise. The buffer's first pixel lies at origin.
void DrawPointCurve(SBxPicBuf* display, const std::vector<ScreenPoint>& points,
                    const CBxPoint<int>& origin);
void DrawPointMarkers(SBxPicBuf* display, const std::vector<ScreenPoint>& points,
                      const CBxPoint<int>& origin);
