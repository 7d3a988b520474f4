// A word processor that many people have reads what the writer writes, and writes what the reader reads.

#include "core/base/Files.h"
#include "core/notes/RtfReader.h"
#include "core/notes/RtfWriter.h"
#include "core/text/Utf8.h"
#include "tests/notes/RichTexts.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace lumnara {
namespace {

namespace fs = std::filesystem;

constexpr const char* officeDocument = R"(<?xml version="1.0" encoding="UTF-8"?>
<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
 xmlns:style="urn:oasis:names:tc:opendocument:xmlns:style:1.0" xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0"
 xmlns:table="urn:oasis:names:tc:opendocument:xmlns:table:1.0" xmlns:draw="urn:oasis:names:tc:opendocument:xmlns:drawing:1.0"
 xmlns:fo="urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0" xmlns:xlink="http://www.w3.org/1999/xlink"
 xmlns:svg="urn:oasis:names:tc:opendocument:xmlns:svg-compatible:1.0"
 office:version="1.2" office:mimetype="application/vnd.oasis.opendocument.text">
 <office:automatic-styles>
  <style:style style:name="B" style:family="text"><style:text-properties fo:font-weight="bold" fo:font-style="italic"/></style:style>
  <style:style style:name="U" style:family="text"><style:text-properties style:text-underline-style="wave" style:text-line-through-style="solid" fo:color="#c80102" fo:font-size="17.5pt"/></style:style>
  <style:style style:name="C" style:family="paragraph"><style:paragraph-properties fo:text-align="center"/></style:style>
  <text:list-style style:name="L"><text:list-level-style-bullet text:level="1" text:bullet-char="•"/><text:list-level-style-number text:level="2" style:num-format="1" style:num-suffix="."/></text:list-style>
 </office:automatic-styles>
 <office:body><office:text>
  <text:p text:style-name="C">mid <text:span text:style-name="B">bold</text:span><text:span text:style-name="U">wavy é</text:span></text:p>
  <text:p>€ 日本 😀 שלום<text:tab/>{x}\<text:line-break/>next <text:a xlink:href="https://example.org/x?a=1">link</text:a></text:p>
  <text:p/>
  <text:list text:style-name="L"><text:list-item><text:p>one</text:p><text:list><text:list-item><text:p>deep</text:p></text:list-item></text:list></text:list-item><text:list-item><text:p>two</text:p></text:list-item></text:list>
  <table:table><table:table-column table:number-columns-repeated="2"/>
   <table:table-row><table:table-cell><text:p>a</text:p></table:table-cell><table:table-cell><text:p>b</text:p></table:table-cell></table:table-row>
   <table:table-row><table:table-cell><text:p>c</text:p></table:table-cell><table:table-cell><text:p>d</text:p></table:table-cell></table:table-row>
  </table:table>
  <text:p>pic<draw:frame text:anchor-type="as-char" svg:width="20pt" svg:height="10pt"><draw:image><office:binary-data>iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mNk+M9QDwADhgGAWjR9awAAAABJRU5ErkJggg==</office:binary-data></draw:image></draw:frame>ture</text:p>
  <text:p>end</text:p>
 </office:text></office:body>
</office:document>
)";

/// Converts files, all in one run, into a folder.
bool convert(const fs::path& folder, const std::string& format, const std::string& files,
             const std::string& into) {
    const std::string command = "cd '" + folder.string() + "' && HOME=\"$PWD\" timeout -k 5 120 soffice" +
                                " -env:UserInstallation=file://\"$PWD\"/profile --headless --convert-to " +
                                format + " --outdir " + into + " " + files + " >convert.log 2>&1 </dev/null";
    return std::system(command.c_str()) == 0;
}

/// One character as it looks. What a text left open, a word processor may settle.
struct SeenCharacter {
    char32_t character = 0;
    TextStyle style;

    bool isAs(const SeenCharacter& written) const {
        TextStyle relevant = style;
        if (written.style.halfPoints == 0) relevant.halfPoints = 0;
        if (written.style.family.empty()) relevant.family.clear();
        return character == written.character && relevant == written.style;
    }
};

std::vector<SeenCharacter> seen(const TextParagraph& paragraph) {
    std::vector<SeenCharacter> characters;
    for (const TextRun& run : paragraph.runs)
        for (std::size_t at = 0; at < run.text.size();)
            characters.push_back({text::decodeNext(run.text, at), run.style});
    return characters;
}

