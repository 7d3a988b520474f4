#include "core/notes/RtfReader.h"
#include "core/notes/RtfWriter.h"
#include "tests/notes/RichTexts.h"

#include <gtest/gtest.h>

namespace lumnara {
namespace {

using Paragraphs = std::vector<TextParagraph>;

RichText readRtf(const std::string& rtf) {
    const auto read = RtfReader::read(rtf);
    EXPECT_TRUE(read) << rtf;
    return read.value_or(RichText());
}

std::string textOf(const std::string& body) {
    return readRtf("{\\rtf1\\ansi\\ansicpg1252 " + body + "}").plainText();
}

TextParagraph paragraph(std::vector<TextRun> runs, std::optional<ListItem> list = {}) {
    TextParagraph made;
    made.runs = std::move(runs);
    made.list = list;
    return made;
}

TEST(Rtf, WhatIsWrittenReadsTheSame) {
    for (unsigned seed = 0; seed < 1'000; ++seed) {
        const RichText text = testing::RandomRichText(seed).text(true);
        const std::string rtf = RtfWriter::write(text);
        ASSERT_EQ(readRtf(rtf).paragraphs, text.paragraphs) << "seed " << seed << "\n" << rtf;
        ASSERT_TRUE(std::all_of(rtf.begin(), rtf.end(), [](char c) { return c > 0; })) << "not ASCII";
    }
}

TEST(Rtf, LinesOfAPlainTextAreParagraphsAndEmptyOnesStay) {
    for (const std::string text : {"", "a", "a\n", "\n", "a\n\n\nb\n\n", "☐ a\n☑ b"}) {
        const RichText rich = RichText::plain(text);
        EXPECT_EQ(rich.plainText(), text);
        EXPECT_EQ(readRtf(RtfWriter::write(rich)).plainText(), text);
    }
    EXPECT_EQ(RichText::plain("a\r\nb").plainText(), "a\nb");
    EXPECT_TRUE(RichText::plain("\n\n").empty());
    EXPECT_FALSE(RichText::plain("\n ").empty());
}

TEST(Rtf, ControlsThatATextMustNotHoldDoNotBreakTheDocument) {
    RichText text;
    text.paragraphs.emplace_back().append(std::string("a\nb\rc\0d\x01\x7F", 10) + "\u2029e\x80", {});
    EXPECT_EQ(readRtf(RtfWriter::write(text)).plainText(), "a\u2028b\u2028cd\u2028e\uFFFD");
}

TEST(Rtf, SaysWhatIsNoRichText) {
    for (const char* text : {"", "plain", "{", "{\\rt", "{}", "<html>", "\\rtf1"})
        EXPECT_FALSE(RtfReader::read(text)) << text;
    EXPECT_TRUE(RtfReader::read("\xEF\xBB\xBF\n{\\rtf1 a}"));
}

TEST(Rtf, ReadsTheTextsOfManyWriters) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        // Paragraphs and what stands between them.
        {"a\\par b\\par", "a\nb"},
        {"a\\\nb\\\r\nc", "a\nb\nc"},
        {"a\\line b\\tab c\\page d", "a\u2028b\tc\u2028d"},
        {"a\nb\r\nc", "abc"},
        {"a\\par\\sect\\sectd b", "a\nb"},
        // Characters.
        {"\\'e9\\'80\xE9", "é€é"},
        {"\\u8364?\\u-10179?\\u-8704?", "€😀"},
        {"\\uc0 \\u55357\\uc1 \\u56832\\'3f!", "😀!"},
        {"\\uc0\\u8364 x\\uc2\\u8364 ??y\\uc1\\u8364\\'80z", "€x€y€z"},
        {"{\\uc0 \\u8364}{\\u8364 }b", "€€b"},
        {"\\u55357?x\\u56832?", "\uFFFDx\uFFFD"},
        {"\\u8212\\emdash a\\u8226\\par b", "—a•\nb"},
        {"a\\~b\\_c\\-d\\emdash\\lquote\\rdblquote\\bullet", "a\u00A0b\u2011c\u00ADd—‘”•"},
        {"\\{\\}\\\\ \\'zz", "{}\\ zz"},
        {"{\\upr{a?}{\\*\\ud{a\\u8364 ?}}}", "a€"},
        // Code pages: of the document, of a font, of several bytes with a plain second one.
        {"\\ansicpg1251 \\'cf\\'f0", "Пр"},
        {"\\mac \\'8e", "é"},
        {"\\ansicpg65001 \xC3\xA9", "é"},
        {"\\ansicpg99999 \\'e9", "é"},
        {"{\\fonttbl{\\f0\\fcharset204 A;}{\\f1\\fcharset128 B;}}\\f0\\'cf\\f1\\'83\\'65\\'83X\\f9\\'e9",
         "Пテスé"},
        // What isn't seen.
        {"{\\*\\generator x;}{\\info{\\title t}}{\\stylesheet{\\s0 Normal;}}{\\header h\\par}{\\footerf f}a",
         "a"},
        {"a{\\v hidden}{\\deleted gone}\\v b\\v0 c\\v d\\plain e", "ace"},
        {"{\\*\\unknown{\\b a}{\\*\\fldinst b}c}{\\unknown d}\\unknown e", "de"},
        {"{\\field{\\*\\fldinst PAGE}{\\fldrslt 7}}", "7"},
        {"{\\shp{\\*\\shpinst{\\sp{\\sn n}{\\sv v}}{\\shptxt frame\\par}}{\\shprslt again}}a", "frame\na"},
        // Tables.
        {"\\trowd\\cellx1\\cellx2\\intbl a\\cell b\\cell\\row\\intbl c\\cell\\cell\\row\\pard d",
         "a\tb\nc\nd"},
        {"{a\\nestcell b\\nestcell{\\*\\nesttableprops\\trowd\\nestrow}{\\nonesttables\\par}}c", "a\tb\nc"},
        // Damage.
        {"a{b{c", "abc"},
        {"a}b", "a"},
        {"a\\", "a}"},
        {"a\\'4", "a4"},
        {"a\\bin99 b", "a"},
        {"a\\bin-5 b\\u b\\fs-7\\ls-9\\ilvl99\\cf-1\\f-2 c", "abbc"},
        {"\\fs99999999999999999999 a\\u99999999999 ?", "a\uFFFF"},
    };
    for (const auto& [rtf, text] : cases) EXPECT_EQ(textOf(rtf), text) << rtf;
}

