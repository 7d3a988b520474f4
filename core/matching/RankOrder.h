#pragma once

#include <cstdint>
#include <vector>

namespace lumnara {

/// A scored entry in a list that is to be ranked.
struct RankKey {
    double score = 0;
    std::uint64_t tie = 0; ///< decides between equal scores, lowest first; no two are the same
};

/// Sorts by score, highest first, then by tie. No score may be a NaN.
void sortByRank(std::vector<RankKey>& keys);

} // namespace lumnara
