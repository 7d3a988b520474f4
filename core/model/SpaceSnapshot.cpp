#include "core/model/SpaceSnapshot.h"

#include "core/base/DecimalText.h"
#include "core/text/Text.h"

#include <algorithm>
#include <unordered_map>

namespace lumnara {

namespace {

constexpr std::string_view primaryPrefix = "primary:";
constexpr std::string_view fullscreenPrefix = "fullscreen:";
constexpr std::string_view unkeyedPrefix = "unkeyed:";

bool belongsTo(const Space& space, std::string_view ownerID) {
    return space.kind == SpaceKind::fullscreen && space.fullscreenOwner &&
           (space.fullscreenOwner->ownerID() == ownerID || space.fullscreenOwner->name == ownerID);
}

/// The first place, in `allSpaces` order, whose Space passes.
template <class Passes>
std::optional<PlacedSpace> firstSpace(const std::vector<DisplaySpaces>& displays, Passes passes) {
    for (const DisplaySpaces& display : displays) {
        const auto found = std::find_if(display.spaces.begin(), display.spaces.end(), passes);
        if (found != display.spaces.end()) return PlacedSpace{*found, display.display};
    }
    return std::nullopt;
}

const Space* firstUserSpace(const DisplaySpaces* display) {
    if (!display) return nullptr;
    const auto isUser = [](const Space& space) { return space.kind == SpaceKind::user; };
    const auto found = std::find_if(display->spaces.begin(), display->spaces.end(), isUser);
    return found == display->spaces.end() ? nullptr : &*found;
}

/// The key of a Space that has no full-screen owner.
std::optional<std::string> ownerlessKey(const SpaceSnapshot& snapshot, const Space& space,
                                        std::string_view displayUuid) {
    if (!space.uuid.empty()) return space.uuid;
    if (space.kind == SpaceKind::fullscreen) return std::nullopt;
    const Space* primary = firstUserSpace(snapshot.spacesOnDisplay(displayUuid));
    if (!primary || primary->id != space.id) return std::nullopt;
    return std::string(primaryPrefix).append(displayUuid);
}

bool hasOwner(const Space& space) { return space.kind == SpaceKind::fullscreen && space.fullscreenOwner; }

std::string fullscreenKey(const std::string& ownerID, std::size_t place) {
    std::string key = std::string(fullscreenPrefix) + ownerID;
    if (place >= 1) key += '#' + std::to_string(place + 1);
    return key;
}

/// The full-screen Spaces that one text stands for, gathered while walking a snapshot.
class OwnerPlaces {
public:
    void add(SpaceID id) { places_.try_emplace(id, count_++); }
    std::size_t placeOf(SpaceID id) const {
        const auto found = places_.find(id);
        return found == places_.end() ? 0 : found->second;
    }

private:
    std::unordered_map<SpaceID, std::size_t> places_;
    std::size_t count_ = 0;
};

void combine(std::size_t& seed, std::size_t hash) {
    constexpr std::size_t goldenRatio = 0x9e3779b97f4a7c15;
    seed ^= hash + goldenRatio + (seed << 6) + (seed >> 2);
}

} // namespace

SpaceKind spaceKindOf(std::optional<std::int64_t> type) {
    if (type == 0) return SpaceKind::user;
    if (type == 2) return SpaceKind::system;
    if (type == 4) return SpaceKind::fullscreen;
    return SpaceKind::unknown;
}

std::vector<PlacedSpace> SpaceSnapshot::allSpaces() const {
    std::vector<PlacedSpace> all;
    for (const DisplaySpaces& display : displays)
        for (const Space& space : display.spaces) all.push_back({space, display.display});
    return all;
}

bool SpaceSnapshot::isSharedMain() const { return displays.size() == 1 && displays.front().display.isMain(); }

std::string SpaceSnapshot::presentationDisplay(const std::string& uuid) const {
    return isSharedMain() ? displays.front().display.uuid : uuid;
}

const DisplaySpaces* SpaceSnapshot::spacesOnDisplay(std::string_view uuid) const {
    for (const DisplaySpaces& display : displays)
        if (text::equalsIgnoringCase(display.display.uuid, uuid)) return &display;
    return nullptr;
}

std::vector<Space> SpaceSnapshot::userSpaces(std::string_view displayUuid) const {
    std::vector<Space> users;
    if (const DisplaySpaces* display = spacesOnDisplay(displayUuid))
        for (const Space& space : display->spaces)
            if (space.kind == SpaceKind::user) users.push_back(space);
    return users;
}

std::vector<PlacedSpace> SpaceSnapshot::fullscreenSpaces(std::string_view ownerID) const {
    std::vector<PlacedSpace> found;
    for (const DisplaySpaces& display : displays)
        for (const Space& space : display.spaces)
            if (belongsTo(space, ownerID)) found.push_back({space, display.display});
    return found;
}

std::optional<std::string> SpaceSnapshot::key(const Space& space, std::string_view displayUuid) const {
    if (!hasOwner(space)) return ownerlessKey(*this, space, displayUuid);

    const std::string& ownerID = space.fullscreenOwner->ownerID();
    OwnerPlaces places;
    for (const DisplaySpaces& display : displays)
        for (const Space& other : display.spaces)
            if (belongsTo(other, ownerID)) places.add(other.id);
    return fullscreenKey(ownerID, places.placeOf(space.id));
}

std::vector<std::optional<std::string>> SpaceSnapshot::stableKeys() const {
    std::vector<std::optional<std::string>> keys;
    std::unordered_map<std::string_view, OwnerPlaces> placesByText;
    for (const DisplaySpaces& display : displays) {
        for (const Space& space : display.spaces) {
            if (!hasOwner(space)) {
                keys.push_back(ownerlessKey(*this, space, display.display.uuid));
                continue;
            }
            // An owner is found by its id and by its name, so a Space counts under both.
            const RunningApp& owner = *space.fullscreenOwner;
            OwnerPlaces& places = placesByText[owner.ownerID()];
            places.add(space.id);
            keys.push_back(fullscreenKey(owner.ownerID(), places.placeOf(space.id)));
            if (owner.name != owner.ownerID()) placesByText[owner.name].add(space.id);
        }
    }
    return keys;
}

std::optional<PlacedSpace> SpaceSnapshot::resolve(std::string_view key) const {
    if (key.starts_with(fullscreenPrefix)) {
        std::string_view ownerID = key.substr(fullscreenPrefix.size());
        std::size_t place = 0;
        if (const std::size_t mark = ownerID.rfind('#'); mark != ownerID.npos) {
            const auto number = decimalIntegerOf<std::int64_t>(ownerID.substr(mark + 1));
            if (number && *number > 1) {
                place = static_cast<std::size_t>(*number - 1);
                ownerID = ownerID.substr(0, mark);
            }
        }
        return firstSpace(displays,
                          [&](const Space& space) { return belongsTo(space, ownerID) && place-- == 0; });
    }
    if (key.starts_with(primaryPrefix)) {
        const DisplaySpaces* display = spacesOnDisplay(key.substr(primaryPrefix.size()));
        const Space* primary = firstUserSpace(display);
        if (!primary) return std::nullopt;
        return PlacedSpace{*primary, display->display};
    }
    if (key.starts_with(unkeyedPrefix)) {
        const auto raw = decimalIntegerOf<std::uint64_t>(key.substr(unkeyedPrefix.size()));
        if (!raw) return std::nullopt;
        return firstSpace(displays, [&](const Space& space) { return space.id.raw == *raw; });
    }
    if (key.empty()) return std::nullopt;
    return firstSpace(displays, [&](const Space& space) { return space.uuid == key; });
}

} // namespace lumnara

