#include "core/catalog/Desktop.h"

#include <algorithm>

namespace lumnara {

std::string Desktop::displayName() const {
    if (isNamed()) return record->name;
    if (space.kind == SpaceKind::fullscreen) {
        const bool isKnown = space.fullscreenOwner && !space.fullscreenOwner->name.empty();
        return isKnown ? space.fullscreenOwner->name : "Fullscreen app";
    }
    if (userNumber) return "Desktop " + std::to_string(*userNumber);
    return "Space " + std::to_string(space.indexOnDisplay + 1);
}

const Desktop* DisplayDesktops::current() const {
    const auto found =
        std::find_if(desktops.begin(), desktops.end(), [](const Desktop& d) { return d.isCurrent; });
    return found == desktops.end() ? nullptr : &*found;
}

} // namespace lumnara
