#include "core/tracking/PeriodUsage.h"

#include <algorithm>

namespace lumnara {

void PeriodUsage::add(const UsageSample& sample, DateRange interval) {
    while (next_ < periods_.size() && periods_[next_].to <= interval.from) handOver();
    for (std::size_t i = next_; i < periods_.size() && periods_[i].from < interval.to; ++i) {
        const Date start = std::max(interval.from, periods_[i].from);
        const Date end = std::min(interval.to, periods_[i].to);
        if (start < end)
            sums_.try_emplace(i, byApp_).first->second.add(sample, end.milliseconds - start.milliseconds);
    }
}

void PeriodUsage::finish() {
    while (next_ < periods_.size()) handOver();
}

void PeriodUsage::handOver() {
    auto sums = sums_.extract(next_);
    take_(next_++, sums.empty() ? std::vector<UsageRow>() : sums.mapped().take());
}

} // namespace lumnara
