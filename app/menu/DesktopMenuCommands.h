#pragma once

#include "app/AppState.h"
#include "app/links/DesktopLinker.h"
#include "app/menu/DesktopMenuItem.h"
#include "core/async/TaskHandle.h"

#include <functional>
#include <string>

namespace lumnara {

/// Does what the chosen lines of a menu ask of the state, and tells the user what came of it. Main thread.
class DesktopMenuCommands {
public:
    /// The state outlives this object. `onRefused` is told why a link came to nothing, in place of a notice.
    explicit DesktopMenuCommands(AppState& state, std::function<void(std::string)> onRefused = {});

    /// False for a line that is the surfaces' business, such as one that opens a window.
    bool carryOut(const DesktopMenuItem& chosen);
    /// A later request takes over from one that is still under way.
    void carryOut(LinkRequest request);

private:
    void linkAll();
    async::Task<> run(LinkRequest request);

    AppState& state_;
    const std::function<void(std::string)> onRefused_;
    DesktopLinker linker_;
    async::TaskHandle running_;
};

} // namespace lumnara
