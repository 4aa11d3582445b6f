#pragma once

#include "base/Win.h"
#include "tools/Document.h"
#include "tools/Settings.h"
#include "view/ImageView.h"

// The frame as its tools see it: what they work on and what they may ask for. The frame hands one
// to every tool that it opens; it is there as long as the program runs, and its windows' handles
// stay when the windows have gone. Window thread only.
//
// What tools tell the frame beyond this goes by the messages of Messages.h.
struct ToolHost
{
    HINSTANCE instance; // of the dialogs' resources
    HWND frame;
    HWND docker; // parent of the dialogs
    HWND status; // the status bar
    Document* document;
    ImageView* view;
    Settings* settings; // kept by the frame; each tool reads and writes its own group

    void (*updateViewArea)(); // brings the view up to where it lies now, before it is measured
    void (*redrawView)();
    void (*showSource)(); // instead of result or preview
    void (*setStatusText)(const wchar_t* text);
    void (*enableToolCommands)(bool enable); // those that an open tool forbids
    void (*dock)(HWND dialog);               // puts a child of the docker to its place
    void (*undock)(HWND dialog);

    // A tool's dialog is there: it gets the mouse and hears of the view, and commands go off. It
    // has gone: commands are on again. Nothing happens when it was no such dialog.
    void (*toolOpened)(HWND dialog);
    void (*toolClosed)(HWND dialog);
};
