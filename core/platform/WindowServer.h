#pragma once

#include "core/model/PropertyList.h"
#include "core/model/SpaceSnapshot.h"

#include <optional>
#include <string>

namespace lumnara {

/// What the window server (on Linux the window manager) tells of displays and Spaces. Owned by Platform,
/// called on the main thread. A reading blocks for a bounded time and never trusts an earlier event.
class WindowServer {
public:
    virtual ~WindowServer() = default;

    /// The managed-display-spaces property list that SnapshotParser reads. Throws a Failure: SpaceKitError,
    /// or WindowManagerError while the window manager is away.
    virtual PropertyList managedDisplaySpaces() = 0;

    /// The Space that a display shows now, read afresh; nothing when it can't be told.
    virtual std::optional<SpaceID> currentSpace(const DisplayID& display) = 0;

    /// Whether the display's Space animation runs; nothing where there is no such call.
    virtual std::optional<bool> isAnimating(const DisplayID& display) = 0;

    /// The uuid of the display that has the focus, and so the active menu bar.
    virtual std::optional<std::string> activeMenuBarDisplay() = 0;
};

} // namespace lumnara
