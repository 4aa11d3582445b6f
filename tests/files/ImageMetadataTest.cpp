#include "files/ExifBlock.h"
#include "files/FileHeaders.h"
#include "files/ImageFile.h"
#include "files/Metadata.h"
#include "picture/Orientation.h"

#include "tests/support/TestFiles.h"

#include <FreeImage.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>

// What travels from a source into a saved file, read back through FreeImage. PNG profiles are read
// from TIFF copies, since FreeImage does not see them in PNG files.

namespace
{

using Bitmap = std::unique_ptr<FIBITMAP, void (*)(FIBITMAP*)>;

Bitmap Load(const std::string& file)
{
    FIBITMAP* bitmap = FreeImage_Load(FreeImage_GetFileType(file.c_str(), 0), file.c_str(), 0);
    EXPECT_TRUE(bitmap) << file;
    return Bitmap(bitmap, [](FIBITMAP* owned) { FreeImage_Unload(owned); });
}

Bytes ProfileOf(const std::string& file)
{
    const Bitmap bitmap = Load(file);
    const FIICCPROFILE* profile = FreeImage_GetICCProfile(bitmap.get());
    const uint8_t* data = static_cast<const uint8_t*>(profile->data);
    return data ? Bytes(data, data + profile->size) : Bytes();
}

// Every tag of a model by name, as text.
std::map<std::string, std::string> TagsOf(const std::string& file, FREE_IMAGE_MDMODEL model)
{
    const Bitmap bitmap = Load(file);
    std::map<std::string, std::string> tags;
    FITAG* tag = nullptr;
    FIMETADATA* search = FreeImage_FindFirstMetadata(model, bitmap.get(), &tag);
    for (bool more = search != nullptr; more; more = FreeImage_FindNextMetadata(search, &tag))
    {
        const char* text = FreeImage_TagToString(model, tag);
        tags[FreeImage_GetTagKey(tag)] = text ? text : "";
    }
    FreeImage_FindCloseMetadata(search);
    return tags;
}

void SetTag(FIBITMAP* bitmap, FREE_IMAGE_MDMODEL model, const char* key, FREE_IMAGE_MDTYPE type,
            const void* data, size_t size, int id = 0)
{
    FITAG* tag = FreeImage_CreateTag();
    FreeImage_SetTagID(tag, WORD(id));
    FreeImage_SetTagKey(tag, key);
    FreeImage_SetTagType(tag, type);
    FreeImage_SetTagLength(tag, DWORD(size));
    FreeImage_SetTagCount(tag, DWORD(size));
    FreeImage_SetTagValue(tag, data);
    FreeImage_SetMetadata(model, bitmap, key, tag);
    FreeImage_DeleteTag(tag);
}

const std::string kXmp = "<?xpacket begin='' id=''?><x:xmpmeta xmlns:x='adobe:ns:meta/'/>";

ExifFields SomeExposure()
{
    ExifFields fields;
    fields.make = "Plenoviz";
    fields.model = "Sample";
    fields.software = "1"; // short enough to sit inside its entry
    fields.dateTime = "2024:05:06 07:08:09";
    fields.exposureTime = {1, 250};
    fields.fNumber = {56, 10};
    fields.width = 24;
    fields.height = 16;
    fields.iso = 400;
    fields.biasNumerator = -4;
    fields.biasDenominator = 2;
    return fields;
}

// A photograph with everything that a camera and an editor leave in a file.
std::string WriteSource(const TempFolder& folder, const char* name, const Bytes& profile,
                        const Bytes& exif)
{
    FIBITMAP* bitmap = FreeImage_Allocate(24, 16, 24);
    if (!profile.empty())
        FreeImage_CreateICCProfile(bitmap, const_cast<uint8_t*>(profile.data()),
                                   long(profile.size()));
    SetTag(bitmap, FIMD_XMP, "XMLPacket", FIDT_ASCII, kXmp.data(), kXmp.size());
    if (!exif.empty())
        SetTag(bitmap, FIMD_EXIF_RAW, "ExifRaw", FIDT_BYTE, exif.data(), exif.size());
    const std::string file = folder.File(name);
    EXPECT_TRUE(FreeImage_Save(FreeImage_GetFIFFromFilename(name), bitmap, file.c_str(), 0));
    FreeImage_Unload(bitmap);
    return file;
}

TEST(Source, GivesItsProfileToEveryFormatThatHoldsOne)
{
    const TempFolder folder;
    const Bytes profile = MakeProfile(3144, "RGB ");
    const TestPicture picture = ScenePicture(24, 16, 3, 8, 0),
                      deep = ScenePicture(24, 16, 3, 16, 0);
    for (const char* source : {"s.jpg", "s.tif", "s.png"})
    {
        SCOPED_TRACE(source);
        const std::string from = WriteSource(folder, source, profile, {});
        for (const char* target : {"t.jpg", "t.tif"})
        {
            ASSERT_TRUE(Save(picture, folder.File(target), kFormatFromName, from).written);
            EXPECT_EQ(ProfileOf(folder.File(target)), profile) << target;
        }
        ASSERT_TRUE(Save(deep, folder.File("t.png"), kFormatFromName, from).written);
        ASSERT_TRUE(
            Save(deep, folder.File("u.tif"), kFormatFromName, folder.File("t.png")).written);
        EXPECT_EQ(ProfileOf(folder.File("u.tif")), profile) << "through PNG";
    }
    ASSERT_TRUE(Save(picture, folder.File("none.tif")).written);
    EXPECT_EQ(ProfileOf(folder.File("none.tif")), Bytes());

    // A file that is saved over keeps its profile and takes the new pixels, again and again.
    const std::string same = WriteSource(folder, "same.tif", profile, {});
    for (const int width : {30, 50})
    {
        const TestPicture other = ScenePicture(width, 10, 3, 8, 0);
        ASSERT_TRUE(Save(other, same, kFormatFromName, same).written);
        ExpectSamePicture(LoadedPair(same).picture, other);
        EXPECT_EQ(ProfileOf(same), profile);
    }
}

TEST(Source, GivesXmpToEveryFormat)
{
    const TempFolder folder;
    const std::string from = WriteSource(folder, "s.jpg", {}, MakeExifBlock(SomeExposure()));
    const TestPicture picture = ScenePicture(24, 16, 3, 8, 0);
    for (const char* target : {"t.jpg", "t.tif", "t.png"})
    {
        ASSERT_TRUE(Save(picture, folder.File(target), kFormatFromName, from).written);
        EXPECT_EQ(TagsOf(folder.File(target), FIMD_XMP)["XMLPacket"], kXmp) << target;
    }
}

TEST(Exif, OfOurOwnSaysWhatWasPutIn)
{
    const TempFolder folder;
    SaveExtras extras;
    extras.exif = MakeExifBlock(SomeExposure());
    const std::string file = folder.File("a.jpg");
    ASSERT_TRUE(
        Save(ScenePicture(24, 16, 3, 8, 0), file, kFormatFromName, "", nullptr, &extras).written);
    auto tags = TagsOf(file, FIMD_EXIF_MAIN);
    tags.merge(TagsOf(file, FIMD_EXIF_EXIF));
    const std::pair<const char*, const char*> expected[] = {
        {"Make", "Plenoviz"},
        {"Model", "Sample"},
        {"Software", "1"},
        {"DateTime", "2024:05:06 07:08:09"},
        {"ExposureTime", "1/250 sec"},
        {"FNumber", "F5.6"},
        {"ISOSpeedRatings", "400"},
        {"PixelXDimension", "24"},
        {"PixelYDimension", "16"},
        {"ExposureBiasValue", "-2"},
        {"DateTimeOriginal", "2024:05:06 07:08:09"}};
    for (const auto& [tag, text] : expected)
        EXPECT_EQ(tags[tag], text) << tag;

    // It takes the place of the source's own.
    const std::string other = folder.File("b.jpg");
    ExifFields later = SomeExposure();
    later.exposureTime = {2, 1};
    extras.exif = MakeExifBlock(later);
    ASSERT_TRUE(Save(ScenePicture(24, 16, 3, 8, 0), other, kFormatFromName, file, nullptr, &extras)
                    .written);
    EXPECT_EQ(TagsOf(other, FIMD_EXIF_EXIF)["ExposureTime"], "2 sec");
    EXPECT_EQ(MakeExifBlock(ExifFields()).size() % 2, 0u);
}

// A camera held upright stores a lying picture and says so. Every result is upright, and nothing in
// it asks for another turn.
TEST(Orientation, TurnsThePictureOnceAndForAll)
{
    const TempFolder folder;
    // Where the left top corner of a picture of 2 x 3 samples comes from, and the one right of it.
    const int corners[9][2] = {{}, {1, 2}, {2, 1}, {6, 5}, {5, 6}, {1, 3}, {5, 3}, {6, 4}, {2, 4}};
    for (uint8_t number = 1; number <= 8; ++number)
    {
        SCOPED_TRACE(int(number));
        const LoadedPair turned(folder.Write(
            "a.tif", MakeTiff({2, 3, 1, 8, 1, 1, {1, 2, 3, 4, 5, 6}, {{274, 3, 1, number}}})));
        ASSERT_EQ(turned.picture->width, number < 5 ? 2 : 3);
        EXPECT_EQ(turned.picture.At(0, 0), corners[number][0]);
        EXPECT_EQ(turned.picture.At(1, 0), corners[number][1]);

        const Bytes exif = {'E',  'x', 'i', 'f', 0, 0, 'I', 'I', 42,     0, 8, 0, 0,  0, 1, 0,
                            0x12, 1,   3,   0,   1, 0, 0,   0,   number, 0, 0, 0, 99, 0, 0, 0};
        const std::string from = WriteSource(folder, "s.jpg", {}, exif); // 24 x 16
        const LoadedPair photo(from);
        ASSERT_EQ(photo.picture->width, number < 5 ? 24 : 16);
        for (const char* target : {"t.jpg", "t.tif", "t.png", "t.bmp"})
        {
            ASSERT_TRUE(Save(photo.picture, folder.File(target), kFormatFromName, from).written);
            ExpectSamePicture(LoadedPair(folder.File(target)).picture, photo.picture, 2);
        }
        EXPECT_EQ(TagsOf(folder.File("t.jpg"), FIMD_EXIF_MAIN)["Orientation"], "top, left side");
        EXPECT_EQ(TagsOf(folder.File("t.tif"), FIMD_XMP)["XMLPacket"], kXmp);
    }
}

// It is turned in squares of 32 samples; these are more than one, and none is full at the edges.
TEST(Orientation, TurnsEverySampleOfALargePicture)
{
    const struct
    {
        bool sideways, mirrorsColumns, mirrorsRows;
    } turns[] = {{false, true, false}, {false, true, true}, {false, false, true},
                 {true, false, false}, {true, false, true}, {true, true, true},
                 {true, true, false}};
    const auto value = [](int x, int y, int c) { return (x * 3 + y * 71 + c * 101) % 251; };
    for (const int components : {1, 3})
        for (const int bits : {8, 16})
            for (int orientation = 2; orientation <= 8; ++orientation)
            {
                SCOPED_TRACE(testing::Message()
                             << orientation << ", " << components << ", " << bits);
                const auto turn = turns[orientation - 2];
                TestPicture picture = PictureOf(70, 45, components, bits, value);
                ASSERT_EQ(MakeUpright(picture.Record(), orientation), Outcome::Done);
                const TestPicture expected =
                    PictureOf(turn.sideways ? 45 : 70, turn.sideways ? 70 : 45, components, bits,
                              [&](int x, int y, int c)
                              {
                                  const int column = turn.sideways ? y : x,
                                            row = turn.sideways ? x : y;
                                  return value(turn.mirrorsColumns ? 69 - column : column,
                                               turn.mirrorsRows ? 44 - row : row, c);
                              });
                ExpectSamePicture(picture, expected);
            }
}

// Some cameras put the date of the exposure beside their own name, where it does not belong. And
// FreeImage takes the directory's size on trust, and then reads where it should not.
TEST(Exif, ThatIsDamagedStopsNothing)
{
    const TempFolder folder;
    const size_t directory = 6 + 8, dateTime = directory + 2 + 12 * 6;
    Bytes misplaced = MakeExifBlock(SomeExposure()), tooLong = misplaced;
    ASSERT_EQ(misplaced[dateTime] | misplaced[dateTime + 1] << 8, 0x0132);
    misplaced[dateTime] = 0x03;
    misplaced[dateTime + 1] = 0x90;
    tooLong[directory] = tooLong[directory + 1] = 0xFF; // number of entries
    for (const Bytes& exif : {misplaced, tooLong})
    {
        const std::string from = WriteSource(folder, "s.jpg", MakeProfile(600, "RGB "), exif);
        const LoadedPair pair(from);
        ASSERT_FALSE(pair.failed);
        for (const char* target : {"t.jpg", "t.tif", "t.png"})
            ASSERT_TRUE(Save(pair.picture, folder.File(target), kFormatFromName, from).written);
        EXPECT_EQ(ProfileOf(folder.File("t.jpg")).size(), 600u);
        // FreeImage frees the profile of a TIFF file with such a directory before it copies it.
        EXPECT_EQ(ReadMetadataFile(folder.File("t.tif").c_str()).profile.size(), 600u);
        EXPECT_EQ(TagsOf(folder.File("t.jpg"), FIMD_EXIF_RAW).empty(), exif == tooLong);
    }
}

// What the first directory needs is all there, or nothing of the block is looked at.
TEST(Exif, ThatIsCutOffCountsFromTheEndOfItsFirstDirectory)
{
    const TempFolder folder;
    const auto exifOf = [](const std::string& path)
    {
        FILE* file = std::fopen(path.c_str(), "rb");
        const Bytes block = SoundJpegExif(file);
        EXPECT_GE(JpegOrientation(file), 1);
        std::fclose(file);
        return block;
    };
    const Bytes whole = MakeExifBlock(SomeExposure());
    const size_t directory = 6 + 8, end = directory + 2 + 12 * whole[directory] + 4;
    ASSERT_LT(end, whole.size());
    for (size_t size = 6; size <= whole.size(); size += size < 20 || size > end - 3 ? 1 : 7)
    {
        const Bytes cut(whole.begin(), whole.begin() + std::ptrdiff_t(size));
        EXPECT_EQ(exifOf(WriteSource(folder, "s.jpg", {}, cut)), size < end ? Bytes() : cut);
    }
    Bytes lost = whole; // to two gigabytes behind
    std::fill_n(lost.begin() + 6 + 4, 4, uint8_t(0x7F));
    EXPECT_EQ(exifOf(WriteSource(folder, "s.jpg", {}, lost)), Bytes());
    Bytes file = ReadBytes(WriteSource(folder, "s.jpg", {}, whole));
    file.erase(std::search(file.begin(), file.end(), whole.begin(), whole.end()) +
                   std::ptrdiff_t(whole.size()) - 1,
               file.end());
    EXPECT_EQ(exifOf(folder.Write("s.jpg", file)), Bytes()) << "the file ends in it";
}

TEST(Formats, CarryWhatTheyPromiseAndNothingElse)
{
    const TempFolder folder;
    const std::string from = folder.File("s.jpg"), text = "a caption";
    const Bytes profile = MakeProfile(3144, "RGB "), exif = MakeExifBlock(SomeExposure());
    FIBITMAP* bitmap = FreeImage_Allocate(24, 16, 24);
    FreeImage_CreateICCProfile(bitmap, const_cast<uint8_t*>(profile.data()), long(profile.size()));
    SetTag(bitmap, FIMD_XMP, "XMLPacket", FIDT_ASCII, kXmp.data(), kXmp.size());
    SetTag(bitmap, FIMD_IPTC, "Caption-Abstract", FIDT_ASCII, text.data(), text.size(), 0x278);
    SetTag(bitmap, FIMD_EXIF_RAW, "ExifRaw", FIDT_BYTE, exif.data(), exif.size());
    EXPECT_TRUE(FreeImage_Save(FIF_JPEG, bitmap, from.c_str(), 0));
    FreeImage_Unload(bitmap);
    const TestPicture picture = ScenePicture(24, 16, 3, 8, 0);
    for (const FormatRow& row : kFormats)
    {
        if (!row.written)
            continue;
        SCOPED_TRACE(row.name);
        const std::string file = folder.File("t" + EndingsIn(row.endings).front());
        ASSERT_TRUE(Save(picture, file, row.id, from).written);
        const Metadata held = ReadMetadataFile(file.c_str());
        EXPECT_EQ(!held.profile.empty(), (row.carries & kCarriesProfile) != 0);
        EXPECT_EQ(!held.xmp.empty(), (row.carries & kCarriesXmp) != 0);
        EXPECT_EQ(!held.iptc.empty(), (row.carries & kCarriesCaptions) != 0);
        EXPECT_EQ(!held.exif.empty(), (row.carries & kCarriesExif) != 0);
    }
}

TEST(Profile, OfOtherColourChannelsStaysBehind)
{
    const TempFolder folder;
    const TestPicture colour = ScenePicture(24, 16, 3, 8, 0), grey = ScenePicture(24, 16, 1, 8, 0);
    struct
    {
        const char* space;
        bool inColour, inGrey;
    } rows[] = {{"RGB ", true, false}, {"GRAY", false, true}, {"CMYK", false, false}};
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.space);
        const std::string from = WriteSource(folder, "s.tif", MakeProfile(400, row.space), {});
        ASSERT_TRUE(Save(colour, folder.File("c.tif"), kFormatFromName, from).written);
        ASSERT_TRUE(Save(grey, folder.File("g.tif"), kFormatFromName, from).written);
        EXPECT_EQ(!ProfileOf(folder.File("c.tif")).empty(), row.inColour);
        EXPECT_EQ(!ProfileOf(folder.File("g.tif")).empty(), row.inGrey);
    }
}

TEST(Profile, ThatIsDamagedDoesNotCostThePicture)
{
    const TempFolder folder;
    const Bytes damaged(200, 0xA5);
    const TestPicture picture = ScenePicture(24, 16, 3, 8, 0);
    const std::string from = WriteSource(folder, "s.jpg", damaged, {});
    const SaveReport tiff = Save(picture, folder.File("t.tif"), kFormatFromName, from);
    EXPECT_TRUE(tiff.written);
    EXPECT_FALSE(tiff.losses.profile);
    EXPECT_EQ(ProfileOf(folder.File("t.tif")), damaged); // bytes are bytes
    const SaveReport png = Save(picture, folder.File("t.png"), kFormatFromName, from);
    EXPECT_TRUE(png.written); // its encoder looks inside
    EXPECT_TRUE(png.losses.profile);
    ExpectSamePicture(LoadedPair(folder.File("t.png")).picture, picture);
}

} // namespace
