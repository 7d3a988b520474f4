#include "core/tracking/UsageSums.h"

#include <algorithm>
#include <utility>

namespace lumnara {

void UsageSums::add(const UsageSample& sample, std::int64_t milliseconds) {
    Sum& sum = sumOf(sample);
    (sample.isIdle ? sum.idle : sum.active) += milliseconds;
    if (sum.row.spaceName != sample.spaceName) sum.row.spaceName = sample.spaceName;
}

std::string_view UsageSums::keyOf(const UsageSample& sample) {
    if (!byApp_) return sample.spaceKey;
    key_.assign(sample.spaceKey);
    key_ += '|';
    key_ += sample.appBundleID.value_or(sample.appName.value_or("unknown"));
    return key_;
}

UsageSums::Sum& UsageSums::sumOf(const UsageSample& sample) {
    const std::string_view key = keyOf(sample);
    if (const auto found = places_.find(key); found != places_.end()) return sums_[found->second];
    places_.emplace(key, sums_.size());
    Sum& sum = sums_.emplace_back();
    sum.row.key = key;
    sum.row.spaceKey = sample.spaceKey;
    if (byApp_) sum.row.appName = sample.appName ? sample.appName : sample.appBundleID;
    return sum;
}

std::vector<UsageRow> UsageSums::take() {
    // The key decides among equals, so that a report read again looks the same.
    std::ranges::sort(sums_, {}, [](const Sum& sum) {
        return std::pair(-(sum.active + sum.idle), std::string_view(sum.row.key));
    });
    std::vector<UsageRow> rows;
    rows.reserve(sums_.size());
    for (Sum& sum : sums_) {
        sum.row.active = static_cast<double>(sum.active) / 1000;
        sum.row.idle = static_cast<double>(sum.idle) / 1000;
        rows.push_back(std::move(sum.row));
    }
    sums_.clear();
    places_.clear();
    return rows;
}

} // namespace lumnara
