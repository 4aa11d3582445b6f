#pragma once

// Numbers of the dialogs around a series. Plain definitions: the resource compiler reads them.

#define IDD_PROGRESS_PANEL 161
#define IDD_NOISE_PROMPT 164
#define IDC_SERIES_TITLE 1011
#define IDC_PROGRESS_TEXT 1012
#define IDC_PROGRESS_BAR 1013
#define IDC_NOISE_LABEL 1014
#define IDC_NOISE_LEVEL 1015
