#pragma once

#include "core/matching/PhraseScore.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace lumnara {

/// The bits of a block's phrases, one phrase to a lane.
struct alignas(32) Lanes {
    std::array<std::uint64_t, 4> bits{};
};

/// Phrases of one length, as many as a vector has lanes.
struct LaneBlock {
    /// In characters, from 1 to `longestPhrase`.
    int length = 0;
    /// The block's place in a list with an entry for each lane of each block.
    std::uint32_t firstSlot = 0;
    /// A bit for each character that begins a word.
    Lanes wordStarts;

    static constexpr int longestPhrase = 64;
    static constexpr int bitsOf(int length) { return length <= 16 ? 16 : length <= 32 ? 32 : 64; }
    static constexpr std::size_t bytes = sizeof(Lanes);

    /// A lane's width is the least that holds a bit for each character.
    std::size_t laneBits() const { return static_cast<std::size_t>(bitsOf(length)); }
    std::size_t lanes() const { return bytes * 8 / laneBits(); }
};

/// A query as the blocks meet it.
struct LaneQuery {
    static constexpr std::size_t longest = 256;

    /// For each character of the query a row: for each block the places that the character has in its
    /// phrases.
    std::span<const Lanes* const> rows;
    bool hasBlank = false;
    PrefixBonus prefix;
};

/// Scores a query of 1 to `longest` characters against all blocks. `scores` has an entry for each slot: it
/// holds the weighted overlap of words and gets the score.
///
/// A query is walked character by character, and each step carries on, in all lanes of a block, the edit
/// distance (Hyyrö's bit-parallel optimal string alignment, with the phrase as the pattern), Jaro's matching
/// and the search for beginnings of words. So a phrase costs the length of the query, whatever its own.
/// The scores are those of `phraseScore`, to the last bit.
void scoreLanes(std::span<const LaneBlock> blocks, const LaneQuery& query, std::span<double> scores);

/// The same on vectors that every machine has.
void scoreLanesNarrow(std::span<const LaneBlock> blocks, const LaneQuery& query, std::span<double> scores);

} // namespace lumnara
