#pragma once

#include "core/async/Loop.h"
#include "core/model/SnapshotSpaceProvider.h"

#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <string>

namespace lumnara::testing {

/// Answers what a test has set, counts the readings, and fails with `failure` while there is one.
class ScriptedProvider : public SnapshotSpaceProvider {
public:
    using SnapshotSpaceProvider::SnapshotSpaceProvider;

    SpaceSnapshot snapshot() override {
        ++readings;
        if (failure) std::rethrow_exception(failure);
        if (clock) current.takenAt = clock->date();
        return SnapshotSpaceProvider::snapshot();
    }
    /// Makes a Space the current one of its display.
    void show(SpaceID space) {
        for (DisplaySpaces& shown : current.displays)
            for (const Space& each : shown.spaces)
                if (each.id == space) shown.currentID = space;
    }
    /// The same for a Space that may be missing in the display's list.
    void show(const std::string& display, std::uint64_t space) {
        for (DisplaySpaces& shown : current.displays)
            if (shown.display.uuid == display) shown.currentID = {space};
    }

    std::optional<SpaceID> currentSpace(const DisplayID& display) override {
        return probe ? probe(display) : std::nullopt;
    }
    bool isAnimating(const DisplayID& display) override { return animation && animation(display); }

    std::exception_ptr failure;
    /// The quick probes; empty ones tell nothing.
    std::function<std::optional<SpaceID>(const DisplayID&)> probe;
    std::function<bool(const DisplayID&)> animation;
    /// Dates the snapshots; without it they keep the date that the test gave them.
    async::Loop* clock = nullptr;
    int readings = 0;
};

} // namespace lumnara::testing
