#pragma once

#include "core/async/TaskFwd.h"
#include "core/model/SpaceSnapshot.h"

#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// What one window manager is asked for when its desktops are arranged, in whole steps. A step returns when
/// the window manager has had its time; whether it did what it was asked has to be read. Each throws
/// WindowManagerError. Main thread, one step at a time; behind WindowManagerArranger alone, which owns it.
class DesktopArranging {
public:
    virtual ~DesktopArranging() = default;

    /// What the window manager is called in sentences.
    virtual std::string windowManager() const = 0;

    virtual async::Task<> add(DisplayID display) = 0;
    /// Gives the desktop's windows to `heir`, another one of the display, which takes its place on the screen
    /// too, and then takes the desktop away.
    virtual async::Task<> remove(SpaceID id, SpaceID heir) = 0;

    /// Brings all desktops of the display into this order. Windows stay on their desktops, and the display
    /// and the keyboard stay with theirs.
    virtual async::Task<> arrange(DisplayID display, std::vector<SpaceID> order) = 0;
    /// The order that comes nearest to the desired one of those that the window manager can keep. When it is
    /// another, keptOrderRule() says why.
    virtual std::vector<SpaceID> keepable(std::vector<SpaceID> desired) const = 0;
    virtual std::string keptOrderRule() const = 0;
};

} // namespace lumnara
