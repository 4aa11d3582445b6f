#pragma once

#include <string>
#include <vector>

// The rules of the Save As dialog about names, types and formats. No windows here.

struct SaveType
{
    const wchar_t* pattern;   // "*.bmp": shown text and pattern alike
    const wchar_t* extension; // ".bmp"
    int format;               // number that the image library knows
};

// The types on offer, in the order of the type box: four for 8 bits, TIFF and PNG for 16.
std::vector<SaveType> SaveTypesFor(int bitsPerComponent);

// "C:\photos\IMG.2020.jpg" -> "IMG-vexa": the last part of the path up to its first dot.
std::wstring ProposedSaveName(const std::wstring& currentFile);

// Index (from 1) of the type that the current file's name asks for, 0 for none: what follows the
// first dot of the name decides.
int PreselectedSaveType(const std::wstring& currentFile, int bitsPerComponent);

// What the dialog's answer means: the name to write and its format. A name that ends in one of the
// extensions on offer keeps it; any other gets the extension of the selected type (index from 1).
struct SaveTarget
{
    std::wstring path;
    int format;
};
SaveTarget SaveTargetOf(const std::wstring& chosenName, int selectedType, int bitsPerComponent);

// The filter text of a file dialog: pairs of text and pattern, both the pattern, double end.
std::wstring DialogFilter(const std::vector<std::wstring>& patterns);
