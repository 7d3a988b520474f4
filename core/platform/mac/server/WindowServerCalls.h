#pragma once

#include "core/model/Geometry.h"
#include "core/platform/mac/server/PropertyList.h"
#include "core/platform/mac/server/WindowServer.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// The calls of a Mac's window server as its libraries hold them, looked up once by their names ("CGS" and
/// the member's name, but for windowList, CGWindowListCopyWindowInfo). An empty one is missing. Each lives
/// as long as the session; main thread.
struct WindowServerCalls {
    using Connection = std::uint32_t;
    /// Which of a window's Spaces are told: the current one, the others, the user's.
    static constexpr int everySpace = 7;

    std::function<Connection()> mainConnectionID;
    /// Nothing when there is no result; of any type, as nobody promises one.
    std::function<std::optional<PropertyValue>(Connection)> copyManagedDisplaySpaces;
    std::function<std::uint64_t(Connection)> getActiveSpace;
    /// 0 for a display that isn't known.
    std::function<std::uint64_t(Connection, const std::string& display)> managedDisplayGetCurrentSpace;
    std::function<std::optional<std::string>(Connection)> copyActiveMenuBarDisplayIdentifier;
    std::function<std::optional<std::string>(Connection, std::uint64_t space)> copyManagedDisplayForSpace;
    std::function<bool(Connection, const std::string& display)> managedDisplayIsAnimating;
    std::function<std::optional<std::string>(Connection, Point)> copyBestManagedDisplayForPoint;
    std::function<std::vector<std::uint64_t>(Connection, int mask, const std::vector<WindowNumber>&)>
        copySpacesForWindows;
    std::function<int(Connection, std::uint64_t space)> spaceGetType;
    std::function<void(Connection, const std::vector<WindowNumber>&, const std::vector<std::uint64_t>&)>
        addWindowsToSpaces;
    std::function<void(Connection, const std::vector<WindowNumber>&, const std::vector<std::uint64_t>&)>
        removeWindowsFromSpaces;
    std::function<std::optional<PropertyList>(WindowListOption)> windowList;
};

} // namespace lumnara
