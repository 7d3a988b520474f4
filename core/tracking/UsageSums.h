#pragma once

#include "core/tracking/TrackingRecords.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace lumnara {

/// What a report needs of an interval, as it lies in the database.
struct UsageSample {
    std::string_view spaceKey;
    std::string_view spaceName;
    std::optional<std::string_view> appBundleID;
    std::optional<std::string_view> appName;
    bool isIdle = false;
};

/// Adds up the times of one report.
class UsageSums {
public:
    explicit UsageSums(bool byApp) : byApp_(byApp) {}

    /// Samples come in the order of their starts, each with a time above 0.
    void add(const UsageSample& sample, std::int64_t milliseconds);
    /// The report, the longest first; the sums are empty afterwards.
    std::vector<UsageRow> take();

private:
    struct Sum {
        UsageRow row;
        // Whole milliseconds add up without rounding.
        std::int64_t active = 0;
        std::int64_t idle = 0;
    };
    struct TextHash : std::hash<std::string_view> {
        using is_transparent = void;
    };

    std::string_view keyOf(const UsageSample& sample);
    Sum& sumOf(const UsageSample& sample);

    bool byApp_;
    std::vector<Sum> sums_;
    std::unordered_map<std::string, std::size_t, TextHash, std::equal_to<>> places_;
    std::string key_; ///< keeps its room from sample to sample
};

} // namespace lumnara
