#include "core/matching/LaneScores.h"

#include "core/matching/Measures.h"
#include "core/matching/Similarity.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace lumnara {
namespace {

/// One block of phrases over a few letters, and the rows of a query against it.
struct OneBlock {
    LaneBlock block;
    std::vector<std::string> phrases;
    std::vector<Lanes> places;
    std::vector<const Lanes*> rows;
    std::vector<double> scores;

    OneBlock(int length, const std::string& query, std::mt19937& random) : places(query.size()) {
        block.length = length;
        for (std::size_t lane = 0; lane < block.lanes(); ++lane) {
            std::string& phrase = phrases.emplace_back();
            for (int i = 0; i < length; ++i)
                phrase += "aabc "[random() % (i == 0 || i == length - 1 ? 4 : 5)];
            for (std::size_t i = 0; i < phrase.size(); ++i) {
                const std::size_t bit = lane * block.laneBits() + i;
                if (i == 0 || phrase[i - 1] == ' ') set(block.wordStarts, bit);
                for (std::size_t k = 0; k < query.size(); ++k) {
                    if (query[k] == phrase[i]) set(places[k], bit);
                }
            }
            scores.push_back(Similarity::tokenOverlap(query, phrase) * Measures::overlapWeight);
        }
        for (const Lanes& row : places) rows.push_back(&row);
    }

    static void set(Lanes& lanes, std::size_t bit) { lanes.bits[bit / 64] |= std::uint64_t{1} << bit % 64; }
};

TEST(LaneScores, AreThePlainScoresOnVectorsOfAnyWidth) {
    std::mt19937 random(11);
    for (int length = 1; length <= LaneBlock::longestPhrase; ++length) {
        for (int round = 0; round < 12; ++round) {
            std::string query;
            for (std::size_t left = 1 + random() % (round == 0 ? 100 : 20); left > 0; --left) {
                query += "aabc "[random() % (left == 1 || query.empty() ? 4 : 5)];
            }
            const PrefixBonus prefix{0.15, 1 + random() % 3};
            OneBlock one(length, query, random);
            std::vector<double> narrow = one.scores, widest = one.scores;
            const LaneQuery lanes{one.rows, query.find(' ') != std::string::npos, prefix};
            scoreLanesNarrow({&one.block, 1}, lanes, narrow);
            scoreLanes({&one.block, 1}, lanes, widest);
            for (std::size_t lane = 0; lane < one.phrases.size(); ++lane) {
                const double expected = phraseScore(query, one.phrases[lane], prefix);
                ASSERT_EQ(narrow[lane], expected) << query << "|" << one.phrases[lane];
                ASSERT_EQ(widest[lane], expected) << query << "|" << one.phrases[lane];
            }
        }
    }
}

} // namespace
} // namespace lumnara
