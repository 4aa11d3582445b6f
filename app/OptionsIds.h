#pragma once

// Numbers of the Options dialog. Plain definitions: the resource compiler reads them.

#define IDD_OPTIONS 158
#define IDC_OPTIONS_LABEL 1001
#define IDC_OPTIONS_LANGUAGE 1002
