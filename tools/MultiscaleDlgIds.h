#pragma once

// Numbers of the dialogs of Smart Contrast and Tone Mapping. Plain definitions: the resource
// compiler reads them.

#define IDD_SMART_CONTRAST 167
#define IDD_TONE_MAPPING 170

#define IDC_TOOL_FRAME 1100

// One slider and one value per level, finest first.
#define IDC_LEVEL_SLIDER 1110
#define IDC_LEVEL_VALUE 1120

// One label, slider and value per parameter.
#define IDC_TONE_LABEL 1130
#define IDC_TONE_SLIDER 1140
#define IDC_TONE_VALUE 1150
#define IDC_TONE_COLORS 1160
#define IDC_TONE_PREVIEW 1161
#define IDC_TONE_STOP 1162
#define IDC_TONE_PROGRESS 1163
