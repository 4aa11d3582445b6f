#pragma once

// Numbers of the dialogs of Smart Contrast and Tone Mapping. Plain definitions: the resource
// compiler reads them.

#define IDD_SMART_CONTRAST 167
#define IDD_TONE_MAPPING 170

#define IDC_TOOL_FRAME 1100

// Controls of a tool's first number; those of its next rows follow (tools/Parameters.cpp).
#define IDC_LEVEL_SLIDER 1110
#define IDC_LEVEL_VALUE 1120

#define IDC_TONE_LABEL 1130
#define IDC_TONE_SLIDER 1140
#define IDC_TONE_VALUE 1150
#define IDC_TONE_BOX 1160
#define IDC_TONE_COLORS 1164
#define IDC_TONE_PREVIEW 1170
#define IDC_TONE_STOP 1171
#define IDC_TONE_PROGRESS 1172
