#pragma once

#include "core/tracking/UsageSums.h"

#include <cstddef>
#include <functional>
#include <map>
#include <vector>

namespace lumnara {

/// Shares out intervals, in the order of their starts, among periods that follow one another without overlap.
/// A period's report is handed over as soon as no later interval can reach it.
class PeriodUsage {
public:
    using Take = std::function<void(std::size_t period, std::vector<UsageRow> rows)>;

    /// The arguments outlive it.
    PeriodUsage(const std::vector<DateRange>& periods, bool byApp, const Take& take)
        : periods_(periods),
          byApp_(byApp),
          take_(take) {}

    void add(const UsageSample& sample, DateRange interval);
    /// Hands over what is left.
    void finish();

private:
    void handOver();

    const std::vector<DateRange>& periods_;
    const bool byApp_;
    const Take& take_;
    std::size_t next_ = 0; ///< the first period that isn't handed over yet
    std::map<std::size_t, UsageSums> sums_;
};

} // namespace lumnara
