// Arbitrary bytes as rich text: reading never fails, and what was read is written and read again the same.

#include "core/notes/RtfReader.h"
#include "core/notes/RtfWriter.h"
#include "core/text/Text.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>

namespace lumnara {
namespace {

[[noreturn]] void failFuzz(const char* what, const std::string& rtf) {
    std::fprintf(stderr, "%s:\n%s\n", what, rtf.c_str());
    std::abort();
}

void checkRtf(std::string_view bytes) {
    const auto read = RtfReader::read(bytes);
    if (!read) return;
    const std::string written = RtfWriter::write(*read);
    const auto again = RtfReader::read(written);
    if (!again || again->paragraphs != read->paragraphs) failFuzz("written, it reads otherwise", written);
    if (!text::isValidUtf8(read->plainText())) failFuzz("the text is not UTF-8", written);
    for (const auto& [name, contents] : read->attachments)
        if (RichText::attachmentName(name) != name) failFuzz("no name for a file", name);
}

/// Bytes as the pieces that rich text is made of, so that groups and words meet.
std::string composed(std::string_view bytes) {
    static constexpr std::string_view pieces[] = {"{",
                                                  "{",
                                                  "{",
                                                  "}",
                                                  "}",
                                                  "}",
                                                  "{\\*",
                                                  " ",
                                                  "a",
                                                  "b",
                                                  "é",
                                                  ";",
                                                  ".",
                                                  "7",
                                                  "\\par ",
                                                  "\\pard ",
                                                  "\\plain ",
                                                  "\\b ",
                                                  "\\b0 ",
                                                  "\\ul ",
                                                  "\\v ",
                                                  "\\f1 ",
                                                  "\\fs30 ",
                                                  "\\cf1 ",
                                                  "\\qc ",
                                                  "\\ls1 ",
                                                  "\\ilvl1 ",
                                                  "\\uc0 ",
                                                  "\\uc2 ",
                                                  "\\u55357 ",
                                                  "\\u56832?",
                                                  "\\u8364?",
                                                  "\\u133?",
                                                  "\\u10?",
                                                  "\\u59?",
                                                  "\\'e9",
                                                  "\\'83",
                                                  "\\'ac",
                                                  "\\line ",
                                                  "\\tab ",
                                                  "\\cell ",
                                                  "\\row ",
                                                  "\\sect ",
                                                  "\\page ",
                                                  "\\fonttbl",
                                                  "\\f1\\fcharset128 ",
                                                  "\\colortbl",
                                                  "\\red200\\blue3;",
                                                  "\\listtable",
                                                  "\\list\\listlevel\\levelnfc0\\listid1 ",
                                                  "\\listoverridetable",
                                                  "\\listid1\\ls1 ",
                                                  "\\listtext ",
                                                  "\\pn",
                                                  "\\pnlvlbody ",
                                                  "\\pict\\picwgoal90 ",
                                                  "89504E470D0A1A0A",
                                                  "\\bin3 ",
                                                  "\\NeXTGraphic ",
                                                  "\\width99 ",
                                                  "\\field",
                                                  "\\fldinst ",
                                                  "HYPERLINK \"x\" ",
                                                  "\\fldrslt ",
                                                  "\\upr",
                                                  "\\ud",
                                                  "\\ansicpg932 ",
                                                  "\\ansicpg65001 ",
                                                  "\\unknown ",
                                                  "\n",
                                                  "\\\n",
                                                  "\\\\",
                                                  "\\}",
                                                  "\\~"};
    std::string rtf = "{\\rtf1";
    for (const char byte : bytes) {
        const auto index = static_cast<unsigned char>(byte);
        rtf += index < std::size(pieces) ? pieces[index] : std::string_view(&byte, 1);
    }
    return rtf;
}

} // namespace
} // namespace lumnara

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    lumnara::checkRtf(bytes);
    // Most inputs don't find the beginning by themselves.
    lumnara::checkRtf("{\\rtf1" + std::string(bytes));
    lumnara::checkRtf(lumnara::composed(bytes));
    return 0;
}
