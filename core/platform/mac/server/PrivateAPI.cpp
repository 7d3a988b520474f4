#include "core/platform/mac/server/PrivateAPI.h"

#include <utility>

namespace lumnara {

namespace {

std::vector<std::uint64_t> rawIDs(const std::vector<SpaceID>& spaces) {
    std::vector<std::uint64_t> raw;
    raw.reserve(spaces.size());
    for (const SpaceID space : spaces) raw.push_back(space.raw);
    return raw;
}

PropertyList dictionariesOf(PropertyValue result) {
    const auto malformed = [] {
        return SpaceKitError::malformed("managed display spaces is not an array of dictionaries");
    };
    PropertyArray* array = result.array();
    if (!array) throw malformed();
    PropertyList displays;
    displays.reserve(array->size());
    for (PropertyValue& element : *array) {
        if (!element.dictionary()) throw malformed();
        displays.push_back(std::move(*element.dictionary()));
    }
    return displays;
}

} // namespace

PropertyList PrivateAPI::managedDisplaySpaces() {
    auto result = required(calls_.copyManagedDisplaySpaces);
    if (!result) throw SpaceKitError::enumerationFailed();
    return dictionariesOf(*std::move(result));
}

std::optional<SpaceID> PrivateAPI::currentSpace(const DisplayID& display) {
    if (!offers(calls_.managedDisplayGetCurrentSpace)) return std::nullopt;
    const std::uint64_t raw = required(calls_.managedDisplayGetCurrentSpace, display.uuid);
    return raw == 0 ? std::nullopt : std::optional(SpaceID{raw});
}

std::optional<bool> PrivateAPI::isAnimating(const DisplayID& display) {
    if (!offers(calls_.managedDisplayIsAnimating)) return std::nullopt;
    return required(calls_.managedDisplayIsAnimating, display.uuid);
}

std::optional<std::string> PrivateAPI::activeMenuBarDisplay() {
    if (!offers(calls_.copyActiveMenuBarDisplayIdentifier)) return std::nullopt;
    return required(calls_.copyActiveMenuBarDisplayIdentifier);
}

std::vector<SpaceID> PrivateAPI::spacesOfWindows(const std::vector<WindowNumber>& windows) {
    std::vector<SpaceID> spaces;
    if (!offers(calls_.copySpacesForWindows)) return spaces;
    for (const std::uint64_t raw :
         required(calls_.copySpacesForWindows, WindowServerCalls::everySpace, windows))
        spaces.push_back({raw});
    return spaces;
}

void PrivateAPI::addWindowsToSpaces(const std::vector<WindowNumber>& windows,
                                    const std::vector<SpaceID>& spaces) {
    if (offers(calls_.addWindowsToSpaces)) required(calls_.addWindowsToSpaces, windows, rawIDs(spaces));
}

void PrivateAPI::removeWindowsFromSpaces(const std::vector<WindowNumber>& windows,
                                         const std::vector<SpaceID>& spaces) {
    if (offers(calls_.removeWindowsFromSpaces))
        required(calls_.removeWindowsFromSpaces, windows, rawIDs(spaces));
}

std::optional<PropertyList> PrivateAPI::windowList(WindowListOption option) {
    return calls_.windowList ? calls_.windowList(option) : std::nullopt;
}

SpaceID PrivateAPI::activeSpace() { return {required(calls_.getActiveSpace)}; }

std::optional<std::string> PrivateAPI::displayOfSpace(SpaceID space) {
    return required(calls_.copyManagedDisplayForSpace, space.raw);
}

std::optional<std::string> PrivateAPI::displayAt(Point point) {
    return required(calls_.copyBestManagedDisplayForPoint, point);
}

SpaceKind PrivateAPI::kindOfSpace(SpaceID space) {
    return spaceKindOf(required(calls_.spaceGetType, space.raw));
}

} // namespace lumnara
