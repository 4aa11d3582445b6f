#pragma once

#include "files/Formats.h"

#include <string>
#include <vector>

// The rules of the Save As dialog about names, types and formats. No windows here.

struct SaveType
{
    std::wstring pattern;   // "*.jpg;*.jpeg": shown text and pattern alike
    std::wstring extension; // ".jpg": what is appended
    FormatId format;
};

// The types on offer, in the order of the type box: those that hold such pictures, grey or
// coloured.
std::vector<SaveType> SaveTypesFor(int bitsPerComponent);

// "C:\photos\IMG.2020.jpg" -> "IMG.2020-vexa": the last part of the path up to its last dot.
std::wstring ProposedSaveName(const std::wstring& currentFile);

// Index (from 1) of the type that the current file's ending asks for, 0 for none.
int PreselectedSaveType(const std::wstring& currentFile, int bitsPerComponent);

// What the dialog's answer means: the name to write and its format. A name that ends in one of the
// endings on offer keeps it; any other gets the extension of the selected type (index from 1).
struct SaveTarget
{
    std::wstring path;
    FormatId format;
};
SaveTarget SaveTargetOf(const std::wstring& chosenName, int selectedType, int bitsPerComponent);

// What the dialog shows that opens one picture, or one that opens a series: "*.bmp;*.jpg;*.jpeg".
std::wstring OpenPattern(bool series);

// The filter text of a file dialog: pairs of text and pattern, both the pattern, double end.
std::wstring DialogFilter(const std::vector<std::wstring>& patterns);
