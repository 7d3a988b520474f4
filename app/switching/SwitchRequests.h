#pragma once

#include "app/links/LinkedSwitching.h"
#include "app/overlay/Notices.h"
#include "core/async/Loop.h"
#include "core/async/TaskHandle.h"
#include "core/catalog/DesktopCatalog.h"
#include "core/seams/SpaceActivator.h"
#include "core/switching/SpaceSwitcher.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// Carries out what the surfaces ask of switching, and tells the user what failed. Requests for other
/// displays stand beside each other; a later one for the same display takes over. Where a window manager does
/// the switching, the catalog hears of changes when no run is under way any more: a window manager that is
/// busy switching answers late. Main thread.
class SwitchRequests {
public:
    /// All outlive this object; `activator` is null where no window manager does the switching.
    SwitchRequests(async::Loop& loop, DesktopCatalog& catalog, SpaceSwitcher& switcher,
                   LinkedSwitching& linkedSwitching, SpaceActivator* activator, Notices& notices);

    /// switchToDesktop as a task of its own. Being there already is silent; any other failure is shown as a
    /// notice.
    void switchTo(const Desktop& desktop);
    /// Back to the desktop that the display, or else the one under the pointer, showed before; the rest as in
    /// switchTo. Linked displays stay where they are.
    void switchBack(std::optional<DisplayID> display);

    /// Shows the desktop of a key, and with it every desktop that is linked with it on its own display.
    /// Throws SwitchError, or what the provider or the last engine failed with.
    async::Task<SwitchResult> switchToDesktop(std::string key);

private:
    /// A run under way or done, with the displays that it moves; none where that isn't known.
    struct Run {
        std::vector<DisplayID> displays;
        async::TaskHandle task;
    };

    void start(std::vector<DisplayID> displays, async::Task<> task);
    async::Task<SwitchResult> go(std::string key, std::vector<Desktop> members);
    async::Task<SwitchResult> goBack(std::optional<DisplayID> display);
    std::shared_ptr<const void> holdWord() { return activator_ ? catalog_.hold() : nullptr; }
    async::Task<> show(Desktop desktop, std::vector<Desktop> members);
    async::Task<> tellFailure(async::Task<SwitchResult> switching);

    async::Loop& loop_;
    DesktopCatalog& catalog_;
    SpaceSwitcher& switcher_;
    LinkedSwitching& linkedSwitching_;
    SpaceActivator* const activator_;
    Notices& notices_;
    std::vector<Run> runs_;
};

} // namespace lumnara