TEST(Rtf, ReadsStyles) {
    const RichText read = readRtf(
        "{\\rtf1{\\fonttbl{\\f0\\froman{\\*\\panose 0202}Times{\\*\\falt Serif};}\\f1\\fnil Hand \\u8364?;}"
        "{\\colortbl;\\red255\\green0\\blue7;\\red300\\green-1\\blue9;}"
        "\\qc{\\b\\i a}\\ulw b\\ulnone\\striked1 c\\strike0\\fs25\\cf1 d\\cf2\\f1 e\\plain f\\cf0\\f0\\b0 "
        "g\\par"
        "\\b h\\b0{\\field{\\*\\fldinst{HYPERLINK \"http://a.b/\\\\\\\\c\" \\\\l \"part\" \\\\o "
        "\"tip\"}}{\\fldrslt{\\ul i}}}}");
    const TextColor first{255, 0, 7};
    const TextColor second{255, 0, 9};
    Paragraphs expected = {
        paragraph({{"a", {.bold = true, .italic = true}, {}},
                   {"b", {.underline = true}, {}},
                   {"c", {.strikethrough = true}, {}},
                   {"d", {.halfPoints = 25, .color = first}, {}},
                   {"e", {.halfPoints = 25, .color = second, .family = "Hand €"}, {}},
                   {"f", {}, {}},
                   {"g", {.family = "Times"}, {}}}),
        paragraph({{"h", {.bold = true, .family = "Times"}, {}},
                   {"i", {.underline = true, .family = "Times", .link = "http://a.b/\\c#part"}, {}}})};
    for (TextParagraph& each : expected) each.alignment = TextAlignment::center;
    EXPECT_EQ(read.paragraphs, expected);
}

TEST(Rtf, ReadsListsInEveryForm) {
    const auto bullet = [](int level) { return ListItem{ListItem::Kind::bulleted, level}; };
    const auto number = [](int level) { return ListItem{ListItem::Kind::numbered, level}; };
    const RichText tables = readRtf(
        "{\\rtf1{\\*\\listtable{\\list\\listhybrid{\\listlevel\\levelnfc23{\\leveltext\\'01\\u8226 ?;}}"
        "{\\listlevel\\levelnfc0{\\leveltext\\'02\\'01.;}}{\\listlevel\\levelnfc255}{\\listname "
        ";}\\listid77}}"
        "{\\*\\listoverridetable{\\listoverride\\listid77\\listoverridecount0\\ls4}}"
        "\\pard\\ls4\\ilvl0{\\listtext\\bullet\\tab}a\\par\\ilvl1{\\listtext 1.\\tab}b\\par\\ilvl2 "
        "c\\par\\pard d\\par"
        "\\ls9 e}");
    EXPECT_EQ(tables.paragraphs,
              (Paragraphs{paragraph({{"a", {}, {}}}, bullet(0)), paragraph({{"b", {}, {}}}, number(1)),
                          paragraph({{"c", {}, {}}}), paragraph({{"d", {}, {}}}),
                          paragraph({{"e", {}, {}}}, bullet(0))}));

    const RichText old =
        readRtf("{\\rtf1 {\\pntext\\'b7\\tab}{\\*\\pn\\pnlvlblt{\\pntxtb\\'b7}}a\\par"
                "\\pard{\\pntext 1.\\tab}{\\*\\pn\\pnlvlbody\\pndec{\\pntxta.}}b\\par\\pard c}");
    EXPECT_EQ(old.paragraphs,
              (Paragraphs{paragraph({{"a", {}, {}}}, bullet(0)), paragraph({{"b", {}, {}}}, number(0)),
                          paragraph({{"c", {}, {}}})}));
}

