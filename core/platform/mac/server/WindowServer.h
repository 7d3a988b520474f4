#pragma once

#include "core/model/Geometry.h"
#include "core/model/SpaceSnapshot.h"
#include "core/platform/mac/server/PropertyList.h"
#include "core/seams/WindowSource.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// Which windows a window list holds; the window server's own bits.
enum class WindowListOption : std::uint32_t {
    all = 0,
    onScreenOnly = 1,
    allWithoutDesktop = 0x10,         ///< on any Space, without desktop elements
    onScreenOnlyWithoutDesktop = 0x11 ///< on screen, without desktop elements
};

/// What the window server of a Mac tells of displays, Spaces and windows. Main thread. A reading blocks for a
/// bounded time and never trusts an earlier event. Where a call is missing, readings give nothing and changes
/// do nothing, unless told otherwise.
class WindowServer {
public:
    virtual ~WindowServer() = default;

    /// The managed-display-spaces property list that SnapshotParser reads. Throws SpaceKitError.
    virtual PropertyList managedDisplaySpaces() = 0;

    /// The Space that a display shows now, read afresh; nothing when it can't be told.
    virtual std::optional<SpaceID> currentSpace(const DisplayID& display) = 0;

    /// Whether the display's Space animation runs.
    virtual std::optional<bool> isAnimating(const DisplayID& display) = 0;

    /// The uuid of the display that has the focus, and so the active menu bar.
    virtual std::optional<std::string> activeMenuBarDisplay() = 0;

    /// The Spaces that hold any of these windows.
    virtual std::vector<SpaceID> spacesOfWindows(const std::vector<WindowNumber>&) { return {}; }
    virtual void addWindowsToSpaces(const std::vector<WindowNumber>&, const std::vector<SpaceID>&) {}
    virtual void removeWindowsFromSpaces(const std::vector<WindowNumber>&, const std::vector<SpaceID>&) {}

    /// A dictionary a window, front to back, for ListedWindow to read; nothing when there is no list.
    virtual std::optional<PropertyList> windowList(WindowListOption) { return std::nullopt; }
};

} // namespace lumnara
