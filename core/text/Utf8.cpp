#include "core/text/Utf8.h"

#include <algorithm>

namespace lumnara::text {

char32_t decodeNext(std::string_view text, std::size_t& at) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const auto continues = [&](std::size_t i) { return i < text.size() && (byte(i) & 0xC0) == 0x80; };
    const auto tail = [&](std::size_t i) { return static_cast<char32_t>(byte(i) & 0x3F); };

    const char32_t lead = byte(at);
    if (lead < 0x80) {
        ++at;
        return lead;
    }
    if (lead >= 0xC2 && lead < 0xE0 && continues(at + 1)) {
        const char32_t c = (lead & 0x1F) << 6 | tail(at + 1);
        at += 2;
        return c;
    }
    if (lead >= 0xE0 && lead < 0xF0 && continues(at + 1) && continues(at + 2)) {
        const char32_t c = (lead & 0x0F) << 12 | tail(at + 1) << 6 | tail(at + 2);
        const bool surrogate = c >= 0xD800 && c <= 0xDFFF;
        if (c >= 0x800 && !surrogate) {
            at += 3;
            return c;
        }
    }
    if (lead >= 0xF0 && lead < 0xF5 && continues(at + 1) && continues(at + 2) && continues(at + 3)) {
        const char32_t c = (lead & 0x07) << 18 | tail(at + 1) << 12 | tail(at + 2) << 6 | tail(at + 3);
        if (c >= 0x10000 && c <= 0x10FFFF) {
            at += 4;
            return c;
        }
    }
    ++at;
    return replacementCharacter;
}

void appendUtf8(std::string& out, char32_t c) {
    const auto put = [&](char32_t byte) { out += static_cast<char>(byte); };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xC0 | c >> 6);
        put(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        put(0xE0 | c >> 12);
        put(0x80 | (c >> 6 & 0x3F));
        put(0x80 | (c & 0x3F));
    } else {
        put(0xF0 | c >> 18);
        put(0x80 | (c >> 12 & 0x3F));
        put(0x80 | (c >> 6 & 0x3F));
        put(0x80 | (c & 0x3F));
    }
}

bool isAscii(std::string_view text) {
    unsigned char all = 0;
    for (const char c : text) all |= static_cast<unsigned char>(c);
    return all < 0x80;
}

bool isValidUtf8(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t start = at;
        // A replacement character that the text really holds takes three bytes.
        if (decodeNext(text, at) == replacementCharacter && at - start == 1) return false;
    }
    return true;
}

std::string sanitizedUtf8(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) appendUtf8(out, decodeNext(text, at));
    return out;
}

} // namespace lumnara::text