TEST(Rtf, ReadsPicturesAndNamesFiles) {
    const std::string png = "\x89PNG\r\n\x1A\n{}\\";
    const RichText read = readRtf(
        "{\\rtf1 a{\\*\\shppict{\\pict{\\*\\picprop{\\sp{\\sn x}{\\sv "
        "1}}}\\pngblip\\picw9\\picwgoal400\\pichgoal200"
        "\\picscalex50 89504E47\n0d0a1a0a 7b7d5C}}{\\nonshppict{\\pict\\wmetafile8 0102}}"
        "{\\pict\\wmetafile8 0102}{\\pict\\jpegblip\\bin5 \xFF\xD8\xFF}{}{b}"
        "{{\\NeXTGraphic ../d/\\u233?t\\'e9 1.png \\width640 \\height481}\\'ac}c{{\\NeXTGraphic x.pdf}d}}");
    ASSERT_EQ(read.paragraphs.size(), 1u);
    EXPECT_EQ(read.paragraphs[0].runs,
              (std::vector<TextRun>{{"a", {}, {}},
                                    {"", {}, TextAttachment{"embedded picture 1.png", 10, 10}},
                                    {"", {}, TextAttachment{"embedded picture 2.jpg", 0, 0}},
                                    {"b", {}, {}},
                                    {"", {}, TextAttachment{"été 1.png", 32, 24.05}},
                                    {"c", {}, {}},
                                    {"", {}, TextAttachment{"x.pdf", 0, 0}},
                                    {"d", {}, {}}}));
    EXPECT_EQ(read.attachments, (std::map<std::string, std::string>{
                                    {"embedded picture 1.png", png},
                                    {"embedded picture 2.jpg", "\xFF\xD8\xFF}{"},
                                }));
}

TEST(Rtf, StaysWithinItsMeansOnHostileInput) {
    const std::size_t many = 1'000'000;
    EXPECT_EQ(readRtf("{\\rtf1 a" + std::string(many, '{') + "b").plainText(), "ab");
    EXPECT_EQ(readRtf("{\\rtf1 " + std::string(many, '{') + "a" + std::string(many, '}') + "b}").plainText(),
              "ab");
    std::string restless =
        "{\\rtf1{\\field{\\*\\fldinst HYPERLINK \"" + std::string(4'000, 'x') + "\"}{\\fldrslt ";
    for (int i = 0; i < 200'000; ++i) restless += i % 2 ? "\\b a" : "\\b0 a";
    const RichText read = readRtf(restless + "}}}");
    EXPECT_EQ(read.plainText().size(), 200'000u);
    EXPECT_LE(read.paragraphs.at(0).runs.size(), 50'000u);
}

TEST(RichText, NamesOfAttachmentsAreSafeAndUnique) {
    EXPECT_EQ(RichText::attachmentName("/etc/passwd"), "passwd");
    EXPECT_EQ(RichText::attachmentName(" a\n\u2028b .png "), "ab .png");
    for (const char* name : {"", "..", ".", "a/", " \t", "x/txt.RTF"})
        EXPECT_EQ(RichText::attachmentName(name), "attachment");
    const std::string longName =
        RichText::attachmentName("x" + std::string(300, '\xC3').replace(1, 298, 298, 'y') + "é");
    EXPECT_LE(longName.size(), 200u);

    RichText text;
    EXPECT_EQ(text.addAttachment("a.png", "1"), "a.png");
    EXPECT_EQ(text.addAttachment("a.png", "2"), "a 2.png");
    EXPECT_EQ(text.addAttachment("a.png", "1"), "a.png");
    EXPECT_EQ(text.addAttachment("a.png", "2"), "a 2.png");
    EXPECT_EQ(text.attachments.size(), 2u);
}

} // namespace
} // namespace lumnara
