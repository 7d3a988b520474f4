#include "core/platform/i3sway/IpcSpaceProvider.h"

#include "core/model/SpaceKitError.h"
#include "core/text/Text.h"

#include <vector>

namespace lumnara {

namespace {

std::optional<std::string> nameAmong(const std::vector<ScreenInfo>& screens, const std::string& uuid) {
    for (const ScreenInfo& screen : screens)
        if (text::equalsIgnoringCase(screen.uuid, uuid)) return screen.name;
    return std::nullopt;
}

} // namespace

SpaceSnapshot IpcSpaceProvider::snapshot() {
    const std::vector<IpcSession::Display> displays = session_.read();
    const std::vector<ScreenInfo> screens = screens_.screens();
    SpaceSnapshot snapshot;
    snapshot.takenAt = loop_.date();
    for (const IpcSession::Display& display : displays) {
        if (!display.current) continue;
        snapshot.displays.push_back(spacesOn(display));
        snapshot.displays.back().name = nameAmong(screens, display.uuid);
        if (display.focused) snapshot.focusedDisplay = DisplayID{display.uuid};
    }
    if (snapshot.displays.empty()) throw SpaceKitError::enumerationFailed();
    return snapshot;
}

DisplaySpaces IpcSpaceProvider::spacesOn(const IpcSession::Display& display) const {
    DisplaySpaces shown{DisplayID{display.uuid}, {}, *display.current};
    for (const RegisteredDesktop* desktop : session_.registry().spaces(display.uuid)) {
        Space& space = shown.spaces.emplace_back();
        space.id = desktop->id;
        space.uuid = desktop->uuid;
        space.kind = SpaceKind::user;
        space.indexOnDisplay = static_cast<int>(shown.spaces.size()) - 1;
    }
    return shown;
}

std::optional<DisplayID> IpcSpaceProvider::menuBarDisplay() try {
    for (const IpcSession::Display& display : session_.read())
        if (display.focused) return DisplayID{display.uuid};
    return std::nullopt;
} catch (const WindowManagerError&) {
    return std::nullopt;
}

std::optional<DisplayID> IpcSpaceProvider::cursorDisplay() {
    const auto uuid = screens_.displayUnderPointer();
    if (!uuid) return std::nullopt;
    return DisplayID{*uuid};
}

std::optional<std::string> IpcSpaceProvider::displayName(const std::string& uuid) {
    return nameAmong(screens_.screens(), uuid);
}

std::optional<SpaceID> IpcSpaceProvider::currentSpace(const DisplayID& display) try {
    for (const IpcSession::Display& each : session_.read())
        if (text::equalsIgnoringCase(each.uuid, display.uuid)) return each.current;
    return std::nullopt;
} catch (const WindowManagerError&) {
    return std::nullopt;
}

} // namespace lumnara
