#pragma once

#include <cstddef>
#include <string_view>

namespace lumnara {

/// What a query gains that begins a word of a phrase, and how many characters it has to have for that.
struct PrefixBonus {
    double bonus = 0;
    std::size_t leastCharacters = 1;

    /// The bonus for what is typed or spoken, as MatcherTuning has it now.
    static PrefixBonus current(bool isFilter);
};

/// How well a canonical query fits a canonical phrase, from 0 to 1.
double phraseScore(std::string_view query, std::string_view phrase, const PrefixBonus& prefix);

} // namespace lumnara
