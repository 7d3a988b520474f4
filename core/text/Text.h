#pragma once

#include "core/text/Clusters.h"
#include "core/text/Utf8.h"

#include <compare>
#include <string>
#include <string_view>
#include <vector>

/// The only place that knows Unicode. Texts are UTF-8; a byte that belongs to no well-formed sequence
/// counts as U+FFFD. All functions may be called from any thread.
namespace lumnara::text {

/// Fills the tables that a first use would otherwise wait for (some ms).
void warmUp();

/// Without the whitespace and newlines at both ends.
std::string_view trim(std::string_view text);

/// Without control characters and the separators of lines and paragraphs.
std::string withoutControls(std::string_view text);

/// The pieces between runs of whitespace and newlines, without empty ones.
std::vector<std::string_view> splitAtWhitespace(std::string_view text);

/// Whether a user-perceived character is a letter or a number; its first code point decides, by its
/// Unicode property. The digits of every script, fractions and Roman numerals are numbers.
bool isLetter(std::string_view cluster);
bool isNumber(std::string_view cluster);

/// The text without differences of case, diacritics and width, in no particular locale, in lower case and
/// in normalisation form C.
std::string fold(std::string_view text);

/// The folded text with every run of characters that are neither letters nor numbers written as one blank,
/// and none at the ends. `out` is overwritten and keeps its capacity.
void normalize(std::string_view text, std::string& out);
std::string normalize(std::string_view text);

/// Normalisation form C: canonically equivalent texts become equal ones.
std::string composed(std::string_view text);

/// Full case mappings in no particular locale.
std::string lowercased(std::string_view text);
std::string uppercased(std::string_view text);

/// ASCII letters compare without case, everything else byte by byte: for uuids and the like.
bool equalsIgnoringCase(std::string_view a, std::string_view b);

/// The order in which the user's language lists two texts; case makes no difference, accents do.
std::weak_ordering compareLocalized(std::string_view a, std::string_view b);

} // namespace lumnara::text
