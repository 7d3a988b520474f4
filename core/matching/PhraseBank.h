#pragma once

#include "core/matching/Characters.h"
#include "core/matching/LaneScores.h"
#include "core/matching/PhraseScore.h"
#include "core/matching/TextHash.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace lumnara {

/// Canonical phrases, laid out so that a query meets many of them at a time. Each phrase belongs to an owner,
/// a number.
class PhraseBank {
public:
    struct Phrase {
        std::uint32_t owner = 0;
        std::string text;
    };

    /// The owners are the numbers below `owners`.
    PhraseBank(std::vector<Phrase> phrases, std::size_t owners);

    /// The best `phraseScore` of each owner's phrases against a canonical query; 0 for an owner without any.
    std::vector<double> bestScores(std::string_view query, const PrefixBonus& prefix) const;

private:
    /// The places of a character in all phrases: bits of a list of lanes, a Lanes for each block. A rare
    /// character keeps only the numbers of its bits.
    struct Row {
        std::vector<std::uint32_t> bits;
        std::vector<Lanes> lanes;
    };

    /// A phrase on its way into a block.
    struct Spelled;

    void addBlock(int length);
    void place(const Phrase& phrase, std::span<const std::uint32_t> characters, std::size_t lane);
    void widenFrequentRows();
    Row& rowOf(std::uint32_t character);
    const Row* findRow(std::uint32_t character) const;

    void scoreBlocks(std::string_view query, const Characters& characters, const PrefixBonus& prefix,
                     std::vector<double>& best) const;
    /// For each slot the weighted overlap of the query's words with those of its phrase.
    std::vector<double> overlaps(std::string_view query) const;

    CharacterNumbers numbers_;
    std::vector<Phrase> phrases_;
    std::vector<std::uint32_t> longPhrases_; ///< positions of those that fit no block
    std::vector<double> leastScores_;        ///< by owner; 0 where nothing or an empty phrase stands
    std::vector<LaneBlock> blocks_;
    std::array<Row, 128> asciiRows_;
    std::unordered_map<std::uint32_t, Row> otherRows_;
    std::vector<std::uint32_t> slotOwners_; ///< a lane that stands empty has an owner behind the last
    std::vector<std::uint32_t> slotWords_;  ///< how many distinct words the phrase has
    TextMap<std::vector<std::uint32_t>> slotsOfWord_;
};

} // namespace lumnara
