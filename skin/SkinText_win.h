#pragma once

#include "skin/SkinWindow_win.h"

// Labels, edits and the colours of whatever writes its own text. False leaves
// the message to the previous procedure.

bool PaintStatic(const SkinCall& call, LRESULT* answer);
bool PaintDisabledEdit(const SkinCall& call, LRESULT* answer);

// Answers to the colour queries (WM_CTLCOLOR...) that controls send to their
// parent.
bool AnswerFaceColours(const SkinCall& call,
                       LRESULT* answer);                        // dialogs, labels, buttons
bool AnswerFieldColours(const SkinCall& call, LRESULT* answer); // edits
bool AnswerListColours(const SkinCall& call, LRESULT* answer);
bool AnswerTrackColours(const SkinCall& call, LRESULT* answer); // scroll bars
