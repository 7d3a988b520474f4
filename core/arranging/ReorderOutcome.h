#pragma once

#include "core/arranging/ReorderMove.h"
#include "core/model/SpaceSnapshot.h"

#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// What came of a wish for another order. A run that stopped is none of the errors: what was moved stays
/// moved.
struct ReorderOutcome {
    std::vector<ReorderMove> planned;
    /// How many of them were carried out and seen to hold.
    int performed = 0;
    std::vector<SpaceID> finalOrder;
    /// Whether that is the order that was aimed for.
    bool matchesDesired = false;
    /// The sentence of what ended the run early.
    std::optional<std::string> stoppedBecause;

    bool operator==(const ReorderOutcome&) const = default;
};

} // namespace lumnara
