#include "core/matching/PhraseBank.h"

#include "core/matching/Measures.h"
#include "core/matching/Words.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <utility>

namespace lumnara {
namespace {

constexpr std::size_t blockBits = LaneBlock::bytes * 8;

static_assert(std::endian::native == std::endian::little, "bits are counted across the words of a block");
void setBit(Lanes& lanes, std::size_t bit) { lanes.bits[bit / 64] |= std::uint64_t{1} << bit % 64; }

std::vector<Lanes> widened(const std::vector<std::uint32_t>& bits, std::size_t blocks) {
    std::vector<Lanes> lanes(blocks);
    for (const std::uint32_t bit : bits) setBit(lanes[bit / blockBits], bit % blockBits);
    return lanes;
}

void splitDistinctWords(std::string_view text, std::vector<std::string_view>& out) {
    splitWords(text, out);
    if (out.size() < 2) return;
    std::ranges::sort(out);
    const auto repeats = std::ranges::unique(out);
    out.erase(repeats.begin(), repeats.end());
}

} // namespace

struct PhraseBank::Spelled {
    const Phrase* phrase = nullptr;
    std::size_t from = 0; ///< in the list of all characters
    std::size_t length = 0;
};

PhraseBank::PhraseBank(std::vector<Phrase> phrases, std::size_t owners)
    : phrases_(std::move(phrases)),
      leastScores_(owners, 0.0) {
    Characters all, characters;
    std::vector<Spelled> spelled;
    spelled.reserve(phrases_.size());
    for (std::uint32_t i = 0; i < phrases_.size(); ++i) {
        const Phrase& phrase = phrases_[i];
        if (phrase.text.empty()) continue;
        leastScores_[phrase.owner] = -std::numeric_limits<double>::infinity();
        numbers_.number(phrase.text, characters);
        if (characters.size() > LaneBlock::longestPhrase) {
            longPhrases_.push_back(i);
        } else {
            spelled.push_back({&phrase, all.size(), characters.size()});
            all.insert(all.end(), characters.begin(), characters.end());
        }
    }
    for (const Phrase& phrase : phrases_) {
        if (phrase.text.empty()) leastScores_[phrase.owner] = 0.0;
    }

    std::ranges::sort(spelled, {}, [](const Spelled& one) { return std::pair(one.length, one.from); });
    std::size_t lane = 0;
    for (const Spelled& one : spelled) {
        const int length = static_cast<int>(one.length);
        if (blocks_.empty() || blocks_.back().length != length || lane == blocks_.back().lanes()) {
            addBlock(length);
            lane = 0;
        }
        place(*one.phrase, std::span(all).subspan(one.from, one.length), lane++);
    }
    widenFrequentRows();
}

void PhraseBank::addBlock(int length) {
    LaneBlock& block = blocks_.emplace_back();
    block.length = length;
    block.firstSlot = static_cast<std::uint32_t>(slotOwners_.size());
    const auto nobody = static_cast<std::uint32_t>(leastScores_.size());
    slotOwners_.resize(slotOwners_.size() + block.lanes(), nobody);
    slotWords_.resize(slotOwners_.size());
}

void PhraseBank::place(const Phrase& phrase, std::span<const std::uint32_t> characters, std::size_t lane) {
    LaneBlock& block = blocks_.back();
    const std::size_t firstBit = lane * block.laneBits();
    bool wordStarts = true;
    for (std::size_t i = 0; i < characters.size(); ++i) {
        const std::size_t bit = (blocks_.size() - 1) * blockBits + firstBit + i;
        rowOf(characters[i]).bits.push_back(static_cast<std::uint32_t>(bit));
        if (wordStarts) setBit(block.wordStarts, firstBit + i);
        wordStarts = characters[i] == ' ';
    }

    const auto slot = static_cast<std::uint32_t>(block.firstSlot + lane);
    std::vector<std::string_view> words;
    splitDistinctWords(phrase.text, words);
    slotOwners_[slot] = phrase.owner;
    slotWords_[slot] = static_cast<std::uint32_t>(words.size());
    for (const std::string_view word : words) {
        auto known = slotsOfWord_.find(word);
        if (known == slotsOfWord_.end()) known = slotsOfWord_.try_emplace(std::string(word)).first;
        known->second.push_back(slot);
    }
}

void PhraseBank::widenFrequentRows() {
    const auto widen = [&](Row& row) {
        if (row.bits.size() <= blocks_.size()) return;
        row.lanes = widened(row.bits, blocks_.size());
        row.bits = {};
    };
    std::ranges::for_each(asciiRows_, widen);
    for (auto& [character, row] : otherRows_) widen(row);
}

PhraseBank::Row& PhraseBank::rowOf(std::uint32_t character) {
    return character < asciiRows_.size() ? asciiRows_[character] : otherRows_[character];
}

const PhraseBank::Row* PhraseBank::findRow(std::uint32_t character) const {
    if (character < asciiRows_.size()) return &asciiRows_[character];
    const auto known = otherRows_.find(character);
    return known == otherRows_.end() ? nullptr : &known->second;
}

std::vector<double> PhraseBank::bestScores(std::string_view query, const PrefixBonus& prefix) const {
    if (query.empty()) return std::vector<double>(leastScores_.size(), 0.0);
    std::vector<double> best = leastScores_;
    const auto scoreAlone = [&](const Phrase& phrase) {
        best[phrase.owner] = std::max(best[phrase.owner], phraseScore(query, phrase.text, prefix));
    };
    Characters characters;
    numbers_.find(query, characters);
    if (characters.size() > LaneQuery::longest) {
        std::ranges::for_each(phrases_, scoreAlone);
        return best;
    }
    for (const std::uint32_t position : longPhrases_) scoreAlone(phrases_[position]);
    scoreBlocks(query, characters, prefix, best);
    return best;
}

void PhraseBank::scoreBlocks(std::string_view query, const Characters& characters, const PrefixBonus& prefix,
                             std::vector<double>& best) const {
    // The rows that are not kept wide: one for each distinct character that is rare, one for all the unknown.
    std::unordered_map<std::uint32_t, std::vector<Lanes>> rare;
    std::vector<const Lanes*> rows;
    rows.reserve(characters.size());
    for (const std::uint32_t character : characters) {
        const Row* row = findRow(character);
        if (row && !row->lanes.empty()) {
            rows.push_back(row->lanes.data());
            continue;
        }
        const auto [made, isNew] = rare.try_emplace(row ? character : CharacterNumbers::unknown);
        if (isNew) made->second = widened(row ? row->bits : std::vector<std::uint32_t>{}, blocks_.size());
        rows.push_back(made->second.data());
    }

    std::vector<double> scores = overlaps(query);
    const bool hasBlank = std::ranges::find(characters, std::uint32_t{' '}) != characters.end();
    scoreLanes(blocks_, {rows, hasBlank, prefix}, scores);
    best.push_back(0.0); // for the lanes that stand empty
    for (std::size_t slot = 0; slot < scores.size(); ++slot) {
        double& score = best[slotOwners_[slot]];
        score = std::max(score, scores[slot]);
    }
    best.pop_back();
}

std::vector<double> PhraseBank::overlaps(std::string_view query) const {
    std::vector<double> shared(slotOwners_.size(), 0.0);
    std::vector<std::string_view> words;
    splitDistinctWords(query, words);
    std::vector<std::uint32_t> touched;
    for (const std::string_view word : words) {
        const auto known = slotsOfWord_.find(word);
        if (known == slotsOfWord_.end()) continue;
        for (const std::uint32_t slot : known->second) {
            if (shared[slot]++ == 0.0) touched.push_back(slot);
        }
    }
    for (const std::uint32_t slot : touched) {
        const auto most = static_cast<double>(std::max<std::size_t>(words.size(), slotWords_[slot]));
        shared[slot] = shared[slot] / most * Measures::overlapWeight;
    }
    return shared;
}

} // namespace lumnara
