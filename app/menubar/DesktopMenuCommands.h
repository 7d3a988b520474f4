#pragma once

#include "app/AppState.h"
#include "app/LinkRequests.h"
#include "app/menubar/DesktopMenu.h"

namespace lumnara {

/// Does what the chosen lines of the menu ask of the state. Main thread.
class DesktopMenuCommands {
public:
    /// The state outlives this object.
    explicit DesktopMenuCommands(AppState& state);

    /// False for a line that is the surfaces' business, such as one that opens a window.
    bool carryOut(const DesktopMenuItem& chosen);

private:
    AppState& state_;
    LinkRequests links_;
};

} // namespace lumnara
