#include "core/matching/FuzzyMatcher.h"

#include "core/matching/MatcherTuning.h"
#include "core/matching/Normalizer.h"
#include "core/matching/PhraseScore.h"
#include "core/matching/RankOrder.h"
#include "core/text/Text.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

namespace lumnara::FuzzyMatcher {
namespace {

using Hit = MatchIndex::Hit;

constexpr CommandPhrase commandTable[] = {
    {"next", VoiceCommand::next},         {"right", VoiceCommand::next},
    {"go right", VoiceCommand::next},     {"forward", VoiceCommand::next},
    {"previous", VoiceCommand::previous}, {"left", VoiceCommand::previous},
    {"go left", VoiceCommand::previous},  {"prev", VoiceCommand::previous},
    {"backward", VoiceCommand::previous}, {"back", VoiceCommand::back},
    {"go back", VoiceCommand::back},      {"jump back", VoiceCommand::back},
    {"last", VoiceCommand::back},         {"go to last", VoiceCommand::back},
};

constexpr std::size_t mostAmbiguous = 3;

/// The rank of each of the index's displays.
std::vector<std::uint32_t> displayRanks(const MatchIndex& index, const MatchContext& context) {
    std::vector<std::uint32_t> ranks;
    for (const DisplayID& display : index.displays()) {
        ranks.push_back(static_cast<std::uint32_t>(displayRank(display, context, index.displays())));
    }
    return ranks;
}

/// The candidates that score at least `threshold`, best first, then by display, then by index on display.
std::vector<Hit> ranked(std::string_view query, const MatchIndex& index, const MatchContext& context,
                        double threshold) {
    const bool isFilter = context.mode == MatchContext::Mode::filter;
    const std::vector<double> scores = index.phrases().bestScores(query, PrefixBonus::current(isFilter));
    const std::vector<std::uint32_t> ranks = displayRanks(index, context);

    std::vector<RankKey> keys;
    keys.reserve(scores.size());
    for (std::size_t i = 0; i < scores.size(); ++i) {
        const MatchIndex::Entry& entry = index.entries()[i];
        if (!(scores[i] >= threshold)) continue;
        keys.push_back({scores[i], std::uint64_t{ranks[entry.display]} << 32 | entry.order});
    }
    sortByRank(keys);
    std::vector<Hit> hits;
    hits.reserve(keys.size());
    for (const RankKey& key : keys) {
        hits.push_back({index.ordered()[key.tie & 0xFFFFFFFF], key.score});
    }
    return hits;
}

/// The positions that a test picks, by display, then by position.
template <class Test>
std::vector<std::uint32_t> byDisplay(const MatchIndex& index, const MatchContext& context, Test test) {
    const std::vector<std::uint32_t> ranks = displayRanks(index, context);
    std::vector<std::uint32_t> positions;
    for (std::uint32_t i = 0; i < index.entries().size(); ++i) {
        if (test(index.entries()[i])) positions.push_back(i);
    }
    std::ranges::sort(positions, {},
                      [&](std::uint32_t i) { return std::pair(ranks[index.entries()[i].display], i); });
    return positions;
}

std::vector<std::uint32_t> numbered(const MatchIndex& index, const MatchContext& context,
                                    std::int64_t number) {
    return byDisplay(index, context,
                     [&](const MatchIndex::Entry& entry) { return entry.userNumber == number; });
}

std::vector<ScoredCandidate> withCandidates(const std::vector<Hit>& hits,
                                            const std::vector<Candidate>& candidates) {
    std::vector<ScoredCandidate> scored;
    scored.reserve(hits.size());
    for (const Hit& hit : hits) scored.push_back({candidates[hit.position], hit.score});
    return scored;
}

/// A partial transcript may still become something.
MatchOutcome nothing(double best, bool isPartial) {
    if (isPartial) return {MatchOutcome::KeepListening{}};
    return {MatchOutcome::None{best}};
}

/// Whether more speech can turn the number into the greater one: "1" into "12", "twenty" into "23".
bool mayBecome(std::int64_t number, std::int64_t greater) {
    const bool byDigit = number * 10 <= greater && greater <= number * 10 + 9;
    const bool byUnit = number >= 20 && number % 10 == 0 && number + 1 <= greater && greater <= number + 9;
    return byDigit || byUnit;
}

MatchOutcome matchNumber(std::int64_t number, const std::vector<Candidate>& candidates,
                         const MatchIndex& index, const MatchContext& context) {
    const auto open = [&](const MatchIndex::Entry& entry) {
        return entry.userNumber && *entry.userNumber > number && mayBecome(number, *entry.userNumber);
    };
    const bool mayGrow = std::ranges::any_of(index.entries(), open);
    if (context.isPartial && mayGrow) return {MatchOutcome::KeepListening{}};
    const std::vector<std::uint32_t> called = numbered(index, context, number);
    if (called.empty()) return nothing(0.0, context.isPartial);
    return {MatchOutcome::Accepted{candidates[called.front()], 1.0}};
}

/// Removes the entries that tie with the best and share a phrase with it: the same name on another display
/// is no ambiguity, the nearer display has been chosen.
void removeNamesakes(std::vector<Hit>& hits, const std::vector<Candidate>& candidates) {
    const auto canonicalPhrases = [&](const Hit& hit) {
        std::vector<std::string> phrases;
        for (const std::string& phrase : candidates[hit.position].phrases) {
            phrases.push_back(Normalizer::canonical(phrase));
        }
        return phrases;
    };
    const Hit best = hits.front();
    const std::vector<std::string> own = canonicalPhrases(best);
    const auto isNamesake = [&](const Hit& hit) {
        if (hit.score < best.score) return false;
        return std::ranges::any_of(canonicalPhrases(hit), [&](const std::string& phrase) {
            return std::ranges::find(own, phrase) != own.end();
        });
    };
    hits.erase(std::remove_if(hits.begin() + 1, hits.end(), isNamesake), hits.end());
}

MatchOutcome decide(const std::vector<Hit>& hits, const std::vector<Candidate>& candidates, bool isPartial) {
    const double best = hits.front().score;
    const bool hasSecond = hits.size() > 1;
    const double second = hasSecond ? hits[1].score : 0.0;
    if (best < MatcherTuning::acceptThreshold) return nothing(best, isPartial);
    if (hasSecond && best - second < MatcherTuning::ambiguityMargin && best < MatcherTuning::exactScore) {
        if (isPartial) return {MatchOutcome::KeepListening{}};
        MatchOutcome::Ambiguous ambiguous;
        for (std::size_t i = 0; i < std::min(hits.size(), mostAmbiguous); ++i) {
            ambiguous.candidates.push_back(candidates[hits[i].position]);
        }
        return {ambiguous};
    }
    const bool early =
        best >= MatcherTuning::earlyAcceptThreshold && best - second >= MatcherTuning::earlyAcceptMargin;
    if (isPartial && !early) return {MatchOutcome::KeepListening{}};
    return {MatchOutcome::Accepted{candidates[hits.front().position], best}};
}

} // namespace

MatchOutcome match(std::string_view transcript, const std::vector<Candidate>& candidates,
                   const MatchContext& context) {
    return match(transcript, candidates, MatchIndex(candidates), context);
}

MatchOutcome match(std::string_view transcript, const std::vector<Candidate>& candidates,
                   const MatchIndex& index, const MatchContext& context) {
    const std::string canonical = Normalizer::canonical(transcript);
    if (const auto command = parseCommand(canonical)) return {MatchOutcome::Command{*command}};
    const std::string target = Normalizer::stripFiller(canonical);
    if (const auto number = Normalizer::parseNumber(target)) {
        return matchNumber(*number, candidates, index, context);
    }
    if (text::length(target) < 2) return nothing(0.0, context.isPartial);
    std::vector<Hit> hits = rank(target, index, context);
    if (hits.empty()) return nothing(0.0, context.isPartial);
    removeNamesakes(hits, candidates);
    return decide(hits, candidates, context.isPartial);
}

std::vector<ScoredCandidate> filter(std::string_view query, const std::vector<Candidate>& candidates,
                                    const MatchContext& context) {
    return withCandidates(filter(query, MatchIndex(candidates), context), candidates);
}

std::vector<Hit> filter(std::string_view query, const MatchIndex& index, const MatchContext& context) {
    const std::string canonical = Normalizer::canonical(query);
    std::vector<Hit> hits;
    if (canonical.empty()) {
        const auto all = [](const MatchIndex::Entry&) { return true; };
        for (const std::uint32_t position : byDisplay(index, context, all)) hits.push_back({position, 1.0});
        return hits;
    }
    const auto number = Normalizer::parseNumber(canonical);
    if (number) {
        for (const std::uint32_t called : numbered(index, context, *number)) hits.push_back({called, 1.0});
    }
    const std::vector<Hit> matching = ranked(canonical, index, context, MatcherTuning::filterThreshold);
    if (hits.empty()) return matching;
    std::ranges::copy_if(matching, std::back_inserter(hits),
                         [&](const Hit& hit) { return index.entries()[hit.position].userNumber != number; });
    return hits;
}

std::vector<ScoredCandidate> rank(std::string_view query, const std::vector<Candidate>& candidates,
                                  const MatchContext& context) {
    return withCandidates(rank(query, MatchIndex(candidates), context), candidates);
}

std::vector<Hit> rank(std::string_view query, const MatchIndex& index, const MatchContext& context) {
    return ranked(query, index, context, -std::numeric_limits<double>::infinity());
}

double candidateScore(std::string_view query, const Candidate& candidate, bool isFilter) {
    if (candidate.phrases.empty()) return 0.0;
    double best = -std::numeric_limits<double>::infinity();
    for (const std::string& phrase : candidate.phrases) {
        best = std::max(best, phraseScore(query, Normalizer::canonical(phrase), isFilter));
    }
    return best;
}

double phraseScore(std::string_view query, std::string_view phrase, bool isFilter) {
    return lumnara::phraseScore(query, phrase, PrefixBonus::current(isFilter));
}

std::optional<VoiceCommand> parseCommand(std::string_view canonicalText) {
    std::string_view rest = canonicalText;
    // Each ending goes once, in whatever order they stand: "next desktop one" as well as "next one desktop".
    std::vector<std::string_view> endings = {" desktop", " space", " screen", " one"};
    const auto isLast = [&](std::string_view ending) { return text::endsWith(rest, ending); };
    for (auto last = std::ranges::find_if(endings, isLast); last != endings.end();
         last = std::ranges::find_if(endings, isLast)) {
        rest.remove_suffix(last->size());
        endings.erase(last);
    }
    const auto known = std::ranges::find(commandTable, rest, &CommandPhrase::phrase);
    if (known == std::end(commandTable)) return std::nullopt;
    return known->command;
}

std::span<const CommandPhrase> commandPhrases() { return commandTable; }

int displayRank(const DisplayID& display, const MatchContext& context,
                const std::vector<DisplayID>& displays) {
    const auto is = [&](const std::optional<DisplayID>& other) {
        return other && text::equalsIgnoringCase(other->uuid, display.uuid);
    };
    if (is(context.cursorDisplay)) return 0;
    if (is(context.menuBarDisplay)) return 1;
    const auto known = std::ranges::find_if(
        displays, [&](const DisplayID& other) { return text::equalsIgnoringCase(other.uuid, display.uuid); });
    return known == displays.end() ? 2 : static_cast<int>(known - displays.begin()) + 2;
}

} // namespace lumnara::FuzzyMatcher
