#pragma once

#include "core/model/SpaceSnapshot.h"

#include <optional>
#include <string>

namespace lumnara {

/// Where the layout of Spaces comes from: the real window server, or a recorded snapshot. Called on the
/// main thread.
class SpaceProvider {
public:
    virtual ~SpaceProvider() = default;

    /// Reads the layout. Throws SpaceKitError, or the platform's own Failure.
    virtual SpaceSnapshot snapshot() = 0;

    /// The display with the active menu bar, or nothing.
    virtual std::optional<DisplayID> menuBarDisplay() = 0;

    /// The display under the mouse pointer, or nothing.
    virtual std::optional<DisplayID> cursorDisplay() = 0;

    /// The human name of a display, or nothing when it isn't known.
    virtual std::optional<std::string> displayName(const std::string& uuid) = 0;

    // Quick probes, for whoever has to see a switch land. Neither is required.

    /// The Space that a display shows now, read afresh; nothing when only a snapshot can tell.
    virtual std::optional<SpaceID> currentSpace(const DisplayID&) { return std::nullopt; }
    /// Whether the display's Space animation runs; false where that can't be told.
    virtual bool isAnimating(const DisplayID&) { return false; }
};

} // namespace lumnara