::testing::AssertionResult looksAs(const RichText& read, const RichText& written) {
    const auto failure = [&](std::size_t at) {
        return ::testing::AssertionFailure()
               << "paragraph " << at << ::testing::PrintToString(written.paragraphs) << "\nwas read as"
               << ::testing::PrintToString(read.paragraphs);
    };
    if (read.plainText() != written.plainText()) return failure(0);
    for (std::size_t i = 0; i < written.paragraphs.size(); ++i) {
        const TextParagraph& there = written.paragraphs[i];
        const TextParagraph& here = read.paragraphs[i];
        const auto expected = seen(there);
        const auto found = seen(here);
        const auto isAs = [](const SeenCharacter& a, const SeenCharacter& b) { return a.isAs(b); };
        if (here.alignment != there.alignment || here.list != there.list ||
            !std::equal(found.begin(), found.end(), expected.begin(), expected.end(), isAs))
            return failure(i);
    }
    return ::testing::AssertionSuccess();
}

RichText documentOfAllScripts() {
    return RichText::plain("☐ milk\n☑ 日本 😀 👩‍👧\n\nשלום  two   three blanks\nend");
}

std::vector<RichText> westernDocuments() {
    std::vector<RichText> documents = {documentOfAllScripts()};
    for (unsigned seed = 0; seed < 30; ++seed) {
        RichText text = testing::RandomRichText(seed, testing::RandomRichText::Scripts::western).text(false);
        // The last paragraph of a document has its list's level from elsewhere there.
        text.paragraphs.emplace_back().append("end", {});
        documents.push_back(std::move(text));
    }
    return documents;
}

void checkOfficeDocument(const RichText& read) {
    ASSERT_EQ(read.plainText(), "mid boldwavy é\n€ 日本 😀 שלום\t{x}\\\u2028next "
                                "link\n\none\ndeep\ntwo\na\tb\nc\td\npic\uFFFCture\nend");
    const auto& first = read.paragraphs[0];
    EXPECT_EQ(first.alignment, TextAlignment::center);
    ASSERT_EQ(first.runs.size(), 3u);
    EXPECT_TRUE(first.runs[1].style.bold && first.runs[1].style.italic);
    const TextStyle& wavy = first.runs[2].style;
    EXPECT_TRUE(wavy.underline && wavy.strikethrough && !wavy.bold);
    EXPECT_EQ(wavy.halfPoints, 35);
    EXPECT_EQ(wavy.color, (TextColor{200, 1, 2}));
    EXPECT_EQ(read.paragraphs[1].runs.back().style.link, "https://example.org/x?a=1");
    EXPECT_EQ(read.paragraphs[3].list, (ListItem{ListItem::Kind::bulleted, 0}));
    EXPECT_EQ(read.paragraphs[4].list, (ListItem{ListItem::Kind::numbered, 1}));
    EXPECT_EQ(read.paragraphs[5].list, (ListItem{ListItem::Kind::bulleted, 0}));
    EXPECT_EQ(read.paragraphs[8].list, std::nullopt);
    ASSERT_EQ(read.attachments.size(), 1u);
    EXPECT_TRUE(read.attachments.begin()->second.starts_with("\x89PNG"));
    const auto& picture = read.paragraphs[8].runs.at(1).attachment;
    ASSERT_TRUE(picture);
    EXPECT_NEAR(picture->width, 20, 0.1);
    EXPECT_NEAR(picture->height, 10, 0.1);
}

TEST(LibreOffice, ReadsAndWritesTheSameTexts) {
    if (std::system("command -v soffice >/dev/null") != 0)
        GTEST_SKIP() << "LibreOffice Writer isn't installed";
    const testing::TemporaryFolder folder;
    const std::vector<RichText> documents = westernDocuments();
    for (std::size_t i = 0; i < documents.size(); ++i)
        replaceFile(folder.path() / (std::to_string(i) + ".rtf"), RtfWriter::write(documents[i]));
    ASSERT_TRUE(convert(folder.path(), "fodt", "*.rtf", "read")) << readFile(folder / "convert.log");
    replaceFile(folder.path() / "read" / "office.fodt", officeDocument);
    ASSERT_TRUE(convert(folder.path(), "rtf", "read/*.fodt", "written")) << readFile(folder / "convert.log");

    for (std::size_t i = 0; i < documents.size(); ++i) {
        const auto read = RtfReader::read(readFile(folder.path() / "written" / (std::to_string(i) + ".rtf")));
        ASSERT_TRUE(read) << i;
        EXPECT_TRUE(looksAs(*read, documents[i])) << i;
    }
    const auto office = RtfReader::read(readFile(folder.path() / "written" / "office.rtf"));
    ASSERT_TRUE(office);
    checkOfficeDocument(*office);
}

} // namespace
} // namespace lumnara
