#pragma once

#include "base/Outcome.h"

#include <cstdint>
#include <cstdio>
#include <string>

// What image files need from the operating system. Paths inside the engine are UTF-8. Saving works
// with paths in the system's own narrow text: UTF-8 as well, except on Windows, where it is the
// ANSI code page of the process (UTF-8 on current versions, which the program's manifest asks for).

// Longest path that saving takes, in bytes without the final zero.
constexpr int kMaxSavePathBytes = 1023;

enum class PathUse
{
    Target, // a file to be written; need not exist
    Source, // a file that exists
};

// Turns a UTF-8 path into one for saving. Where the code page lacks a letter, the short name of the
// folder (or of the whole path, if it is a source) stands in; letters are never replaced by similar
// ones, since that would name another file. Fails when the path cannot be expressed or is too
// long.
Outcome SavePathFromUtf8(std::string* savePath, const char* path, PathUse use);
#ifdef _WIN32
Outcome SavePathFromWide(std::string* savePath, const wchar_t* path, PathUse use);
std::wstring WideFromUtf8(const char* text); // empty when the text is not UTF-8
std::wstring WideFromSavePath(const char* savePath);

// Gives a file the place of another one, for good. Tries for half a second: virus scanners and
// indexers hold new files open for a moment. The system's error, 0 when it is done.
unsigned long MoveOverFile(const std::wstring& from, const std::wstring& to);
#endif

// A file, whatever names and links lead to it.
struct FileIdentity
{
    uint64_t volume = 0, number = 0;
};
bool operator<(const FileIdentity& a, const FileIdentity& b);

// False when there is no such file (path in UTF-8).
bool IdentifyFile(FileIdentity* identity, const char* path);

// The path, so that names that the system takes for the same are the same: without case on Windows.
std::string PathKey(const std::string& path);

// Opens a file for reading in binary mode; null with errno set on failure. Folders do not open.
// What comes through a pipe can be read once only: it is kept in a file without a name, so that it
// opens like any other and as often.
FILE* OpenUtf8Path(const char* path);
FILE* OpenSavePath(const char* savePath);

// Memory built into the machine.
int64_t PhysicalMemoryBytes();
