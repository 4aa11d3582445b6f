#pragma once

#include "base/Win.h"
#include "view/DisplayDocument_win.h"
#include "view/ImageViewZoom.h"

// What the frame shows: the view, its display bitmap, and which of the pictures is on. Window
// thread only.

extern ImageView g_view;
extern DisplayDocument g_displayDocument;

// Where the view lies now, from client area, toolbar and docker. Called before every render.
void UpdateViewArea();

// Renders what the document says that is shown, from the caches unless told otherwise, and
// repaints.
void RedrawView(ViewRebuild rebuild = ViewRebuild::Keep);

// Makes a source, the result or the preview the thing that is shown. The preview takes the result's
// place in the view's cache, so that zooming and panning keep it while a tool is open; while there
// is none, it is the source.
void ShowSource(const SBxPicBuf& picture);
void ShowResult();
void ShowPreview();

// For a closed picture: the background, and the invitation to open another.
void ShowNothing();

// A zoom has changed: the box's text, the focus, the picture.
void ZoomChanged();

// Another part of the picture is in view now: the active tool may want to render that.
void ViewMoved();

// The picture that zooming and panning measure: the source.
const SBxPicBuf& ShownPicture();
