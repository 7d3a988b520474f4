#include "app/switching/SwitchAnnouncer.h"

#include <utility>

namespace lumnara {

void SwitchAnnouncer::announce(const std::vector<DisplayDesktops>& displays) {
    struct Change {
        Desktop desktop; // a copy: a listener may edit, and the displays are then laid out anew
        std::string before;
        bool follows = false;
    };
    std::vector<Change> changes;
    for (const DisplayDesktops& shown : displays) {
        const Desktop* current = shown.current();
        if (!current) continue;
        Shown now{current->key, current->spaceKey};
        const auto [last, isNew] = lastCurrent_.try_emplace(shown.display.uuid, now);
        const Shown before = std::exchange(last->second, std::move(now));
        if (isNew || before.key == current->key) continue;
        const bool follows = current->isLinked() && lastAnnouncedKey_ == current->key;
        if (!follows) lastAnnouncedKey_ = current->key;
        changes.push_back({*current, before.spaceKey, follows});
    }
    for (const Change& change : changes)
        (change.follows ? displayFollowed : desktopSwitched).emit(change.desktop, change.before);
}

} // namespace lumnara
