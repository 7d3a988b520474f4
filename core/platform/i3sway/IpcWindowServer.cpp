#include "core/platform/i3sway/IpcWindowServer.h"

#include "core/model/SpaceKitError.h"
#include "core/text/Text.h"

namespace lumnara {

namespace {

PropertyDictionary spaceDictionary(const RegisteredDesktop& desktop) {
    return {{"id64", desktop.id.raw}, {"uuid", desktop.uuid}, {"type", static_cast<int>(SpaceKind::user)}};
}

} // namespace

PropertyList IpcWindowServer::managedDisplaySpaces() {
    PropertyList displays;
    for (const IpcSession::Display& display : session_.read()) {
        if (!display.current) continue;
        PropertyArray spaces;
        for (const RegisteredDesktop* desktop : session_.registry().spaces(display.uuid))
            spaces.emplace_back(spaceDictionary(*desktop));
        displays.push_back({{"Display Identifier", display.uuid},
                            {"Spaces", std::move(spaces)},
                            {"Current Space", PropertyDictionary{{"id64", display.current->raw}}}});
    }
    if (displays.empty()) throw SpaceKitError::enumerationFailed();
    return displays;
}

std::optional<SpaceID> IpcWindowServer::currentSpace(const DisplayID& display) try {
    for (const IpcSession::Display& each : session_.read())
        if (text::equalsIgnoringCase(each.uuid, display.uuid)) return each.current;
    return std::nullopt;
} catch (const WindowManagerError&) {
    return std::nullopt;
}

std::optional<std::string> IpcWindowServer::activeMenuBarDisplay() try {
    for (const IpcSession::Display& each : session_.read())
        if (each.focused) return each.uuid;
    return std::nullopt;
} catch (const WindowManagerError&) {
    return std::nullopt;
}

} // namespace lumnara
