#pragma once

#include <cstddef>
#include <string_view>

/// Places in a UTF-8 text as those count them who hold it in UTF-16.
namespace lumnara::text {

/// The UTF-16 units of a text.
std::size_t utf16Length(std::string_view text);

/// The byte at which the character begins that holds the UTF-16 unit; the text's size behind the last.
std::size_t byteAtUtf16(std::string_view text, std::size_t unit);

} // namespace lumnara::text
