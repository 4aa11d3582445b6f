#pragma once

#include "text/ProfileStore.h"

// Every visible text. Its number is its name in the file of texts ("string49") and in the program;
// numbers that are missing belong to nobody.
enum TextId
{
    kNoText = 0,
    kTextPreparing = 1,
    kTextCrashedLastTime = 2,
    kTextWarning = 3,
    kTextFileMenu = 4,
    kTextVexaMenu = 5,
    kTextHelpMenu = 6,
    kTextProgressFivePercent = 7,
    kTextSaveAs = 8,
    kTextClose = 9,
    kTextOptionsItem = 10,
    kTextExit = 11,
    kTextMultiImageItem = 12,
    kTextSingleImageItem = 13,
    kTextProgress = 14,
    kTextCannotOpenSelected = 15,
    kTextHelpContents = 16,
    kTextAboutItem = 20,
    kTextUnsavedQuestion = 21,
    kTextShowing = 22,
    kTextOf = 23,
    kTextSaveTip = 24,
    kTextZoomInTip = 25,
    kTextZoomOutTip = 26,
    kTextZoomFitTip = 27,
    kTextZoom100Tip = 28,
    kTextZoomBoxTip = 29,
    kTextMultiImageTip = 30,
    kTextUseArrows = 31,
    kTextSingleImageVexa = 32,
    kTextCannotOpenFile = 33,
    kTextReport = 38,
    kTextError = 40,
    kTextFormatNotSupported = 41,
    kTextAbout = 42,
    kTextSelectLanguage = 43,
    kTextOptions = 44,
    kTextOk = 45,
    kTextCancel = 46,
    kTextRestartNeeded = 47,
    kTextJpegQuality = 48,
    kTextSelectSource = 49,
    kTextSetDefault = 53,
    kTextSameResolution = 54,
    kTextUseArrowsOrF5 = 55,
    kTextPressF5 = 56,
    kTextCancelling = 57,
    kTextSharpnessWeight = 58,
    kTextSaturationWeight = 59,
    kTextExposureWeight = 60,
    kTextExposure = 61,
    kTextVexaFusion = 62,
    kTextMultiImage = 63,
    kTextSingleImage = 64,
    kTextUsePregenerated = 65,
    kTextBatchFusion = 66,
    kTextBatchFinished = 67,
    kTextAbort = 68,
    kTextEstimatedTime = 69,
    kTextElapsedTime = 70,
    kTextBatchCancelled = 71,
    kTextBatchProcessing = 73,
    kTextSelectFolder = 75,
    kTextNothing = 76,
    kTextSelectSeveral = 77,
    kTextLoadItem = 78,
    kTextLoadTip = 79,
    kTextDragHint = 80,
    kTextCompareHint = 81,
    kTextNoiseQuestion = 82,
    kTextNoiseReduction = 83,
    kTextNoiseNone = 84,
    kTextNoiseLow = 85,
    kTextNoiseMedium = 86,
    kTextNoiseHigh = 87,
    kTextToneMappingItem = 98,
    kTextDaylightUpItem = 99,
    kTextDaylightDownItem = 100,
    kTextSmartContrastItem = 101,
    kTextLevelsOfDetail = 102,
    kTextBrightness = 103,
    kTextFlatness = 104,
    kTextPower = 105,
    kTextStretchHistogram = 106,
    kTextPreview = 108,
    kTextContrast = 109,
    kTextNoiseAmplitude = 110,
    kTextDetails = 111,
    kTextEqualization = 112,
    kTextUseColors = 113,

    // In the view while no picture is open.
    kTextInvitation = 115,
    kTextPurpose = 116,   // second line of the About box
    kTextLibraries = 117, // heads the list there
    // Why a picture was not saved.
    kTextSaveMemory = 118,
    kTextSaveFormat = 119,
    kTextSaveDepth = 120,
    kTextSaveCreate = 121,
    kTextSaveEncode = 122,
    kTextSaveWrite = 123,
    // Where the libraries' terms are.
    kTextNotices = 124,
    // A file of settings was not written; its name and the reason follow.
    kTextSettings = 125,
};

constexpr int kStringCount = 125;
constexpr int kStringChars = 1024; // final zero included

// The table itself, by number; [0] is not used. Written by the loaders on the window thread before
// anybody reads, which is by Text.
extern wchar_t g_strings[kStringCount + 1][kStringChars];

// The text in the language in use; the pointer stays good for the life of the program.
inline const wchar_t* Text(TextId id)
{
    return g_strings[id];
}

// The built-in text; empty for the numbers that nobody uses, and for 76.
const wchar_t* EnglishText(int number);

// A text that the file has, even an empty one, wins over the built-in text.
void LoadStrings(const ProfileStore& store, int language);
void ReloadString(const ProfileStore& store, int language, int number); // a single one

// All texts in the language in use, from the file beside the program. Windows only.
void LoadLocalizedStrings();
