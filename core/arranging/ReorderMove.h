#pragma once

#include <string>

namespace lumnara {

/// One element taken out of a list and put in again. Both are places in the list as it stands at that
/// moment; `to` applies after the element has been taken out.
struct ReorderMove {
    int from = 0;
    int to = 0;

    bool operator==(const ReorderMove&) const = default;
    /// "<from> -> <to>".
    std::string description() const { return std::to_string(from) + " -> " + std::to_string(to); }
};

} // namespace lumnara
