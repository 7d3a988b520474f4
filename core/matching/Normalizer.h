#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// Free text to the form in which phrases, queries and transcripts are compared. Pure functions; any thread.
namespace lumnara::Normalizer {

/// Folded, in lower case, words of letters and numbers with single blanks between them.
std::string normalize(std::string_view text);

/// `normalize`, with number words and ordinals turned into digits: "Desktop Twenty-Two" is "desktop 22".
/// `out` is overwritten and keeps its capacity.
void canonical(std::string_view text, std::string& out);
std::string canonical(std::string_view text);

/// Canonical text without the words of command around its target: "please go to the design desktop" is
/// "design".
std::string stripFiller(std::string_view canonicalText);

/// The number that the text is, when it is nothing but ASCII digits.
std::optional<std::int64_t> parseNumber(std::string_view text);

struct NumberWord {
    std::string_view word;
    int value = 0;
};

/// The vocabulary.
std::span<const NumberWord> cardinals();
std::span<const NumberWord> ordinals();
std::span<const NumberWord> tens();
std::span<const std::string_view> fillers();

} // namespace lumnara::Normalizer
