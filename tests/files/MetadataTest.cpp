#include "files/Metadata.h"

#include "files/ImageFile.h"
#include "files/Md5.h"
#include "files/XmpPacket.h"

#include "tests/support/ExifFiles.h"
#include "tests/support/TestFiles.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

// What a photograph knows, from every kind of source into every kind of target. Sources are built
// byte by byte, and results are looked at by the plain reader of tests/support/ExifFiles.

namespace
{

std::string TextOf(const Bytes& bytes)
{
    return std::string(bytes.begin(), bytes.end());
}

Bytes BytesOf(const std::string& text)
{
    return Bytes(text.begin(), text.end());
}

// How notes of camera makers are laid out, after public descriptions: what stands before their
// directory, whether they keep to the byte order of the file, and where their offsets count from.
struct Maker
{
    const char* name;
    Bytes start;
    bool ownOrder, ownOrderBig;
    int base; // -1 = the first byte of the block, else that byte of the notes
};

const Maker kMakers[] = {
    {"Canon", {}, false, false, -1},
    {"Sony", {'S', 'O', 'N', 'Y', ' ', 'D', 'S', 'C', ' ', 0, 0, 0}, false, false, -1},
    {"Panasonic", {'P', 'a', 'n', 'a', 's', 'o', 'n', 'i', 'c', 0, 0, 0}, false, false, -1},
    {"Sigma", {'S', 'I', 'G', 'M', 'A', 0, 0, 0, 1, 0}, false, false, -1},
    {"old Olympus", {'O', 'L', 'Y', 'M', 'P', 0, 1, 0}, false, false, -1},
    {"Olympus", {'O', 'L', 'Y', 'M', 'P', 'U', 'S', 0, 'I', 'I', 3, 0}, true, false, 0},
    {"Nikon",
     {'N', 'i', 'k', 'o', 'n', 0, 2, 0x10, 0, 0, 'M', 'M', 0, 42, 0, 0, 0, 8},
     true,
     true,
     10},
    {"Fujifilm", {'F', 'U', 'J', 'I', 'F', 'I', 'L', 'M', 12, 0, 0, 0}, true, false, 0},
    {"Apple", {'A', 'p', 'p', 'l', 'e', ' ', 'i', 'O', 'S', 0, 0, 1, 'M', 'M'}, true, true, 0},
    {"Pentax", {'P', 'E', 'N', 'T', 'A', 'X', ' ', 0, 'I', 'I'}, true, false, 0},
};

const std::string kSecret = "a value beyond the four bytes of its field";

// The notes as the maker would write them at that place of the block: two fields, one of them with
// its value behind the directory.
Bytes NotesOf(const Maker& maker, uint32_t at, bool bigEndian)
{
    const bool big = maker.ownOrder ? maker.ownOrderBig : bigEndian;
    const auto start = uint32_t(maker.start.size());
    const uint32_t from = maker.base < 0 ? at : uint32_t(-maker.base);
    Bytes notes = maker.start;
    Put(&notes, 2, 2, big); // fields: tag, type, count, value
    Put(&notes, 1, 2, big);
    Put(&notes, 4, 2, big);
    Put(&notes, 1, 4, big);
    Put(&notes, 7, 4, big);
    Put(&notes, 2, 2, big);
    Put(&notes, 2, 2, big);
    Put(&notes, uint32_t(kSecret.size()), 4, big);
    Put(&notes, from + start + 2 + 24 + 4, 4, big);
    Put(&notes, 0, 4, big);
    notes.insert(notes.end(), kSecret.begin(), kSecret.end());
    return notes;
}

// What that second field says in notes that stand at this place of a block.
std::string SecretIn(const Bytes& block, size_t at, const Maker& maker, bool bigEndian)
{
    const bool big = maker.ownOrder ? maker.ownOrderBig : bigEndian;
    const size_t field = at + maker.start.size() + 2 + 12;
    if (field + 12 > block.size())
        return "no notes";
    const size_t base = maker.base < 0 ? 0 : at + size_t(maker.base);
    const size_t size = Get(block, field + 4, 4, big), place = base + Get(block, field + 8, 4, big);
    if (size > block.size() || place > block.size() - size)
        return "beyond the block";
    return std::string(block.begin() + std::ptrdiff_t(place),
                       block.begin() + std::ptrdiff_t(place + size));
}

PhotoFacts SomeFacts(bool bigEndian)
{
    PhotoFacts facts;
    facts.bigEndian = bigEndian;
    facts.orientation = 6;
    facts.width = 4000;
    facts.height = 3000;
    facts.thumbnail = Bytes(5000, 0xAB);
    return facts;
}

// Kinds of sources with the same contents; JPEG and TIFF targets are files, the others in memory.
const char* const kSources[] = {"s.jpg", "s.png", "s.webp", "s.tif", "far.tif"};
const char* const kTargets[] = {"t.jpg", "t.png", "t.tif", "t.webp"};

TEST(MakerNotes, SayTheSameFromEveryKindOfSourceInEveryKindOfTarget)
{
    const TempFolder folder;
    const TestPicture picture = ScenePicture(24, 16, 3, 8, 0);
    for (const bool bigEndian : {false, true})
        for (const Maker& maker : kMakers)
            for (const char* source : kSources)
                for (const char* target : kTargets)
                {
                    SCOPED_TRACE(testing::Message() << maker.name << ", " << bigEndian << ": "
                                                    << source << " to " << target);
                    PhotoFacts facts = SomeFacts(bigEndian);
                    facts.notes = [&](uint32_t at) { return NotesOf(maker, at, bigEndian); };
                    const std::string from = folder.Write(source, MakePhotoFile(source, facts, {}));
                    ASSERT_TRUE(Save(picture, folder.File(target), kFormatFromName, from).written);
                    const PlainExif exif(ReadBytes(folder.File(target)));
                    ASSERT_TRUE(exif.Has("exif", 0x927C));
                    EXPECT_EQ(SecretIn(exif.block, exif.Offset("exif", 0x927C), maker, bigEndian),
                              kSecret);
                    EXPECT_EQ(exif.bigEndian, bigEndian);
                }
}

TEST(Exif, IsTrueOfTheResultAndKeepsTheRest)
{
    const TempFolder folder;
    const TestPicture picture = ScenePicture(240, 120, 3, 16, 0);
    const TestPicture flat = ScenePicture(240, 120, 3, 8, 0);
    for (const bool bigEndian : {false, true})
        for (const char* source : kSources)
            for (const char* target : kTargets)
            {
                SCOPED_TRACE(testing::Message() << bigEndian << ": " << source << " to " << target);
                const PhotoFacts facts = SomeFacts(bigEndian);
                const std::string from = folder.Write(source, MakePhotoFile(source, facts, {}));
                const std::string to = folder.File(target);
                const bool deep = target == std::string("t.png") || target == std::string("t.tif");
                ASSERT_TRUE(Save(deep ? picture : flat, to, kFormatFromName, from).written);
                const PlainExif exif(ReadBytes(to));
                EXPECT_EQ(exif.Text("first", 0x010F), "Maker of cameras");
                EXPECT_EQ(exif.Text("exif", 0x9003), "2024:05:06 07:08:09");
                EXPECT_EQ(exif.Text("gps", 0x001D), "2024:05:06");
                EXPECT_EQ(exif.Number("first", 0x0112), 1u) << "upright";
                EXPECT_EQ(exif.Number("exif", 0xA002), 240u);
                EXPECT_EQ(exif.Number("exif", 0xA003), 120u);
                EXPECT_EQ(exif.Text("first", 0x0131), "Plenoviz " PLENOVIZ_VERSION);
                EXPECT_GT(exif.Text("first", 0x0132), "2026");
                EXPECT_EQ(exif.Text("exif", 0x9290), "  ") << "fractions of that second";
                EXPECT_EQ(std::search_n(exif.block.begin(), exif.block.end(), 40, 0xAB),
                          exif.block.end())
                    << "the old thumbnail";
                EXPECT_TRUE(exif.sorted);
                if (target == std::string("t.tif"))
                {
                    EXPECT_EQ(exif.Number("first", 256), 240u);
                    EXPECT_FALSE(exif.Has("second", 513)) << "it would be a second page";
                    ExpectSamePicture(LoadedPair(to).picture, picture);
                    continue;
                }
                const Bytes small = exif.Value("second", 513, exif.Number("second", 514));
                const LoadedPair thumbnail(folder.Write("small.jpg", small));
                ASSERT_FALSE(thumbnail.failed);
                TestPicture expected = PictureOf(160, 80, 3, 8,
                                                 [&](int x, int y, int c)
                                                 { return flat.At(x * 3 / 2, y * 3 / 2, c); });
                EXPECT_LT(MeanDifference(thumbnail.picture, expected), 6);
            }
}

// What has no place beside the notes in 64 kB.
TEST(Exif, ThatIsLongGoesWithoutAThumbnailThenCloserPackedThenNotAtAll)
{
    const TempFolder folder;
    const TestPicture picture = ScenePicture(300, 200, 3, 8, 0);
    const struct
    {
        size_t notes, oldThumbnail;
        bool exif, thumbnail;
    } rows[] = {{40000, 1000, true, true},
                {55000, 9000, true, true}, // in the place of the old one
                {64600, 10, true, false},
                {70000, 10, false, false}};
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.notes);
        PhotoFacts facts = SomeFacts(false);
        facts.thumbnail.assign(row.oldThumbnail, 0xAB);
        facts.notes = [&](uint32_t) { return Bytes(row.notes, 0x55); };
        const std::string from = folder.Write("s.png", MakePhotoFile("s.png", facts, {}));
        const SaveReport report = Save(picture, folder.File("t.jpg"), kFormatFromName, from);
        ASSERT_TRUE(report.written);
        EXPECT_EQ(report.losses.exif, !row.exif);
        const PlainExif exif(ReadBytes(folder.File("t.jpg")));
        EXPECT_EQ(exif.Has("exif", 0x927C), row.exif);
        EXPECT_EQ(exif.Has("second", 513), row.thumbnail);
        ASSERT_FALSE(LoadedPair(folder.File("t.jpg")).failed);
    }
}

