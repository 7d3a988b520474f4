#include "core/notes/NoteFileName.h"

#include "core/notes/RtfTokens.h"
#include "core/text/Text.h"

#include <fmt/format.h>

namespace lumnara::NoteFileName {

std::string encode(std::string_view key) {
    std::string name;
    for (std::size_t at = 0; at < key.size();) {
        const std::size_t begin = at;
        text::decodeNext(key, at);
        const std::string_view character = key.substr(begin, at - begin);
        if (text::isLetter(character) || text::isNumber(character)) {
            name += character;
        } else {
            for (const char byte : character)
                name += fmt::format("%{:02X}", static_cast<unsigned char>(byte));
        }
    }
    return name;
}

std::optional<std::string> decode(std::string_view name) {
    std::string key;
    for (std::size_t at = 0; at < name.size(); ++at) {
        if (name[at] != '%') {
            key += name[at];
            continue;
        }
        if (at + 2 >= name.size()) return std::nullopt;
        const auto high = hexDigit(name[at + 1]);
        const auto low = hexDigit(name[at + 2]);
        if (!high || !low) return std::nullopt;
        key += static_cast<char>(*high * 16 + *low);
        at += 2;
    }
    return key;
}

} // namespace lumnara::NoteFileName
