#pragma once

#include "text/ProfileStore.h"

// Every visible text, by number. Written by the loaders on the window thread before anybody reads.

constexpr int kStringCount = 125;
constexpr int kStringChars = 1024; // final zero included

extern wchar_t g_strings[kStringCount + 1][kStringChars]; // [0] is not used

// Numbers beyond 114, for what is said in words nowhere else.
enum FurtherText
{
    kTextInvitation = 115, // in the view while no picture is open
    kTextPurpose,          // second line of the About box
    kTextLibraries,        // heads the list there
    kTextSaveMemory,       // why a picture was not saved
    kTextSaveFormat,
    kTextSaveDepth,
    kTextSaveCreate,
    kTextSaveEncode,
    kTextSaveWrite,
    kTextNotices,  // where the libraries' terms are
    kTextSettings, // a file of settings was not written; its name and the reason follow
};

// The built-in text; empty for the numbers that nobody uses, and for 76.
const wchar_t* EnglishText(int number);

// A text that the file has, even an empty one, wins over the built-in text.
void LoadStrings(const ProfileStore& store, int language);
void ReloadString(const ProfileStore& store, int language, int number); // a single one

// All texts in the language in use, from the file beside the program. Windows only.
void LoadLocalizedStrings();
