#pragma once

#include "core/model/SpaceSnapshot.h"
#include "core/names/DesktopRecord.h"

#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// One desktop: a live Space with what the user has said about it.
struct Desktop {
    /// Where its record stands: `spaceKey`, or "link:<id>" for a member of a link group.
    std::string key;
    /// The Space's own stable key, or "unkeyed:<raw id>" when it has none.
    std::string spaceKey;
    Space space;
    DisplayID display;
    std::optional<DesktopRecord> record;
    /// Its display shows it.
    bool isCurrent = false;
    /// From 1, among the `user` desktops of its display in the applied order; absent for other kinds.
    std::optional<int> userNumber;

    bool operator==(const Desktop&) const = default;

    bool isLinked() const { return key.starts_with("link:"); }
    bool isNamed() const { return record && !record->name.empty(); }
    /// The user's name; without one "Desktop 3", "Space 2", the full-screen app's name or "Fullscreen app".
    std::string displayName() const;
};

/// One display with its desktops in the applied order.
struct DisplayDesktops {
    DisplayID display;
    /// The display's human name.
    std::string name;
    std::vector<Desktop> desktops;

    bool operator==(const DisplayDesktops&) const = default;

    /// The first desktop that is current, or null.
    const Desktop* current() const;
};

/// A record with no live Space.
struct Orphan {
    std::string key;
    DesktopRecord record;

    bool operator==(const Orphan&) const = default;
};

} // namespace lumnara
