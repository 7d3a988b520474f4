#include "core/arranging/DesktopReadings.h"

#include "core/arranging/DesktopRemoveError.h"

#include <algorithm>
#include <unordered_set>

namespace lumnara::DesktopReadings {

namespace {

bool isUserDesktop(const Space& space) { return space.kind == SpaceKind::user; }

} // namespace

std::vector<SpaceID> idsOf(const DisplaySpaces& shown) {
    std::vector<SpaceID> ids;
    for (const Space& space : shown.spaces) ids.push_back(space.id);
    return ids;
}

std::vector<SpaceID> removable(const std::vector<SpaceID>& ids, const DisplaySpaces& shown) {
    using Case = DesktopRemoveError::Case;
    std::unordered_set<SpaceID> seen;
    std::vector<SpaceID> kept;
    for (const SpaceID id : ids) {
        if (!seen.insert(id).second) continue;
        const auto space = std::ranges::find(shown.spaces, id, &Space::id);
        if (space == shown.spaces.end()) throw DesktopRemoveError(Case::notOnDisplay);
        if (!isUserDesktop(*space)) throw DesktopRemoveError(Case::notAUserDesktop);
        kept.push_back(id);
    }
    const auto userDesktops = std::ranges::count_if(shown.spaces, isUserDesktop);
    if (userDesktops <= static_cast<std::ptrdiff_t>(kept.size()))
        throw DesktopRemoveError(Case::lastOnDisplay);
    return kept;
}

bool isRemoved(SpaceID id, const DisplayID& display, const SpaceSnapshot& now) {
    if (now.spacesOnDisplay(display.uuid) == nullptr) return false;
    return std::ranges::none_of(now.displays, [id](const DisplaySpaces& shown) {
        return std::ranges::find(shown.spaces, id, &Space::id) != shown.spaces.end();
    });
}

std::vector<SpaceID> added(const SpaceSnapshot& before, const SpaceSnapshot& now, const DisplayID& display) {
    std::unordered_set<SpaceID> known;
    for (const PlacedSpace& each : before.allSpaces()) known.insert(each.space.id);
    std::vector<SpaceID> ids;
    for (const Space& space : now.userSpaces(display.uuid))
        if (!known.contains(space.id)) ids.push_back(space.id);
    return ids;
}

} // namespace lumnara::DesktopReadings