// ---- XMP, captions and profile ----

const std::string kHead = "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF xmlns:rdf="
                          "'http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description ";
const std::string kTail = "</rdf:Description></rdf:RDF></x:xmpmeta>";

TEST(Everything, GoesFromEveryKindOfSourceIntoEveryKindOfTarget)
{
    const TempFolder folder;
    const TestPicture picture = ScenePicture(24, 16, 3, 8, 0);
    SideFacts side;
    side.profile = MakeProfile(70001, "RGB ");
    side.iptc = BytesOf(std::string("\x1C\x02\x78\0\x05Hello\x1C\x02\x19\0\x03two", 18));
    side.dotsPerInch = 300;
    for (const size_t length : {100, 90000})
    {
        std::string packet = kHead;
        packet.append("rdf:about=''>").append(length, '.').append(kTail);
        side.xmp = BytesOf(packet);
        for (const char* source : kSources)
            for (const char* target : kTargets)
            {
                SCOPED_TRACE(testing::Message() << length << ": " << source << " to " << target);
                const std::string from =
                    folder.Write(source, MakePhotoFile(source, SomeFacts(false), side));
                const SaveReport report = Save(picture, folder.File(target), kFormatFromName, from);
                ASSERT_TRUE(report.written);
                const Metadata result = ReadMetadataFile(folder.File(target).c_str());
                EXPECT_EQ(result.profile, side.profile);
                EXPECT_NEAR(result.dotsPerInchX, 300, 0.01);
                const std::string xmp = TextOf(result.xmp);
                EXPECT_NE(xmp.find(std::string(length, '.')), xmp.npos);
                const bool held =
                    target != std::string("t.webp") && source != std::string("s.webp");
                EXPECT_EQ(result.iptc, held ? side.iptc : Bytes());
                EXPECT_EQ(report.losses.captions,
                          target == std::string("t.webp") && source != std::string("s.webp"));
            }
    }
}

