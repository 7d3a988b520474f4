#include "core/arranging/ReorderPlan.h"

#include <algorithm>

namespace lumnara::ReorderPlan {

namespace {

constexpr std::size_t none = ~std::size_t{0};

/// The places of one longest strictly increasing subsequence, last first.
std::vector<std::size_t> longestIncreasing(const std::vector<std::size_t>& ranks) {
    std::vector<std::size_t> tops; // the place on top of each pile
    std::vector<std::size_t> before(ranks.size(), none);
    for (std::size_t place = 0; place < ranks.size(); ++place) {
        const auto pile =
            std::ranges::lower_bound(tops, ranks[place], {}, [&](std::size_t top) { return ranks[top]; });
        if (pile != tops.begin()) before[place] = *(pile - 1);
        if (pile != tops.end())
            *pile = place;
        else
            tops.push_back(place);
    }
    std::vector<std::size_t> places;
    for (std::size_t at = tops.empty() ? none : tops.back(); at != none; at = before[at])
        places.push_back(at);
    return places;
}

} // namespace

std::vector<ReorderMove> movesOfRanks(std::vector<std::size_t> ranks) {
    std::vector<bool> stays(ranks.size(), false);
    for (const std::size_t place : longestIncreasing(ranks)) stays[ranks[place]] = true;

    const auto placeOf = [&](std::size_t rank) { return std::ranges::find(ranks, rank) - ranks.begin(); };
    std::vector<ReorderMove> moves;
    for (std::size_t rank = 0; rank < ranks.size(); ++rank) {
        if (stays[rank]) continue;
        const auto from = placeOf(rank);
        ranks.erase(ranks.begin() + from);
        const auto to = rank == 0 ? 0 : placeOf(rank - 1) + 1; // behind what comes before it in the target
        ranks.insert(ranks.begin() + to, rank);
        moves.push_back({static_cast<int>(from), static_cast<int>(to)});
    }
    return moves;
}

} // namespace lumnara::ReorderPlan
