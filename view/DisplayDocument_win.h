#pragma once

#include "base/Outcome.h"
#include "base/Win.h"
#include "view/ImageView.h"

// The off-screen bitmap into which the view renders. One per main window. Window thread only.

constexpr int kDisplayWidth = 3000, kDisplayHeight = 2000;

struct DisplayDocument
{
    HDC memoryDc; // compatible with the screen; the bitmap is selected into it
    HWND owner;
    HBITMAP bitmap;         // 24 bits, top-down
    HGDIOBJ previousBitmap; // back into the context on release
    int maxWidth, maxHeight;
    SBxPicBuf display; // wrapper over the bitmap's bits; empty when there is no bitmap
    ULONG_PTR gdiplusToken;
};

// Fills in all fields and starts GDI+. The background is the grey that is seen until the view
// renders for the first time. Fails when there is no bitmap to render into. The document
// wants to be released in either case.
Outcome CreateDisplayDocument(DisplayDocument* document, HWND owner, uint8_t background);

// Frees the bitmap and shuts GDI+ down. Releasing again does nothing.
void ReleaseDisplayDocument(DisplayDocument* document);

// Shows in dc (of the owner's client area) what the view has rendered, where the view area lies.
// What is larger than the bitmap gets the background.
void PaintView(HDC dc, const DisplayDocument& document, const ImageView& view);
