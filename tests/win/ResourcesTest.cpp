#include "app/CommandIds.h"
#include "app/CommandRules.h"
#include "base/Win.h"

#include <gtest/gtest.h>

#include <string>

// Width and height of a PNG resource of the program, 0 when it is missing or no PNG.
static unsigned PngSize(const std::wstring& name)
{
    const HRSRC place = FindResourceW(nullptr, name.c_str(), L"PNG");
    if (!place || SizeofResource(nullptr, place) < 24)
        return 0;
    const auto* bytes =
        static_cast<const unsigned char*>(LockResource(LoadResource(nullptr, place)));
    if (std::string(bytes + 1, bytes + 4) != "PNG" || bytes[19] != bytes[23])
        return 0;
    return bytes[19];
}

TEST(ImageResources, AreThereInTheirSize)
{
    for (int i = 0; i < kCommandCount; ++i)
        EXPECT_TRUE(!kCommands[i].image || PngSize(kCommands[i].image) == 32u) << kCommands[i].id;
    for (const wchar_t* kind : {L"CHECK", L"CHECKD", L"RADIO", L"RADIOD"})
        for (const wchar_t* state :
             {L"_SELON", L"_SELOFF", L"_DESON", L"_DESOFF", L"_SEMION", L"_SEMIOFF"})
            EXPECT_EQ(PngSize(std::wstring(kind) + state),
                      *kind == L'R' && state[2] == L'E' && state[3] == L'M' ? 0u : 16u)
                << kind << state;
}

TEST(ProgramIcon, HasADrawingForEachSize)
{
    for (int size : {16, 24, 32, 48, 64, 128, 256})
    {
        const HANDLE icon = LoadImageW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDI_PLENOVIZ),
                                       IMAGE_ICON, size, size, 0);
        ASSERT_TRUE(icon) << size;
        ICONINFO info;
        ASSERT_TRUE(GetIconInfo(HICON(icon), &info));
        BITMAP color = {};
        GetObjectW(info.hbmColor, sizeof color, &color);
        EXPECT_EQ(color.bmWidth, size);
        EXPECT_EQ(color.bmHeight, size);
        EXPECT_EQ(color.bmBitsPixel, 32);
        DeleteObject(info.hbmColor);
        DeleteObject(info.hbmMask);
        DestroyIcon(HICON(icon));
    }
}
