#pragma once

#include "core/matching/FuzzyMatcher.h"
#include "core/matching/Normalizer.h"
#include "tests/matching/PlainMatcher.h"

#include <string>
#include <vector>

namespace lumnara::testing {

/// Puts the tuning back at its end.
class TuningGuard {
public:
    ~TuningGuard() { restore(); }

    void restore() {
        MatcherTuning::acceptThreshold = accept_;
        MatcherTuning::ambiguityMargin = ambiguity_;
        MatcherTuning::exactScore = exact_;
        MatcherTuning::earlyAcceptThreshold = early_;
        MatcherTuning::earlyAcceptMargin = earlyMargin_;
        MatcherTuning::filterThreshold = filter_;
        MatcherTuning::voicePrefixBonus = voiceBonus_;
        MatcherTuning::filterPrefixBonus = filterBonus_;
    }

private:
    double accept_ = MatcherTuning::acceptThreshold, ambiguity_ = MatcherTuning::ambiguityMargin,
           exact_ = MatcherTuning::exactScore, early_ = MatcherTuning::earlyAcceptThreshold,
           earlyMargin_ = MatcherTuning::earlyAcceptMargin, filter_ = MatcherTuning::filterThreshold,
           voiceBonus_ = MatcherTuning::voicePrefixBonus, filterBonus_ = MatcherTuning::filterPrefixBonus;
};

inline bool sameList(const std::vector<MatchIndex::Hit>& hits, const std::vector<plain::Ranked>& expected) {
    return std::ranges::equal(hits, expected, [](const MatchIndex::Hit& hit, const plain::Ranked& one) {
        return hit.position == one.position && hit.score == one.score;
    });
}

/// The first answer in which the matcher differs from the plain reading, or nothing.
inline std::string difference(const std::string& text, const std::vector<Candidate>& candidates,
                              MatchContext context) {
    const MatchIndex index(candidates);
    const std::string canonical = Normalizer::canonical(text);
    if (canonical != plain::canonical(text)) return "canonical";
    for (const auto mode : {MatchContext::Mode::voice, MatchContext::Mode::filter}) {
        context.mode = mode;
        if (!sameList(FuzzyMatcher::filter(text, index, context), plain::filter(text, candidates, context))) {
            return "filter";
        }
        if (!sameList(FuzzyMatcher::rank(canonical, index, context),
                      plain::rank(canonical, candidates, context))) {
            return "rank";
        }
        for (const Candidate& candidate : candidates) {
            const bool isFilter = mode == MatchContext::Mode::filter;
            if (FuzzyMatcher::candidateScore(canonical, candidate, isFilter) !=
                plain::candidateScore(canonical, candidate, isFilter)) {
                return "candidateScore";
            }
        }
        for (const bool partial : {false, true}) {
            context.isPartial = partial;
            if (FuzzyMatcher::match(text, candidates, context) != plain::match(text, candidates, context)) {
                return "match";
            }
        }
    }
    return {};
}

} // namespace lumnara::testing
