#include "core/platform/ewmh/EwmhWindowServer.h"

#include "core/base/Failure.h"

namespace lumnara {

PropertyList EwmhWindowServer::managedDisplaySpaces() {
    const auto& reading = desktops_->read();
    PropertyArray spaces;
    for (const auto& desktop : reading.desktops)
        spaces.emplace_back(PropertyDictionary{
            {"id64", desktop.id.raw}, {"uuid", desktop.uuid}, {"type", static_cast<int>(SpaceKind::user)}});
    const auto& current = reading.desktops[reading.current];
    return {{{"Display Identifier", mainDisplay},
             {"Spaces", std::move(spaces)},
             {"Current Space", PropertyDictionary{{"id64", current.id.raw}, {"uuid", current.uuid}}}}};
}

std::optional<SpaceID> EwmhWindowServer::currentSpace(const DisplayID& display) {
    if (!display.isMain()) return std::nullopt;
    try {
        const auto& reading = desktops_->read();
        return reading.desktops[reading.current].id;
    } catch (const Failure&) {
        return std::nullopt;
    }
}

} // namespace lumnara
