#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>
#include <type_traits>

namespace lumnara {

/// A decimal text with an optional sign; nothing for any other text or a number out of range. "-0" is 0.
template <class Integer> std::optional<Integer> decimalIntegerOf(std::string_view text) {
    const bool hasSign = text.starts_with('+') || text.starts_with('-');
    const std::string_view digits = text.substr(hasSign ? 1 : 0);
    if (digits.empty() || digits.front() < '0' || digits.front() > '9') return std::nullopt;

    const bool negative = text.starts_with('-');
    const bool onlyZeros = digits.find_first_not_of('0') == digits.npos;
    if (negative && onlyZeros) return Integer{0};
    if (negative && std::is_unsigned_v<Integer>) return std::nullopt;

    const std::string_view number = negative ? text : digits;
    Integer value = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
    if (error != std::errc{} || end != number.data() + number.size()) return std::nullopt;
    return value;
}

} // namespace lumnara
