#pragma once

#include "core/model/SpaceSnapshot.h"

#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// What came of a removal. A run that stopped is none of the errors: what was removed stays removed.
struct RemoveOutcome {
    /// In the order of removal; each was seen to be gone.
    std::vector<SpaceID> removedIDs;
    /// The sentence of why the rest did not go.
    std::optional<std::string> stoppedBecause;

    bool operator==(const RemoveOutcome&) const = default;
};

} // namespace lumnara
