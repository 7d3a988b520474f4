#include "core/arranging/ReorderPlan.h"

#include <algorithm>

namespace lumnara::ReorderPlan {

namespace {

constexpr std::size_t none = ~std::size_t{0};

/// The places of one longest strictly increasing subsequence, last first.
std::vector<std::size_t> longestIncreasing(std::span<const std::size_t> ranks) {
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

/// How many elements stand at each slot, summed by a binary indexed tree (Fenwick 1994).
class SlotCounts {
public:
    /// One element at each slot but slot 0.
    explicit SlotCounts(std::size_t slots) : tree_(slots + 1, 0) {
        for (std::size_t node = 1; node < tree_.size(); ++node) {
            if (node > 1) ++tree_[node];
            const std::size_t parent = node + (node & -node);
            if (parent < tree_.size()) tree_[parent] += tree_[node];
        }
    }
    void add(std::size_t slot, int change) {
        for (std::size_t node = slot + 1; node < tree_.size(); node += node & -node) tree_[node] += change;
    }
    /// Of all slots before this one.
    int before(std::size_t slot) const {
        int sum = 0;
        for (std::size_t node = slot; node > 0; node &= node - 1) sum += tree_[node];
        return sum;
    }

private:
    std::vector<int> tree_;
};

} // namespace

// The working list needn't be built. What has been moved follows the element before it in the target, and so
// stands in an unbroken run behind the nearest staying element, or at the front; what is still to be moved
// stands where it stood. So counting each element at a slot tells its place: slot 0 for the front and slot
// p + 1 for what stands, or has come to stand right behind what stands, at the original place p.
std::vector<ReorderMove> movesOfRanks(std::span<const std::size_t> ranks) {
    std::vector<std::size_t> slotOf(ranks.size());
    for (std::size_t place = 0; place < ranks.size(); ++place) slotOf[ranks[place]] = place + 1;
    std::vector<bool> stays(ranks.size(), false);
    for (const std::size_t place : longestIncreasing(ranks)) stays[ranks[place]] = true;

    std::vector<ReorderMove> moves;
    SlotCounts counts(ranks.size() + 1);
    std::size_t run = 0; // the slot behind whose elements the next one goes
    for (std::size_t rank = 0; rank < ranks.size(); ++rank) {
        const std::size_t slot = slotOf[rank];
        if (stays[rank]) {
            run = slot;
            continue;
        }
        const int from = counts.before(slot);
        counts.add(slot, -1);
        moves.push_back({from, counts.before(run + 1)});
        counts.add(run, 1);
    }
    return moves;
}

} // namespace lumnara::ReorderPlan
