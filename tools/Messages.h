#pragma once

// Private messages by which tool dialogs and workers talk to the frame window. All are sent with
// both parameters 0. Numbers between 4252 and 4275 that are not listed belong to nobody: new
// messages get numbers outside of that range.

constexpr unsigned WM_APP_PREVIEW_READY = 4247;  // redraw the view from the preview picture
constexpr unsigned WM_APP_SHOW_RESULT = 4252;    // show the result picture
constexpr unsigned WM_APP_RESULT_CREATED = 4255; // there is a result that has not been saved
constexpr unsigned WM_APP_CURSOR_WAIT = 4257;
constexpr unsigned WM_APP_CURSOR_ARROW = 4258;
constexpr unsigned WM_APP_CURSOR_MOVE = 4259;
constexpr unsigned WM_APP_SHOW_RESULT_FIT = 4260;  // as SHOW_RESULT, with the area taken anew
constexpr unsigned WM_APP_TOOL_DONE = 4266;        // a tool's dialog has closed with OK
constexpr unsigned WM_APP_TOOL_CANCELLED = 4267;   // a tool was cancelled: preview back over result
constexpr unsigned WM_APP_START_WORKER = 4270;     // run the tone mapping worker
constexpr unsigned WM_APP_ZOOM_TEXT = 4271;        // the zoom box holds a typed value
constexpr unsigned WM_APP_VIEW_REFRESH = 4275;     // render the cached display again
constexpr unsigned WM_APP_SERIES_CANCELLED = 4300; // a series worker was stopped: show the source
constexpr unsigned WM_APP_ZOOM_TEXT_RESTORE = 4301; // the zoom box lost the focus: its text anew

// Posted to the progress panel by a series worker: percent and place of the bar.
constexpr unsigned WM_APP_SERIES_PROGRESS = 4303;

// Posted to the active tool, both parameters 0.
constexpr unsigned WM_APP_VIEW_MOVED = 4302; // panned, zoomed or resized: another part is in view

// Sent to the active tool while the picture is being dragged, before the view is drawn, so that the
// tool can see to what comes into view; both parameters 0. The end of it is a move as above.
constexpr unsigned WM_APP_VIEW_MOVING = 4304;

// Sent to the active tool while the mouse is on its preview rectangle, with the position in the
// frame's client area in lParam. A grab is answered with 1 if the tool wants to move the rectangle;
// then WM_MOUSEMOVE and one drop follow.
constexpr unsigned WM_APP_PREVIEW_GRAB = 4310;
constexpr unsigned WM_APP_PREVIEW_DROP = 4311;
