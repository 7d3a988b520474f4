#include "core/matching/RankOrder.h"

#include <algorithm>
#include <array>

namespace lumnara {
namespace {

constexpr std::size_t bucketCount = 1024;

/// Better scores come to lower buckets.
std::size_t bucketOf(double score) {
    return static_cast<std::size_t>(std::clamp((1.0 - score) * bucketCount, 0.0, bucketCount - 1.0));
}

constexpr auto ranksBefore = [](const RankKey& a, const RankKey& b) {
    return a.score != b.score ? a.score > b.score : a.tie < b.tie;
};

} // namespace

// Scores spread over their range: dealt into buckets, they leave little to compare.
void sortByRank(std::vector<RankKey>& keys) {
    std::array<std::uint32_t, bucketCount + 1> starts{};
    for (const RankKey& key : keys) ++starts[bucketOf(key.score) + 1];
    for (std::size_t bucket = 0; bucket < bucketCount; ++bucket) starts[bucket + 1] += starts[bucket];

    std::vector<RankKey> dealt(keys.size());
    std::array<std::uint32_t, bucketCount + 1> next = starts;
    for (const RankKey& key : keys) dealt[next[bucketOf(key.score)]++] = key;
    for (std::size_t bucket = 0; bucket < bucketCount; ++bucket) {
        std::sort(dealt.begin() + starts[bucket], dealt.begin() + starts[bucket + 1], ranksBefore);
    }
    keys.swap(dealt);
}

} // namespace lumnara
