#include "text/Strings.h"

#include "text/LanguageFile.h"

#include <algorithm>
#include <cwchar>

wchar_t g_strings[kStringCount + 1][kStringChars];

struct EnglishRow
{
    TextId number;
    const wchar_t* text;
};

// Blanks at the ends belong to the texts: 14 stands before a number, 102 behind a frame's corner.
static const EnglishRow kEnglish[] = {
    {kTextPreparing, L"Preparing images ..."},
    {kTextCrashedLastTime,
     L"The application crashed last time. It's probably caused by low memory."},
    {kTextWarning, L"Warning"},
    {kTextFileMenu, L"File"},
    {kTextVexaMenu, L"Create Vexa"},
    {kTextHelpMenu, L"Help"},
    {kTextProgressFivePercent, L"Progress: 5%"},
    {kTextSaveAs, L"Save As..."},
    {kTextClose, L"Close"},
    {kTextOptionsItem, L"Options..."},
    {kTextExit, L"Exit"},
    {kTextMultiImageItem, L"Multi Image Vexa..."},
    {kTextSingleImageItem, L"Single Image Vexa Light..."},
    {kTextProgress, L"Progress: "},
    {kTextCannotOpenSelected, L"Cannot open selected file"},
    {kTextHelpContents, L"Help Contents"},
    {kTextAboutItem, L"About..."},
    {kTextUnsavedQuestion,
     L"Vexa image was created but not saved, do you want to continue without saving?"},
    {kTextShowing, L"Showing"},
    {kTextOf, L"of"},
    {kTextSaveTip, L"Save Image As (Ctrl+S)"},
    {kTextZoomInTip, L"Zoom In (+)"},
    {kTextZoomOutTip, L"Zoom Out (-)"},
    {kTextZoomFitTip, L"Zoom Image to Fit the Window"},
    {kTextZoom100Tip, L"Set Zoom 100%"},
    {kTextZoomBoxTip, L"Set Zoom"},
    {kTextMultiImageTip, L"Multi Image Vexa..."},
    {kTextUseArrows, L"Use arrows to change it."},
    {kTextSingleImageVexa, L"Single Image Vexa"},
    {kTextCannotOpenFile, L"Cannot open file:"},
    {kTextReport, L"Report"},
    {kTextError, L"Error"},
    {kTextFormatNotSupported, L"Image format not supported!"},
    {kTextAbout, L"About"},
    {kTextSelectLanguage, L"Select Language:"},
    {kTextOptions, L"Options"},
    {kTextOk, L"OK"},
    {kTextCancel, L"Cancel"},
    {kTextRestartNeeded, L"You have to restart application to affect the language change"},
    {kTextJpegQuality, L"Jpeg Quality:"},
    {kTextSelectSource, L"Select Source for Vexa"},
    {kTextSetDefault, L"Set Default"},
    {kTextSameResolution, L"All the files must have the same resolution and number of components!"},
    {kTextUseArrowsOrF5, L"Use arrows to change it or F5 to switch to Vexa image."},
    {kTextPressF5, L"Press F5 to switch between source images and Vexa Image."},
    {kTextCancelling, L"Canceling ..."},
    {kTextSharpnessWeight, L"Sharpness weight:"},
    {kTextSaturationWeight, L"Saturation weight:"},
    {kTextExposureWeight, L"Exposure weight:"},
    {kTextExposure, L"Exposure:"},
    {kTextVexaFusion, L"Vexa Fusion"},
    {kTextMultiImage, L"Multi Image Vexa"},
    {kTextSingleImage, L"Single Image Vexa"},
    {kTextUsePregenerated,
     L"There are already pre-generated files in the temporary folder. Do you want to "
     L"use them and save your time?"},
    {kTextBatchFusion, L"Batch Vexa Fusion"},
    {kTextBatchFinished, L"Batch Vexa successfully finished."},
    {kTextAbort, L"Abort"},
    {kTextEstimatedTime, L"Estimated time:"},
    {kTextElapsedTime, L"Elapsed time:"},
    {kTextBatchCancelled, L"Batch Vexa was canceled."},
    {kTextBatchProcessing, L"Single Image Vexa - Batch Processing..."},
    {kTextSelectFolder, L"Please select the folder"},
    {kTextNothing, L""},
    {kTextSelectSeveral,
     L"Please select more than one file as the source, using shift in open dialog."},
    {kTextLoadItem, L"Load Image..."},
    {kTextLoadTip, L"Load Image... Ctrl+O"},
    {kTextDragHint,
     L"Click and drag to move image or preview rectangle, Right-click for comparison "
     L"between original and Vexa image"},
    {kTextCompareHint, L"Right-click for comparison between original and Vexa image"},
    {kTextNoiseQuestion, L"Please set noise reduction level"},
    {kTextNoiseReduction, L"Noise Reduction:"},
    {kTextNoiseNone, L"None"},
    {kTextNoiseLow, L"Low"},
    {kTextNoiseMedium, L"Medium"},
    {kTextNoiseHigh, L"High"},
    {kTextToneMappingItem, L"Tone Mapping..."},
    {kTextDaylightUpItem, L"Single Image Daylight Up..."},
    {kTextDaylightDownItem, L"Single Image Daylight Down..."},
    {kTextSmartContrastItem, L"Smart Contrast..."},
    {kTextLevelsOfDetail, L" Levels of details"},
    {kTextBrightness, L"Brightness"},
    {kTextFlatness, L"Flatness"},
    {kTextPower, L"Power"},
    {kTextStretchHistogram, L"Stretch Histogram"},
    {kTextPreview, L"Preview"},
    {kTextContrast, L"Contrast:"},
    {kTextNoiseAmplitude, L"Noise Aplitude:"},
    {kTextDetails, L"Details Enhancement:"},
    {kTextEqualization, L"Tone Equalization:"},
    {kTextUseColors, L"Use Extra Colors"},
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

// Text by text, English where a translation lacks one: an old file of texts still works. What is
// too long is cut: pointers to the texts are held all over, so their room never moves.
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
