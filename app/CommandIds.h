#pragma once

// Numbers of commands, controls and resources. Plain definitions: the resource compiler reads them.

#include "tools/ToolCommandIds.h"

#define IDM_ABOUT 104
#define IDM_EXIT 105
#define ID_FILE_OPEN 32771
#define ID_FILE_SAVEAS 32773
#define ID_HELP_CONTENTS 32788
#define ID_FILE_CLOSE 32790
#define ID_ZOOM_IN 32793
#define ID_ZOOM_OUT 32794
#define ID_ZOOM_FIT 32795
#define ID_MULTI_IMAGE 32805
#define ID_ZOOM_100 32809
#define ID_ZOOM_COMBO 32810
#define ID_MENU_BUTTON 32811
#define ID_TOOLBAR_SPACER 32812
#define ID_OPTIONS 32813
#define ID_SWITCH_VIEW 32816
#define ID_SINGLE_LIGHT 32824
#define ID_DAYLIGHT_UP 32826
#define ID_DAYLIGHT_DOWN 32827
#define ID_SMART_CONTRAST 32829
#define ID_TONE_MAPPING 32832

#define IDS_APP_TITLE 103
#define IDS_WINDOW_CLASS 109
#define IDR_ACCELERATORS 109
#define IDI_PLENOVIZ 148
#define IDC_TOOLBAR 109
