#include "text/Strings.h"

#include "text/LanguageFile.h"

#include <algorithm>
#include <cwchar>

wchar_t g_strings[kStringCount + 1][kStringChars];

struct EnglishRow
{
    int number;
    const wchar_t* text;
};

// Blanks at the ends belong to the texts: 14 stands before a number, 102 behind a frame's corner.
static const EnglishRow kEnglish[] = {
    {1, L"Preparing images ..."},
    {2, L"The application crashed last time. It's probably caused by low memory."},
    {3, L"Warning"},
    {4, L"File"},
    {5, L"Create Vexa"},
    {6, L"Help"},
    {7, L"Progress: 5%"},
    {8, L"Save As..."},
    {9, L"Close"},
    {10, L"Options..."},
    {11, L"Exit"},
    {12, L"Multi Image Vexa..."},
    {13, L"Single Image Vexa Light..."},
    {14, L"Progress: "},
    {15, L"Cannot open selected file"},
    {16, L"Help Contents"},
    {20, L"About..."},
    {21, L"Vexa image was created but not saved, do you want to continue without saving?"},
    {22, L"Showing"},
    {23, L"of"},
    {24, L"Save Image As (Ctrl+S)"},
    {25, L"Zoom In (+)"},
    {26, L"Zoom Out (-)"},
    {27, L"Zoom Image to Fit the Window"},
    {28, L"Set Zoom 100%"},
    {29, L"Set Zoom"},
    {30, L"Multi Image Vexa..."},
    {31, L"Use arrows to change it."},
    {32, L"Single Image Vexa"},
    {33, L"Cannot open file:"},
    {38, L"Report"},
    {40, L"Error"},
    {41, L"Image format not supported!"},
    {42, L"About"},
    {43, L"Select Language:"},
    {44, L"Options"},
    {45, L"OK"},
    {46, L"Cancel"},
    {47, L"You have to restart application to affect the language change"},
    {48, L"Jpeg Quality:"},
    {49, L"Select Source for Vexa"},
    {53, L"Set Default"},
    {54, L"All the files must have the same resolution and number of components!"},
    {55, L"Use arrows to change it or F5 to switch to Vexa image."},
    {56, L"Press F5 to switch between source images and Vexa Image."},
    {57, L"Canceling ..."},
    {58, L"Sharpness weight:"},
    {59, L"Saturation weight:"},
    {60, L"Exposure weight:"},
    {61, L"Exposure:"},
    {62, L"Vexa Fusion"},
    {63, L"Multi Image Vexa"},
    {64, L"Single Image Vexa"},
    {65, L"There are already pre-generated files in the temporary folder. Do you want to "
         L"use them and save your time?"},
    {66, L"Batch Vexa Fusion"},
    {67, L"Batch Vexa successfully finished."},
    {68, L"Abort"},
    {69, L"Estimated time:"},
    {70, L"Elapsed time:"},
    {71, L"Batch Vexa was canceled."},
    {73, L"Single Image Vexa - Batch Processing..."},
    {75, L"Please select the folder"},
    {76, L""},
    {77, L"Please select more than one file as the source, using shift in open dialog."},
    {78, L"Load Image..."},
    {79, L"Load Image... Ctrl+O"},
    {80, L"Click and drag to move image or preview rectangle, Right-click for comparison "
         L"between original and Vexa image"},
    {81, L"Right-click for comparison between original and Vexa image"},
    {82, L"Please set noise reduction level"},
    {83, L"Noise Reduction:"},
    {84, L"None"},
    {85, L"Low"},
    {86, L"Medium"},
    {87, L"High"},
    {98, L"Tone Mapping..."},
    {99, L"Single Image Daylight Up..."},
    {100, L"Single Image Daylight Down..."},
    {101, L"Smart Contrast..."},
    {102, L" Levels of details"},
    {103, L"Brightness"},
    {104, L"Flatness"},
    {105, L"Power"},
    {106, L"Stretch Histogram"},
    {108, L"Preview"},
    {109, L"Contrast:"},
    {110, L"Noise Aplitude:"},
    {111, L"Details Enhancement:"},
    {112, L"Tone Equalization:"},
    {113, L"Use Extra Colors"},
    {kTextInvitation, L"Open a picture (Ctrl+O) or drop it here"},
    {kTextPurpose, L"Photographs with detail in shadows and highlights"},
    {kTextLibraries, L"Libraries in this program:"},
    {kTextSaveMemory, L"There is not enough memory to save the picture."},
    {kTextSaveFormat, L"Pictures cannot be saved in this format."},
    {kTextSaveDepth, L"This format cannot hold the picture (16 bits need TIFF or PNG)."},
    {kTextSaveCreate, L"The file cannot be created."},
    {kTextSaveEncode, L"The picture cannot be encoded in this format."},
    {kTextSaveWrite, L"The file cannot be written."},
    {kTextNotices, L"Their terms are in the folder Notices, beside the program."},
    {kTextSettings, L"The settings cannot be saved."},
};

const wchar_t* EnglishText(int number)
{
    const EnglishRow* row = std::find_if(std::begin(kEnglish), std::end(kEnglish),
                                         [=](const EnglishRow& r) { return r.number == number; });
    return row == std::end(kEnglish) ? L"" : row->text;
}

void ReloadString(const ProfileStore& store, int language, int number)
{
    const std::wstring text = ReadText(store, LanguageSection(language),
                                       L"string" + std::to_wstring(number), EnglishText(number));
    const size_t count = text.copy(g_strings[number], kStringChars - 1);
    g_strings[number][count] = L'\0';
}

void LoadStrings(const ProfileStore& store, int language)
{
    for (int number = 1; number <= kStringCount; ++number)
        ReloadString(store, language, number);
}
