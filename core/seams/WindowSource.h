#pragma once

#include "core/model/Geometry.h"
#include "core/model/SpaceSnapshot.h"

#include <cstdint>
#include <string>
#include <vector>

namespace lumnara {

/// The window system's number of a window.
using WindowNumber = std::uint32_t;

/// A window that lives on a desktop.
struct DesktopWindow {
    WindowNumber id = 0;
    std::int32_t ownerPID = 0;
    std::string ownerName;
    std::string title;
    /// In points, from the top left corner of the first screen.
    Rect bounds;
    /// Front first: 0 is foremost.
    int zOrder = 0;

    bool operator==(const DesktopWindow&) const = default;
};

/// Tells of all windows and of the Spaces that hold them. Called on one thread at a time.
class WindowSource {
public:
    virtual ~WindowSource() = default;

    /// Front to back; empty when the list can't be read.
    virtual std::vector<DesktopWindow> windows() = 0;
    virtual std::vector<SpaceID> spaces(WindowNumber windowID) = 0;
};

} // namespace lumnara
