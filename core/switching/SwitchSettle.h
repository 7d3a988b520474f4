#pragma once

#include "core/model/SpaceSnapshot.h"

#include <functional>
#include <optional>
#include <utility>
#include <vector>

/// Whether displays still show what they were sent to: a pure comparison, which changes nothing.
namespace lumnara::SwitchSettle {

struct Entry {
    DisplayID display;
    SpaceID expected;
    /// Nothing when it couldn't be read.
    std::optional<SpaceID> showing;

    bool operator==(const Entry&) const = default;
};

/// An entry for each expectation, in its order; `reading` is asked once for each.
std::vector<Entry> entries(const std::vector<std::pair<DisplayID, SpaceID>>& expectations,
                           const std::function<std::optional<SpaceID>(const DisplayID&)>& reading);

/// Those that show another Space, or none that could be read, in their order.
std::vector<Entry> unsettled(const std::vector<Entry>& entries);

} // namespace lumnara::SwitchSettle
