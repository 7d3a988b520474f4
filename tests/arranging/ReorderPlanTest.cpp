#include "core/arranging/ReorderPlan.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <numeric>
#include <queue>
#include <random>
#include <string>

namespace lumnara {
namespace {

using List = std::vector<int>;
using Moves = std::vector<ReorderMove>;

List applyingAll(const Moves& moves, List list) {
    for (const ReorderMove& move : moves) list = ReorderPlan::applying(move, std::move(list));
    return list;
}

List upTo(int count) {
    List list(static_cast<std::size_t>(count));
    std::iota(list.begin(), list.end(), 0);
    return list;
}

/// For each order of 0..count-1 the fewest moves that sort it, found by trying all moves, breadth first.
std::map<List, std::size_t> fewestMoves(int count) {
    std::map<List, std::size_t> fewest{{upTo(count), 0}};
    std::queue<List> open({upTo(count)});
    for (; !open.empty(); open.pop()) {
        const std::size_t next = fewest.at(open.front()) + 1;
        for (int from = 0; from < count; ++from)
            for (int to = 0; to < count; ++to) {
                const List list = ReorderPlan::applying({from, to}, open.front());
                if (fewest.emplace(list, next).second) open.push(list);
            }
    }
    return fewest;
}

std::size_t longestIncreasingByPairs(const List& list) {
    std::vector<std::size_t> length(list.size(), 1);
    for (std::size_t i = 0; i < list.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            if (list[j] < list[i]) length[i] = std::max(length[i], length[j] + 1);
    return list.empty() ? 0 : *std::ranges::max_element(length);
}

TEST(ReorderPlan, MovesOnlyWhatHasTo) {
    const std::vector<std::string> abcd{"A", "B", "C", "D"};
    EXPECT_EQ(ReorderPlan::moves(abcd, abcd), Moves());
    EXPECT_EQ(ReorderPlan::moves(abcd, {"B", "C", "D", "A"}), Moves({{0, 3}}));
    EXPECT_EQ(ReorderPlan::moves(abcd, {"D", "A", "B", "C"}), Moves({{3, 0}}));
    EXPECT_EQ(ReorderPlan::moves<std::string>({"A", "B", "C"}, {"C", "B", "A"}), Moves({{1, 2}, {0, 2}}));
    EXPECT_EQ(ReorderPlan::moves<std::string>({}, {"A"}), Moves());
    EXPECT_EQ((ReorderMove{2, 0}).description(), "2 -> 0");
}

TEST(ReorderPlan, AimsForAPermutationOfWhatThereIs) {
    EXPECT_EQ(ReorderPlan::reconciled<int>({3, 9, 1, 3}, {1, 2, 3}), List({3, 1, 2}));
    EXPECT_EQ(ReorderPlan::reconciled<int>({}, {1, 2}), List({1, 2}));
    EXPECT_EQ(ReorderPlan::moves<int>({1, 2, 3}, {3, 9, 1, 3}), Moves({{2, 0}}));
}

TEST(ReorderPlan, PassesOverAMoveOutsideTheList) {
    for (const ReorderMove move : {ReorderMove{-1, 0}, {0, -1}, {3, 0}, {0, 3}})
        EXPECT_EQ(ReorderPlan::applying(move, List({1, 2, 3})), List({1, 2, 3})) << move.description();
    EXPECT_EQ(ReorderPlan::applying({0, 2}, List({1, 2, 3})), List({2, 3, 1}));
    EXPECT_EQ(ReorderPlan::applying({1, 1}, List({1, 2, 3})), List({1, 2, 3}));
    EXPECT_EQ(ReorderPlan::applying({0, 0}, List()), List());
}

TEST(ReorderPlan, TakesTheFewestMovesForEveryOrderOfUpToSeven) {
    for (int count = 0; count <= 7; ++count) {
        const List sorted = upTo(count);
        for (const auto& [order, fewest] : fewestMoves(count)) {
            const Moves moves = ReorderPlan::moves(order, sorted);
            ASSERT_EQ(moves.size(), fewest);
            ASSERT_EQ(applyingAll(moves, order), sorted);
        }
    }
}

TEST(ReorderPlan, KeepsALongestIncreasingSubsequenceOfLongLists) {
    std::mt19937 random(1);
    for (int round = 0; round < 400; ++round) {
        List order = upTo(static_cast<int>(random() % 120));
        const List sorted = order;
        std::ranges::shuffle(order, random);
        if (round % 2 == 0) // nearly in order, as a hand leaves it
            std::sort(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(order.size() * 3 / 4));
        const Moves moves = ReorderPlan::moves(order, sorted);
        ASSERT_EQ(moves.size(), order.size() - longestIncreasingByPairs(order));
        ASSERT_EQ(applyingAll(moves, order), sorted);
    }
}

TEST(ReorderPlan, ReachesWhateverIsAskedForFromWhateverThereIs) {
    std::mt19937 random(2);
    for (int round = 0; round < 400; ++round) {
        List current = upTo(40);
        std::ranges::shuffle(current, random);
        current.resize(random() % 30);
        List desired(random() % 40);
        for (int& element : desired) element = static_cast<int>(random() % 45);
        if (round % 10 == 0 && !current.empty()) current.push_back(current.front()); // damaged data
        const List target = ReorderPlan::reconciled(desired, current);
        ASSERT_TRUE(std::ranges::is_permutation(target, current));
        ASSERT_EQ(applyingAll(ReorderPlan::moves(current, desired), current), target);
    }
}

} // namespace
} // namespace lumnara
