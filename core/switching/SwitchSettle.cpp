#include "core/switching/SwitchSettle.h"

#include <algorithm>
#include <iterator>

namespace lumnara::SwitchSettle {

std::vector<Entry> entries(const std::vector<std::pair<DisplayID, SpaceID>>& expectations,
                           const std::function<std::optional<SpaceID>(const DisplayID&)>& reading) {
    std::vector<Entry> read;
    read.reserve(expectations.size());
    for (const auto& [display, expected] : expectations)
        read.push_back({display, expected, reading(display)});
    return read;
}

std::vector<Entry> unsettled(const std::vector<Entry>& entries) {
    std::vector<Entry> left;
    std::copy_if(entries.begin(), entries.end(), std::back_inserter(left),
                 [](const Entry& entry) { return entry.showing != entry.expected; });
    return left;
}

} // namespace lumnara::SwitchSettle
