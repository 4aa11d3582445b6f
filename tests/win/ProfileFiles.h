#pragma once

#include <string>

// The two profile files of a test program: settings under a product name of its own, and the
// localization file beside the program.

// Starts without either file.
void UseFreshProfileFiles();

std::wstring SettingsFilePath();
std::wstring LocalizationFilePath();

// Writes text as the localization file's UTF-16, and reads a file's bytes.
void WriteLocalization(const std::wstring& text);
std::string FileBytes(const std::wstring& path);

// Keeps everybody from writing the localization file for as long as it lives. (A read-only file
// would not do: who may do anything may write that too.)
class HeldLocalization
{
public:
    HeldLocalization();
    ~HeldLocalization();
    HeldLocalization(const HeldLocalization&) = delete;

private:
    void* handle;
};
