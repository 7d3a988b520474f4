// Arbitrary bytes as rich text: reading never fails, and what was read is written and read again the same.

#include "core/notes/RtfReader.h"
#include "core/notes/RtfWriter.h"
#include "core/text/Text.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

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

} // namespace
} // namespace lumnara

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    lumnara::checkRtf(bytes);
    // Most inputs don't find the beginning by themselves.
    lumnara::checkRtf("{\\rtf1" + std::string(bytes));
    return 0;
}
