#include "core/matching/PhraseScore.h"

#include "core/matching/MatcherTuning.h"
#include "core/matching/Measures.h"
#include "core/matching/Similarity.h"
#include "core/matching/Words.h"
#include "core/text/Text.h"

#include <algorithm>

namespace lumnara {
namespace {

bool beginsAnyWord(std::string_view query, std::string_view phrase) {
    std::vector<std::string_view> words;
    splitWords(phrase, words);
    return text::beginsWith(phrase, query) ||
           std::ranges::any_of(words, [&](std::string_view word) { return text::beginsWith(word, query); });
}

} // namespace

PrefixBonus PrefixBonus::current(bool isFilter) {
    return isFilter ? PrefixBonus{MatcherTuning::filterPrefixBonus, 1}
                    : PrefixBonus{MatcherTuning::voicePrefixBonus, 3};
}

double phraseScore(std::string_view query, std::string_view phrase, const PrefixBonus& prefix) {
    if (query.empty() || phrase.empty()) return 0.0;
    if (query == phrase) return 1.0;
    double score =
        std::max({Similarity::tokenOverlap(query, phrase) * Measures::overlapWeight,
                  Similarity::jaroWinkler(query, phrase), Similarity::distanceRatio(query, phrase)});
    if (text::length(query) >= prefix.leastCharacters && beginsAnyWord(query, phrase)) score += prefix.bonus;
    return std::min(score, 1.0);
}

} // namespace lumnara