std::size_t std::hash<lumnara::DisplayID>::operator()(const lumnara::DisplayID& display) const noexcept {
    return std::hash<std::string>{}(display.uuid);
}

std::size_t std::hash<lumnara::RunningApp>::operator()(const lumnara::RunningApp& app) const noexcept {
    std::size_t seed = std::hash<std::int32_t>{}(app.pid);
    lumnara::combine(seed, std::hash<std::optional<std::string>>{}(app.bundleID));
    lumnara::combine(seed, std::hash<std::string>{}(app.name));
    return seed;
}

std::size_t std::hash<lumnara::Space>::operator()(const lumnara::Space& space) const noexcept {
    std::size_t seed = std::hash<lumnara::SpaceID>{}(space.id);
    lumnara::combine(seed, std::hash<std::string>{}(space.uuid));
    lumnara::combine(seed, std::hash<lumnara::SpaceKind>{}(space.kind));
    lumnara::combine(seed, std::hash<int>{}(space.indexOnDisplay));
    lumnara::combine(seed, std::hash<std::optional<std::int64_t>>{}(space.managedID));
    lumnara::combine(seed, std::hash<std::optional<lumnara::RunningApp>>{}(space.fullscreenOwner));
    return seed;
}

std::size_t
std::hash<lumnara::DisplaySpaces>::operator()(const lumnara::DisplaySpaces& spaces) const noexcept {
    std::size_t seed = std::hash<lumnara::DisplayID>{}(spaces.display);
    for (const lumnara::Space& space : spaces.spaces)
        lumnara::combine(seed, std::hash<lumnara::Space>{}(space));
    lumnara::combine(seed, std::hash<lumnara::SpaceID>{}(spaces.currentID));
    lumnara::combine(seed, std::hash<std::optional<std::string>>{}(spaces.name));
    return seed;
}

std::size_t
std::hash<lumnara::SpaceSnapshot>::operator()(const lumnara::SpaceSnapshot& snapshot) const noexcept {
    std::size_t seed = std::hash<std::int64_t>{}(snapshot.takenAt.milliseconds);
    for (const lumnara::DisplaySpaces& display : snapshot.displays)
        lumnara::combine(seed, std::hash<lumnara::DisplaySpaces>{}(display));
    lumnara::combine(seed, std::hash<std::optional<lumnara::DisplayID>>{}(snapshot.focusedDisplay));
    return seed;
}