TEST(Xmp, LosesTheSignsOfPicturesThatTheResultDoesNotHave)
{
    ResultFacts facts;
    facts.width = 30;
    facts.height = 20;
    facts.software = "us";
    facts.dateTime = "2026:01:02 03:04:05";
    facts.zone = "+01:00";
    const auto edited = [&](const std::string& text)
    { return TextOf(XmpOfResult(BytesOf(text), facts)); };
    const std::string spaces = "xmlns:t='http://ns.adobe.com/tiff/1.0/' "
                               "xmlns:g=\"http://ns.adobe.com/hdr-gain-map/1.0/\" "
                               "xmlns:Item='http://ns.google.com/photos/1.0/container/item/' "
                               "xmlns:C='http://ns.google.com/photos/1.0/container/' "
                               "xmlns:cam = 'http://ns.google.com/photos/1.0/camera/' "
                               "xmlns:b='http://ns.adobe.com/xap/1.0/' "
                               "xmlns:exif='http://ns.adobe.com/exif/1.0/'";
    const std::pair<const char*, const char*> rows[] = {
        {" g:Version='1.0' t:Make='a>b'>", " t:Make='a>b'>"},
        {" cam:MotionPhoto='1' cam:HdrPlus='2' >", " cam:HdrPlus='2' >"},
        {"><C:Directory><C:Directory/><rdf:li Item:Mime='x'/></C:Directory>t", ">t"},
        {"><!-- <g:x> --><g:Version>1</g:Version>", "><!-- <g:x> -->"},
        {" t:Orientation=\"6\" other:Orientation='6'>",
         " t:Orientation=\"1\" other:Orientation='6'>"},
        {"><t:Orientation>8</t:Orientation>", "><t:Orientation>1</t:Orientation>"},
        {"><t:Orientation/>", "><t:Orientation/>"},
        {" exif:PixelXDimension='9'><t:ImageLength>7</t:ImageLength>",
         " exif:PixelXDimension='30'><t:ImageLength>20</t:ImageLength>"},
        {" b:ModifyDate='2001'>", " b:ModifyDate='2026-01-02T03:04:05+01:00'>"},
        {" exif:GPSLatitude='1,2N'>", " exif:GPSLatitude='1,2N'>"},
        {" unclosed='", " unclosed='"},
        {"><g:Version>", ">"},
    };
    for (const auto& [before, after] : rows)
        EXPECT_EQ(edited(kHead + spaces + before), kHead + spaces + after);
    facts.choice = MetadataChoice::Private;
    EXPECT_EQ(edited(kHead + spaces + " exif:GPSLatitude='1,2N' exif:ISO='3'>"),
              kHead + spaces + " exif:ISO='3'>");
    // RFC 1321 gives these.
    EXPECT_EQ(Md5Hex({}), "D41D8CD98F00B204E9800998ECF8427E");
    EXPECT_EQ(Md5Hex(BytesOf("12345678901234567890123456789012345678901234567890123456789012345678"
                             "901234567890")),
              "57EDF4A22BE3C955AC49DA2E2107B67A");
}

