#pragma once

// The row with the quality of JPEG files inside the Save As dialog.

#define IDD_JPEG_QUALITY 160
#define IDC_QUALITY_LABEL 1601
#define IDC_QUALITY_SLIDER 1602
#define IDC_QUALITY_VALUE 1603
#define IDC_QUALITY_PERCENT 1604
