#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace lumnara::text {

inline constexpr char32_t replacementCharacter = 0xFFFD;

/// The code point that begins at byte `at`, which moves past it. A byte that belongs to no well-formed
/// sequence gives U+FFFD and moves by one. `at` has to lie inside the text.
char32_t decodeNext(std::string_view text, std::size_t& at);

/// Appends the code point as UTF-8. It must not be a surrogate.
void appendUtf8(std::string& out, char32_t codePoint);

bool isAscii(std::string_view text);
bool isValidUtf8(std::string_view text);

/// The text with U+FFFD in place of each byte that belongs to no well-formed sequence.
std::string sanitizedUtf8(std::string_view text);

} // namespace lumnara::text
