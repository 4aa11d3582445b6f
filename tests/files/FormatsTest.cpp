#include "files/Formats.h"

#include "files/ImageCodec.h"

#include "tests/support/TestFiles.h"

#include <FreeImage.h>
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

namespace
{

using Endings = std::vector<std::string>;

// A text of the sources, its line ends as blanks.
std::string TextOf(const char* file)
{
    std::ifstream stream(std::string(PLENOVIZ_SOURCES) + "/" + file);
    std::ostringstream text;
    text << stream.rdbuf();
    EXPECT_FALSE(text.str().empty()) << file;
    std::string joined = text.str();
    for (char& letter : joined)
        letter = letter == '\n' ? ' ' : letter;
    return joined;
}

// "BMP, JPEG or PNG" of the formats chosen, in the order of the table.
template <typename Chosen>
std::string Names(const char* last, Chosen chosen)
{
    Endings names;
    for (const FormatRow& row : kFormats)
        if (chosen(row))
            names.push_back(row.name);
    std::string text;
    for (size_t i = 0; i < names.size(); ++i)
        text += (i == 0 ? "" : i + 1 < names.size() ? ", " : last) + names[i];
    return text;
}

} // namespace

TEST(Formats, HaveEndingsOfTheirOwn)
{
    std::set<std::string> taken;
    for (const FormatRow& row : kFormats)
    {
        EXPECT_EQ(FindFormat(row.id), &row) << row.name;
        ASSERT_FALSE(EndingsIn(row.endings).empty()) << row.name;
        for (const char* list : {row.endings, row.furtherEndings})
            for (const std::string& ending : EndingsIn(list))
            {
                EXPECT_EQ(ending[0], '.') << ending;
                EXPECT_TRUE(taken.insert(ending).second) << ending;
                EXPECT_EQ(FormatFromFileName(("a.b" + ending).c_str()),
                          row.id == kFormatRaw ? kFormatFromName : row.id);
            }
        for (const int code : row.codes)
            EXPECT_EQ(FormatOfCode(code), &row) << code;
    }
    EXPECT_EQ(FindFormat(kFormatFromName), nullptr);
    EXPECT_EQ(FindFormat(kFormatCount), nullptr);
    EXPECT_EQ(FormatOfCode(FIF_PSD), nullptr);
}

// The codec library has its own lists. Ours lack none of its endings, and of camera raw files,
// which it has to recognise itself, have no other.
TEST(Formats, KnowTheEndingsOfTheCodecLibrary)
{
    InitImageLibrary();
    for (const FormatRow& row : kFormats)
        for (const int code : row.codes)
        {
            std::istringstream list(FreeImage_GetFIFExtensionList(FREE_IMAGE_FORMAT(code)));
            size_t count = 0;
            for (std::string ending; std::getline(list, ending, ','); ++count)
                EXPECT_TRUE(HasEnding("a." + ending, row.endings) ||
                            HasEnding("a." + ending, row.furtherEndings))
                    << ending;
            const size_t known =
                EndingsIn(row.endings).size() + EndingsIn(row.furtherEndings).size();
            EXPECT_TRUE(row.id != kFormatRaw || known == count);
        }
}

TEST(Formats, HoldThePicturesThatTheyPromiseAndNoOthers)
{
    const struct
    {
        unsigned kind;
        int components, bits;
        bool alpha;
    } kinds[] = {{kHoldsGrey8, 1, 8, false},     {kHoldsColour8, 3, 8, false},
                 {kHoldsAlpha8, 3, 8, true},     {kHoldsGrey16, 1, 16, false},
                 {kHoldsColour16, 3, 16, false}, {kHoldsAlpha16, 3, 16, true}};
    const TempFolder folder;
    for (const FormatRow& row : kFormats)
        for (const auto& kind : kinds)
        {
            SCOPED_TRACE(testing::Message() << row.name << ", kind " << kind.kind);
            const TestPicture picture = ScenePicture(20, 14, kind.components, kind.bits, 0),
                              plane = ScenePicture(20, 14, 1, kind.bits, 1);
            const bool held = row.holds & kind.kind;
            EXPECT_EQ(FormatHoldsPicture(row.id, picture, kind.alpha), held);
            if (!row.written)
            {
                EXPECT_FALSE(held);
                continue;
            }
            const std::string file = folder.File("a" + EndingsIn(row.endings).front());
            const SaveReport report =
                Save(picture, file, kFormatFromName, "", kind.alpha ? &plane : nullptr);
            EXPECT_EQ(report.written && !report.alphaDropped, held);
            if (!held)
                continue;
            const LoadedPair pair(file);
            ASSERT_FALSE(pair.failed);
            EXPECT_EQ(pair.picture->components, kind.components);
            EXPECT_EQ(pair.picture->bitsPerComponent, kind.bits);
            EXPECT_EQ(pair.alpha->data != nullptr, kind.alpha);
            const bool lossy = row.id == kFormatJpeg || row.id == kFormatWebp;
            ExpectSamePicture(pair.picture, picture, lossy ? 90 : 0);
        }
}

TEST(Formats, AreWhatInstallerManualAndGuideSay)
{
    std::string macro;
    for (const FormatRow& row : kFormats)
        for (const std::string& ending : EndingsIn(row.saveEntry > 0 ? row.endings : ""))
            macro += "     !insertmacro ${action} \"" + ending + "\"";
    EXPECT_NE(TextOf("packaging/Plenoviz.nsi").find("ForEachEnding action" + macro + " !macroend"),
              std::string::npos)
        << macro;

    const auto read = [](const FormatRow& row) { return row.read; };
    const auto offered = [](const FormatRow& row) { return row.saveEntry > 0; };
    const std::string manual = "Pictures are read from " + Names(" and ", read) +
                               " files and written as " + Names(" or ", offered) + ";";
    EXPECT_NE(TextOf("packaging/plenoviz-cli.1").find(manual), std::string::npos) << manual;
    const std::string guide = TextOf("docs/guide.md");
    for (const FormatRow* row : SaveFormats())
        EXPECT_NE(guide.find("| `" + EndingsIn(row->endings).front() + "` |"), guide.npos)
            << row->name;
    const size_t sentence = guide.find("Photographs are read from ");
    ASSERT_NE(sentence, guide.npos);
    const std::string said = guide.substr(sentence, guide.find(" are not; ", sentence) - sentence);
    for (const FormatRow& row : kFormats)
        EXPECT_NE(said.find(row.name), said.npos) << row.name;
}
