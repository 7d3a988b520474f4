#pragma once

#include "core/model/Geometry.h"
#include "core/model/SpaceSnapshot.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumnara {

/// One monitor as the user sees it.
struct ScreenInfo {
    /// The display identity that snapshots use for this monitor. Under a shared layout it differs from
    /// "Main".
    std::string uuid;
    /// The connector or monitor name of the window system ("DP-1"), by which a surface finds its screen.
    std::string connector;
    /// The human name: maker and model where the monitor tells them, else the connector. No two screens
    /// have the same one.
    std::string name;
    Rect frame;
    double scale = 1;
    /// It is the computer's own panel.
    bool isBuiltIn = false;

    bool operator==(const ScreenInfo&) const = default;
};

/// Whether a connector of that name ("eDP-1") leads to the computer's own panel.
bool isPanelConnector(std::string_view connector);

/// The screens with the connector behind the names that several have.
std::vector<ScreenInfo> distinctlyNamed(std::vector<ScreenInfo> screens);

/// The monitors and the pointer. Owned by Platform, called on the main thread, read afresh at each call.
class Screens {
public:
    virtual ~Screens() = default;

    /// The active monitors, left to right and then top to bottom; empty when they can't be read.
    virtual std::vector<ScreenInfo> screens() = 0;

    /// Where the pointer is; nothing where the session doesn't tell (Wayland).
    virtual std::optional<Point> pointer() = 0;

    /// The uuid of the screen under the pointer, or of the focused one where the pointer is not told.
    virtual std::optional<std::string> displayUnderPointer() = 0;
};

} // namespace lumnara
