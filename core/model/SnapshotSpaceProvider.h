#pragma once

#include "core/model/SpaceProvider.h"

#include <filesystem>
#include <map>

namespace lumnara {

/// Serves a recorded snapshot. Whoever drives it replaces the fields to simulate a change. No lock: it
/// belongs to the thread that drives the logic.
class SnapshotSpaceProvider : public SpaceProvider {
public:
    /// An absent display defaults to the snapshot's first one.
    explicit SnapshotSpaceProvider(SpaceSnapshot snapshot, std::optional<DisplayID> menuBar = {},
                                   std::optional<DisplayID> cursor = {},
                                   std::map<std::string, std::string> names = {});

    SpaceSnapshot snapshot() override { return current; }
    std::optional<DisplayID> menuBarDisplay() override { return menuBar; }
    std::optional<DisplayID> cursorDisplay() override { return cursor; }
    std::optional<std::string> displayName(const std::string& uuid) override;

    SpaceSnapshot current;
    std::optional<DisplayID> menuBar;
    std::optional<DisplayID> cursor;
    /// Display uuid, spelled exactly so, to display name.
    std::map<std::string, std::string> names;
};

} // namespace lumnara
