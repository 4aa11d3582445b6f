#include "tests/win/ProfileFiles.h"

#include "base/Win.h"
#include "text/ProfileStore.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

// Test programs run at the same time: each has a product of its own.
static const std::string& Product()
{
    static const std::string product = "PlenovizTest" + std::to_string(GetCurrentProcessId());
    return product;
}

static std::wstring WideProduct()
{
    return {Product().begin(), Product().end()};
}

static std::wstring SettingsFolder()
{
    return std::wstring(_wgetenv(L"APPDATA")) + L"\\" + WideProduct();
}

std::wstring SettingsFilePath()
{
    return SettingsFolder() + L"\\" + WideProduct() + L".txt";
}

std::wstring LocalizationFilePath()
{
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring program = path;
    return program.substr(0, program.rfind(L'\\') + 1) + L"Plenoviz_loc.ini";
}

void UseFreshProfileFiles()
{
    g_productName = Product().c_str();
    DeleteFileW(SettingsFilePath().c_str());
    DeleteFileW(LocalizationFilePath().c_str());
    RemoveDirectoryW(SettingsFolder().c_str());
}

void WriteLocalization(const std::wstring& text)
{
    std::ofstream file(LocalizationFilePath().c_str(), std::ios::binary);
    file.write("\xff\xfe", 2);
    file.write(reinterpret_cast<const char*>(text.data()), std::streamsize(text.size() * 2));
}

std::string FileBytes(const std::wstring& path)
{
    std::ifstream file(path.c_str(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

HeldLocalization::HeldLocalization()
{
    handle = CreateFileW(LocalizationFilePath().c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                         OPEN_EXISTING, 0, nullptr);
}

HeldLocalization::~HeldLocalization()
{
    CloseHandle(handle);
}
