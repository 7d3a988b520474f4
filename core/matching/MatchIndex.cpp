#include "core/matching/MatchIndex.h"

#include "core/matching/Normalizer.h"
#include "core/text/Text.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace lumnara {
namespace {

std::vector<PhraseBank::Phrase> canonicalPhrases(std::span<const Candidate> candidates) {
    std::vector<PhraseBank::Phrase> phrases;
    for (std::uint32_t position = 0; position < candidates.size(); ++position) {
        for (const std::string& phrase : candidates[position].phrases) {
            Normalizer::canonical(phrase, phrases.emplace_back(position).text);
        }
    }
    return phrases;
}

std::uint32_t placeOf(const DisplayID& display, std::vector<DisplayID>& displays) {
    const auto known = std::ranges::find_if(
        displays, [&](const DisplayID& other) { return text::equalsIgnoringCase(other.uuid, display.uuid); });
    const auto place = static_cast<std::uint32_t>(known - displays.begin());
    if (known == displays.end()) displays.push_back(display);
    return place;
}

} // namespace

MatchIndex::MatchIndex(std::span<const Candidate> candidates)
    : entries_(candidates.size()),
      ordered_(candidates.size()),
      phrases_(canonicalPhrases(candidates), candidates.size()) {
    std::iota(ordered_.begin(), ordered_.end(), 0U);
    std::ranges::sort(ordered_, {},
                      [&](std::uint32_t i) { return std::pair(candidates[i].indexOnDisplay, i); });
    for (std::uint32_t order = 0; order < ordered_.size(); ++order) entries_[ordered_[order]].order = order;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        entries_[i].display = placeOf(candidates[i].display, displays_);
        entries_[i].userNumber = candidates[i].userNumber;
    }
}

} // namespace lumnara
