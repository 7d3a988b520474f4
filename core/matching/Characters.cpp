#include "core/matching/Characters.h"

#include "core/text/Text.h"

namespace lumnara {
namespace {

constexpr std::uint32_t firstBeyondUnicode = 0x110000;

/// Calls `numberOf` for each character that is more than one code point.
template <class NumberOf> void numberCharacters(std::string_view text, Characters& out, NumberOf numberOf) {
    out.clear();
    if (text::isAscii(text) && text.find('\r') == std::string_view::npos) {
        for (const char c : text) out.push_back(static_cast<unsigned char>(c));
        return;
    }
    for (const std::string_view cluster : text::Clusters(text)) {
        std::size_t at = 0;
        const char32_t c = text::decodeNext(cluster, at);
        out.push_back(at == cluster.size() ? static_cast<std::uint32_t>(c) : numberOf(cluster));
    }
}

} // namespace

void CharacterNumbers::number(std::string_view text, Characters& out) {
    numberCharacters(text, out, [&](std::string_view cluster) {
        const auto next = static_cast<std::uint32_t>(firstBeyondUnicode + clusters_.size());
        return clusters_.try_emplace(std::string(cluster), next).first->second;
    });
}

void CharacterNumbers::find(std::string_view text, Characters& out) const {
    numberCharacters(text, out, [&](std::string_view cluster) {
        const auto known = clusters_.find(std::string(cluster));
        return known == clusters_.end() ? unknown : known->second;
    });
}

} // namespace lumnara
