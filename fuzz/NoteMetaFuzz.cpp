// Arbitrary bytes as the state of a note's panel, and as the members of one: what is read has to come back as
// it was once it is written, and nothing but an exception may come of what can't be read. The first byte
// chooses.

#include "core/notes/NoteMetaCodec.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>
#include <string>

namespace lumnara {
namespace {

void read(const std::string& text) {
    const Date now{1'767'603'600'000};
    std::optional<NoteMeta> meta;
    try {
        meta = NoteMetaCodec::decode(text, now);
    } catch (const std::exception&) {
        return;
    }
    // Written dates have whole seconds, so it is the second writing that must change nothing.
    const std::string written = NoteMetaCodec::encode(*meta);
    const NoteMeta again = NoteMetaCodec::decode(written, now);
    NoteMeta expected = *meta;
    expected.updatedAt = again.updatedAt;
    if (again == expected && NoteMetaCodec::encode(again) == written) return;
    std::fprintf(stderr, "comes back different from:\n%s\n", written.c_str());
    std::abort();
}

} // namespace
} // namespace lumnara

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    if (data[0] % 3 == 0) lumnara::read(text);
    if (data[0] % 3 == 1) lumnara::read(R"({"isVisible":true,"edge":"left","frame":)" + text + "}");
    if (data[0] % 3 == 2) lumnara::read(R"({"isDocked":false,"edgeOffset":0.4,"updatedAt":)" + text + "}");
    return 0;
}
