#include "app/automation/AutomationDesktops.h"

#include <algorithm>
#include <map>
#include <utility>

namespace lumnara {
namespace {

std::string titleOn(const DisplayDesktops& display, const Desktop& desktop, bool manyDisplays) {
    // A link group is not on one display.
    if (!manyDisplays || desktop.isLinked() || display.name.empty()) return desktop.displayName();
    return desktop.displayName() + " – " + display.name;
}

} // namespace

std::vector<AutomationDesktop> automationDesktops(const DesktopCatalog& catalog,
                                                  const AutomationStore& store) {
    std::map<std::string, int> waiting; // counts that have not found their desktop yet
    for (const Automation& each : store.file().automations) ++waiting[each.spaceKey];

    std::vector<AutomationDesktop> named, others;
    const std::vector<DisplayDesktops>& displays = *catalog.displays;
    for (const DisplayDesktops& display : displays) {
        for (const Desktop& desktop : display.desktops) {
            auto& list = desktop.isNamed() ? named : others;
            if (std::ranges::find(list, desktop.key, &AutomationDesktop::key) != list.end()) continue;
            const auto count = waiting.find(desktop.key);
            if (count == waiting.end() && desktop.key.starts_with("unkeyed:")) continue;
            list.push_back({desktop.key, titleOn(display, desktop, displays.size() > 1),
                            count == waiting.end() ? 0 : count->second});
            if (count != waiting.end()) waiting.erase(count);
        }
    }
    std::ranges::move(others, std::back_inserter(named));
    for (const auto& [key, count] : waiting) named.push_back({key, catalog.displayName(key), count, false});
    return named;
}

AutomationTriggerWatcher::Keys triggerKeys(const std::vector<DisplayDesktops>& displays) {
    AutomationTriggerWatcher::Keys keys;
    for (const DisplayDesktops& shown : displays)
        if (const Desktop* current = shown.current())
            keys[current->isLinked() ? "linked" : shown.display.uuid] = current->key;
    return keys;
}

std::string waitingReason(const DesktopCatalog& catalog, const std::string& key) {
    if (catalog.desktopOfSpace(key))
        return "This desktop is linked at present. These automations run again when the link ends.";
    return "This desktop is not there at present. These automations run again when it is back.";
}

} // namespace lumnara