TEST(Choice, LeavesOutWhatIsPersonalOrEverythingButTheProfile)
{
    const TempFolder folder;
    const TestPicture picture = ScenePicture(24, 16, 3, 8, 0);
    SideFacts side;
    side.profile = MakeProfile(600, "RGB ");
    side.iptc = BytesOf(std::string("\x1C\x02\x5A\0\x04Here\x1C\x02\x78\0\x05Hello", 19));
    side.xmp =
        BytesOf(kHead + "xmlns:a='http://ns.adobe.com/exif/1.0/aux/' a:SerialNumber='77'>" + kTail);
    for (const char* source : {"s.jpg", "s.tif"})
        for (const char* target : kTargets)
            for (const MetadataChoice choice :
                 {MetadataChoice::Keep, MetadataChoice::Private, MetadataChoice::None})
            {
                SCOPED_TRACE(testing::Message() << source << " to " << target << int(choice));
                PhotoFacts facts = SomeFacts(false);
                facts.notes = [&](uint32_t) { return BytesOf("number of the camera: 4711"); };
                const std::string from = folder.Write(source, MakePhotoFile(source, facts, side));
                SaveExtras extras;
                extras.choice = choice;
                const std::string to = folder.File(target);
                ASSERT_TRUE(Save(picture, to, kFormatFromName, from, nullptr, &extras).written);
                const std::string file = TextOf(ReadBytes(to));
                const PlainExif exif(ReadBytes(to));
                const bool all = choice == MetadataChoice::Keep;
                for (const char* personal : {"4711", "Owner of cameras", "Serial 12"})
                    EXPECT_EQ(file.find(personal) != file.npos, all) << personal;
                EXPECT_EQ(exif.Has("gps", 0x001D), all);
                EXPECT_EQ(exif.Has("exif", 0x9003), choice != MetadataChoice::None);
                const Metadata result = ReadMetadataFile(to.c_str());
                EXPECT_EQ(result.profile, side.profile);
                EXPECT_EQ(TextOf(result.xmp).find("77") != std::string::npos, all);
                const std::string captions = TextOf(result.iptc);
                if (target != std::string("t.webp"))
                {
                    EXPECT_EQ(captions.find("Here") != captions.npos, all);
                    EXPECT_EQ(captions.find("Hello") != captions.npos,
                              choice != MetadataChoice::None);
                }
            }
}

// ---- series ----

TEST(ReferenceFrame, IsTheOneNearestToWhatTheCameraWouldHaveChosen)
{
    const auto frame = [](int bias, uint32_t exposure, bool known = true)
    {
        PhotoFacts facts;
        facts.biasThirds = bias;
        facts.hasBias = known;
        facts.exposureTime = exposure;
        Metadata metadata;
        metadata.exif = MakePhotoExif(facts);
        return metadata;
    };
    EXPECT_EQ(ReferenceFrame({frame(-6, 1), frame(6, 16), frame(0, 4)}), 2u);
    EXPECT_EQ(ReferenceFrame({frame(-9, 1), frame(-1, 2), frame(5, 9)}), 1u);
    EXPECT_EQ(ReferenceFrame({frame(0, 16), frame(0, 1), frame(0, 4)}), 2u) << "a bracket by hand";
    EXPECT_EQ(ReferenceFrame({frame(0, 9, false), frame(1, 1), frame(2, 4)}), 2u);
    EXPECT_EQ(ReferenceFrame({frame(0, 4), frame(0, 4), frame(0, 4)}), 0u);
    EXPECT_EQ(ReferenceFrame({Metadata(), frame(0, 4)}), 0u);
    EXPECT_EQ(ReferenceFrame({}), 0u);
}

} // namespace
