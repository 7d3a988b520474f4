#pragma once

#include "core/model/Geometry.h"

#include <optional>

namespace lumnara {

/// The Dock's button that adds a desktop, pressed while Mission Control shows it. Beside
/// MissionControlDriving, for DesktopCreator alone; same thread, and nothing here throws either.
class DesktopAdding {
public:
    virtual ~DesktopAdding() = default;

    /// Presses the button that is known by its identifier, on the display with this frame. False when there
    /// is none or it doesn't take the press.
    virtual bool addDesktop(const std::optional<Rect>& displayFrame) = 0;
    /// Presses the first button of any display that describes itself as adding a desktop or a Space, for
    /// trees without identifiers. False as above.
    virtual bool addDesktopByDescription() = 0;
};

} // namespace lumnara
