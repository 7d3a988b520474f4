#include "core/platform/ewmh/EwmhSpaceProvider.h"

#include "core/platform/linux/WindowManagerError.h"

namespace lumnara {

namespace {

constexpr const char* mainDisplayName = "All Displays";

} // namespace

SpaceSnapshot EwmhSpaceProvider::snapshot() {
    const EwmhReading& reading = desktops_->read();
    DisplaySpaces shown{mainDisplay(), {}, reading.desktops[reading.current].id, mainDisplayName};
    for (const EwmhDesktop& desktop : reading.desktops) {
        Space& space = shown.spaces.emplace_back();
        space.id = desktop.id;
        space.uuid = desktop.uuid;
        space.kind = SpaceKind::user;
        space.indexOnDisplay = static_cast<int>(shown.spaces.size()) - 1;
    }
    return {{std::move(shown)}, loop_.date(), mainDisplay()};
}

std::optional<std::string> EwmhSpaceProvider::displayName(const std::string& uuid) {
    if (DisplayID{uuid} != mainDisplay()) return std::nullopt;
    return mainDisplayName;
}

std::optional<SpaceID> EwmhSpaceProvider::currentSpace(const DisplayID& display) try {
    if (!display.isMain()) return std::nullopt;
    const EwmhReading& reading = desktops_->read();
    return reading.desktops[reading.current].id;
} catch (const WindowManagerError&) {
    return std::nullopt;
}

} // namespace lumnara
