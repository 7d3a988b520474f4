#pragma once

#include "core/names/NameError.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

/// What a desktop may be called, so that its name works as a spoken word, and when two names are the same.
/// Pure functions; any thread.
namespace lumnara::NameRules {

/// In user-perceived characters of the trimmed name.
inline constexpr int maxNameLength = 40;
inline constexpr int maxAliases = 10;

/// Words that speech hears as something else, under their normalized keys.
const std::unordered_set<std::string>& reservedWords();

/// The text under which names are compared: folded, words with single blanks between them.
std::string normalizedKey(std::string_view text);

/// What forbids the text as a spoken word, or nothing.
std::optional<NameError> reservationError(std::string_view text);

/// The trimmed name. Throws NameError.
std::string validate(std::string_view name);

/// The trimmed aliases without empty ones and repeats. Throws NameError.
std::vector<std::string> validate(const std::vector<std::string>& aliases);

/// The pieces of a comma-separated field, trimmed, without empty ones.
std::vector<std::string> parseAliases(std::string_view text);

} // namespace lumnara::NameRules
