#include "core/names/NameRules.h"

#include "core/matching/FuzzyMatcher.h"
#include "core/matching/Normalizer.h"
#include "core/text/Text.h"

#include <algorithm>

namespace lumnara::NameRules {
namespace {

std::optional<NameError> nameError(std::string_view trimmed) {
    if (trimmed.empty()) return NameError::empty();
    if (text::length(trimmed) > maxNameLength) return NameError::tooLong(maxNameLength);
    return reservationError(trimmed);
}

} // namespace

const std::unordered_set<std::string>& reservedWords() {
    static const std::unordered_set<std::string> words = [] {
        std::unordered_set<std::string> made = {"next",  "previous", "back",  "left",
                                                "right", "desktop",  "space", "screen"};
        for (const auto& command : FuzzyMatcher::commandPhrases()) made.emplace(command.phrase);
        for (const auto& number : Normalizer::cardinals()) made.emplace(number.word);
        for (const auto& number : Normalizer::ordinals()) made.emplace(number.word);
        for (const auto& number : Normalizer::tens()) made.emplace(number.word);
        for (const std::string_view filler : Normalizer::fillers()) made.emplace(filler);
        return made;
    }();
    return words;
}

std::string normalizedKey(std::string_view text) {
    std::string key;
    const std::string folded = text::fold(text);
    for (const std::string_view word : text::splitAtWhitespace(folded)) {
        if (!key.empty()) key += ' ';
        key += word;
    }
    return key;
}

std::optional<NameError> reservationError(std::string_view text) {
    const std::string name(text);
    const std::string canonical = Normalizer::canonical(text);
    if (FuzzyMatcher::parseCommand(canonical)) return NameError::reserved(name);
    const std::string target = Normalizer::stripFiller(canonical);
    if (const auto value = Normalizer::parseNumber(target)) return NameError::number(name, *value);
    if (target.empty() || reservedWords().contains(normalizedKey(text))) return NameError::reserved(name);
    return std::nullopt;
}

std::string validate(std::string_view name) {
    const std::string_view trimmed = text::trim(name);
    if (const auto error = nameError(trimmed)) throw *error;
    return std::string(trimmed);
}

std::vector<std::string> validate(const std::vector<std::string>& aliases) {
    std::vector<std::string> kept;
    std::unordered_set<std::string> keys;
    for (const std::string& alias : aliases) {
        const std::string_view trimmed = text::trim(alias);
        if (trimmed.empty()) continue;
        if (const auto error = nameError(trimmed)) throw *error;
        if (keys.insert(normalizedKey(trimmed)).second) kept.emplace_back(trimmed);
    }
    if (kept.size() > maxAliases) throw NameError::tooManyAliases(maxAliases);
    return kept;
}

std::vector<std::string> parseAliases(std::string_view text) {
    std::vector<std::string> aliases;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find(',', start), text.size());
        const std::string_view alias = text::trim(text.substr(start, end - start));
        if (!alias.empty()) aliases.emplace_back(alias);
        start = end + 1;
    }
    return aliases;
}

} // namespace lumnara::NameRules
