#pragma once

#include "core/matching/Candidate.h"
#include "core/matching/MatchContext.h"
#include "core/matching/MatchIndex.h"
#include "core/matching/MatchOutcome.h"
#include "core/matching/VoiceCommand.h"

#include <optional>
#include <span>
#include <string_view>
#include <vector>

/// Decides which desktop a noisy transcript or a typed query means. Functions of their arguments and of
/// MatcherTuning, without a sense of time.
namespace lumnara::FuzzyMatcher {

/// The voice entry: strict. The index has to be that of the candidates; without one, it is built for the
/// call.
MatchOutcome match(std::string_view transcript, const std::vector<Candidate>& candidates,
                   const MatchContext& context);
MatchOutcome match(std::string_view transcript, const std::vector<Candidate>& candidates,
                   const MatchIndex& index, const MatchContext& context);

/// The Board's entry: generous. The candidates that stay in the list, best first; all of them for a query
/// without words.
std::vector<ScoredCandidate> filter(std::string_view query, const std::vector<Candidate>& candidates,
                                    const MatchContext& context);
std::vector<MatchIndex::Hit> filter(std::string_view query, const MatchIndex& index,
                                    const MatchContext& context);

/// Every candidate, best first. The query has to be canonical.
std::vector<ScoredCandidate> rank(std::string_view query, const std::vector<Candidate>& candidates,
                                  const MatchContext& context);
std::vector<MatchIndex::Hit> rank(std::string_view query, const MatchIndex& index,
                                  const MatchContext& context);

/// The best score of a canonical query against the phrases of a candidate; 0 without phrases.
double candidateScore(std::string_view query, const Candidate& candidate, bool isFilter);

/// From 0 to 1; both texts have to be canonical.
double phraseScore(std::string_view query, std::string_view phrase, bool isFilter);

/// The command that canonical text is, with or without " desktop", " space", " screen" or " one" behind it.
std::optional<VoiceCommand> parseCommand(std::string_view canonicalText);

struct CommandPhrase {
    std::string_view phrase;
    VoiceCommand command = VoiceCommand::next;
};
std::span<const CommandPhrase> commandPhrases();

/// How near a display is to the user: 0 under the pointer, 1 with the menu bar, then the place in
/// `displays` plus 2.
int displayRank(const DisplayID& display, const MatchContext& context,
                const std::vector<DisplayID>& displays);

} // namespace lumnara::FuzzyMatcher
