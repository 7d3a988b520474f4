#pragma once

#include "core/model/SpaceSnapshot.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// A desktop that a window manager had or has as a workspace.
struct RegisteredDesktop {
    std::string uuid;
    SpaceID id;
    /// The display where it is, or was last.
    std::string display;
    /// The name under which the window manager knows it, or will when it is created again.
    std::string workspace;
    /// The name of the workspace before the user's title was put on it.
    std::string ownName;
    /// The user's name for the desktop; empty for none.
    std::string title;
    /// It has a record, so it stays a Space while its workspace is gone.
    bool kept = false;
    /// The user has added it, so it stays a Space until it is removed.
    bool added = false;
    /// The number of the last reading that had its workspace.
    std::uint64_t lastSeen = 0;

    /// The names that the window manager has been asked to give it and has not yet announced.
    std::vector<std::string> asked = {};
    /// The workspace's name is not known to show the title.
    bool nameOwed = false;

    /// The workspace's container in this run of the window manager, while there is one.
    std::optional<std::int64_t> handle = std::nullopt;
    /// How often the window manager has refused to show this title.
    int refusals = 0;

    bool isSpace() const { return handle || kept || added; }
    /// The workspace's name once the window manager has done what it was asked.
    const std::string& nextName() const { return asked.empty() ? workspace : asked.back(); }
};

} // namespace lumnara
