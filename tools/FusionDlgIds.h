#pragma once

// Numbers of the fusion dialogs. Plain definitions: the resource compiler reads them.

#define IDD_EXPOSURE_FUSION 152
#define IDD_POWER_FUSION 168
#define IDC_FUSION_TITLE 1001
#define IDC_FUSION_LABEL 1002
#define IDC_FUSION_VALUE 1003
#define IDC_FUSION_SLIDER 1004
#define IDC_FUSION_DEFAULT 1005
