#include "core/text/Utf16.h"

#include "core/text/Utf8.h"

namespace lumnara::text {

namespace {

std::size_t unitsOf(char32_t codePoint) { return codePoint > 0xFFFF ? 2 : 1; }

} // namespace

std::size_t utf16Length(std::string_view text) {
    std::size_t units = 0;
    for (std::size_t at = 0; at < text.size();) units += unitsOf(decodeNext(text, at));
    return units;
}

std::size_t byteAtUtf16(std::string_view text, std::size_t unit) {
    std::size_t units = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t start = at;
        units += unitsOf(decodeNext(text, at));
        if (units > unit) return start;
    }
    return text.size();
}

} // namespace lumnara::text
