#include "app/FileNames.h"

#include <gtest/gtest.h>

TEST(SaveNames, AreCutAtTheLastDot)
{
    EXPECT_EQ(ProposedSaveName(L"C:\\photos\\house.jpg"), L"house-vexa");
    EXPECT_EQ(ProposedSaveName(L"C:\\pho.tos\\IMG.2020.jpg"), L"IMG.2020-vexa");
    EXPECT_EQ(ProposedSaveName(L"plain"), L"plain-vexa");
    EXPECT_EQ(ProposedSaveName(L""), L"-vexa");
}

TEST(SaveTypes, ArePreselectedByTheEnding)
{
    const struct
    {
        const wchar_t* file;
        int of8, of16;
    } cases[] = {{L"a.bmp", 1, 0},    {L"d\\a.TIF", 2, 1},     {L"a.png", 3, 2},
                 {L"a.Jpg", 4, 0},    {L"a.JPEG", 4, 0},       {L"a.2020.jpg", 4, 0},
                 {L"a", 0, 0},        {L"x.png\\a.bmp", 1, 0}, {L"a.tiff", 2, 1},
                 {L"x.jpg\\a", 0, 0}, {L"a.webp", 0, 0}};
    for (const auto& c : cases)
    {
        EXPECT_EQ(PreselectedSaveType(c.file, 8), c.of8) << c.file;
        EXPECT_EQ(PreselectedSaveType(c.file, 16), c.of16) << c.file;
    }
}

TEST(OpenDialogs, ShowTheUsualFormatsAndForASeriesGif)
{
    EXPECT_EQ(OpenPattern(false), L"*.bmp;*.jpg;*.jpeg;*.tif;*.tiff;*.png;*.webp");
    EXPECT_EQ(OpenPattern(true), L"*.bmp;*.jpg;*.jpeg;*.gif;*.tif;*.tiff;*.png;*.webp");
}

TEST(SaveTypes, ShowAllEndingsOfAFormat)
{
    std::wstring patterns;
    for (const SaveType& type : SaveTypesFor(8))
        patterns += type.pattern + L" " + type.extension + L" ";
    EXPECT_EQ(patterns, L"*.bmp .bmp *.tif;*.tiff .tif *.png .png *.jpg;*.jpeg .jpg ");
}

TEST(SaveTargets, TakeTheirFormatFromTheNameOrTheType)
{
    const struct
    {
        const wchar_t* name;
        int type, bits;
        const wchar_t* path;
        FormatId format;
    } cases[] = {{L"photo.PNG", 1, 8, L"photo.PNG", kFormatPng},
                 {L"photo", 1, 8, L"photo.bmp", kFormatBmp},
                 {L"photo", 2, 8, L"photo.tif", kFormatTiff},
                 {L"photo", 4, 8, L"photo.jpg", kFormatJpeg},
                 {L"x.jpeg", 1, 8, L"x.jpeg", kFormatJpeg},
                 {L"x.17.Tiff", 1, 16, L"x.17.Tiff", kFormatTiff},
                 {L"o", 1, 16, L"o.tif", kFormatTiff},
                 {L"o", 2, 16, L"o.png", kFormatPng},
                 {L"x.jpg", 1, 16, L"x.jpg.tif", kFormatTiff}, // 16 bits know no JPEG
                 {L"o", 0, 8, L"o.bmp", kFormatBmp},
                 {L"o", 9, 16, L"o.png", kFormatPng},
                 {L".jpg", 1, 8, L".jpg", kFormatJpeg}};
    for (const auto& c : cases)
    {
        const SaveTarget target = SaveTargetOf(c.name, c.type, c.bits);
        EXPECT_EQ(target.path, c.path) << c.name;
        EXPECT_EQ(target.format, c.format) << c.name;
    }
}
