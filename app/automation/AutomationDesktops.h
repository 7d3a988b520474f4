#pragma once

#include "core/automation/AutomationStore.h"
#include "core/automation/AutomationTriggerWatcher.h"
#include "core/catalog/DesktopCatalog.h"

#include <string>
#include <vector>

namespace lumnara {

/// A desktop whose automations can be edited.
struct AutomationDesktop {
    std::string key;
    std::string title;   ///< its name, with the display's where there are several displays
    int automations = 0; ///< how many it has
    /// Its automations can fire. Otherwise it is gone, or shares those of a link for the time being.
    bool isLive = true;

    bool operator==(const AutomationDesktop&) const = default;
};

/// The named desktops in the catalog's order, a link group once; then those without a name; then keys that no
/// desktop goes by at present and that have automations. A desktop without an identity that lasts stands
/// there only while it has some.
std::vector<AutomationDesktop> automationDesktops(const DesktopCatalog& catalog,
                                                  const AutomationStore& store);

/// What the watcher of triggers is given of a reading.
AutomationTriggerWatcher::Keys triggerKeys(const std::vector<DisplayDesktops>& displays);

/// Why the automations of a desktop that isn't live don't run.
std::string waitingReason(const DesktopCatalog& catalog, const std::string& key);

} // namespace lumnara
