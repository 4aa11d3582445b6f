#pragma once

#include "skin/SkinWindow_win.h"

// Converted buttons (SkinButtonRules.h): push buttons, and check boxes and
// radio buttons that look like them.

// Like a push button, and pressed like one: false for converted buttons of any
// other look.
bool IsConvertedPushLike(HWND hwnd);

// Such a button was pressed: its check, and its group's.
void OnConvertedClick(HWND button);

// Paintings and answers: false leaves the message to the previous procedure.
bool DrawButtonItem(const SkinCall& call,
                    LRESULT* answer); // for the button's parent
bool AnswerButtonDialogCode(const SkinCall& call, LRESULT* answer);
bool SetButtonStyle(const SkinCall& call, LRESULT* answer);
