#pragma once

#include "app/AppState.h"
#include "app/links/LinkRequests.h"
#include "app/menu/DesktopMenuItem.h"

#include <functional>
#include <string>
#include <utility>

namespace lumnara {

/// Does what the chosen lines of a menu ask of the state. Main thread.
class DesktopMenuCommands {
public:
    /// The state outlives this object. `onRefused` is told why a link came to nothing, in place of a notice.
    explicit DesktopMenuCommands(AppState& state, std::function<void(std::string)> onRefused = {});

    /// False for a line that is the surfaces' business, such as one that opens a window.
    bool carryOut(const DesktopMenuItem& chosen);
    void carryOut(LinkRequest request) { links_.carryOut(std::move(request)); }

private:
    AppState& state_;
    LinkRequests links_;
};

} // namespace lumnara
