#pragma once

#include "skin/SkinWindow_win.h"

// The paintings, by the control that they are of. Each answers a message in the control's place, or
// returns false and leaves it to the procedure before.

// SkinButtons_win.cpp
bool PaintButton(const SkinCall& call, LRESULT* answer); // check boxes, radio buttons, group boxes
bool DrawButtonItem(const SkinCall& call, LRESULT* answer); // converted ones, for their parent
bool AnswerButtonDialogCode(const SkinCall& call, LRESULT* answer);
bool SetButtonStyle(const SkinCall& call, LRESULT* answer);

// SkinText_win.cpp
bool PaintStatic(const SkinCall& call, LRESULT* answer);
bool PaintDisabledEdit(const SkinCall& call, LRESULT* answer);
bool AnswerColours(const SkinCall& call, LRESULT* answer);

// SkinFrames_win.cpp
bool PaintFrame(const SkinCall& call, LRESULT* answer);
bool PaintMenuFrame(const SkinCall& call, LRESULT* answer);

// SkinLists_win.cpp
bool PaintCombo(const SkinCall& call, LRESULT* answer);
bool FillWithWindowColour(const SkinCall& call, LRESULT* answer); // until a child covers it
bool DrawForeignItem(const SkinCall& call, LRESULT* answer);      // of the system's own dialogs
bool PaintHeader(const SkinCall& call, LRESULT* answer);
bool PaintTab(const SkinCall& call, LRESULT* answer);

// SkinBars_win.cpp
bool PaintProgress(const SkinCall& call, LRESULT* answer);
bool PaintTrackbar(const SkinCall& call, LRESULT* answer);

bool PaintStatusBar(const SkinCall& call, LRESULT* answer);

// SkinToolbar_win.cpp
bool PaintToolbar(const SkinCall& call, LRESULT* answer);

// SkinScroll_win.cpp
bool PaintScrollBar(const SkinCall& call, LRESULT* answer);
bool PaintUpDown(const SkinCall& call, LRESULT* answer);
