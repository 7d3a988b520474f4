#pragma once

#include "core/model/SpaceKitError.h"
#include "core/platform/mac/server/LiveSpaceProvider.h"

#include <functional>
#include <optional>

namespace lumnara::testing {

/// The provider, with what it told, and failing or bent on demand.
class WatchedProvider : public LiveSpaceProvider {
public:
    using LiveSpaceProvider::LiveSpaceProvider;

    int failures = 0;
    std::function<void(SpaceSnapshot&)> bend;
    std::optional<SpaceSnapshot> first;
    /// Nothing when the last reading failed.
    std::optional<SpaceSnapshot> last;

    SpaceSnapshot snapshot() override {
        last.reset();
        if (failures > 0 && failures-- > 0) throw SpaceKitError::enumerationFailed();
        last = LiveSpaceProvider::snapshot();
        if (bend) bend(*last);
        if (!first) first = last;
        return *last;
    }
};

} // namespace lumnara::testing
