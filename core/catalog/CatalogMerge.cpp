#include "core/catalog/CatalogMerge.h"

#include "core/catalog/DesktopOrder.h"
#include "core/names/DisplayLink.h"
#include "core/text/Text.h"

#include <algorithm>
#include <fmt/core.h>
#include <iterator>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace lumnara::CatalogMerge {

namespace {

using KeySet = std::unordered_set<std::string_view>;

bool isLinkKey(std::string_view key) { return DisplayLink::id(key).has_value(); }
bool isFullscreenKey(std::string_view key) { return key.starts_with("fullscreen:"); }

/// The stable key of the Space that now stands where the record was last seen; null unless the place can be
/// trusted, which it can only if no Space was added to the display or removed.
const std::string* keyAtLastPlace(const Reading& reading, const LastSeen& seen) {
    const DisplaySpaces* display = reading.snapshot.spacesOnDisplay(seen.displayUUID);
    if (!display || !seen.spaceCount || std::cmp_not_equal(display->spaces.size(), *seen.spaceCount))
        return nullptr;
    const auto space =
        std::find_if(display->spaces.begin(), display->spaces.end(),
                     [&](const Space& candidate) { return candidate.indexOnDisplay == seen.indexOnDisplay; });
    if (space == display->spaces.end()) return nullptr;
    const auto& key = reading.stableKeys[static_cast<std::size_t>(display - reading.snapshot.displays.data())]
                                        [static_cast<std::size_t>(space - display->spaces.begin())];
    return key ? &*key : nullptr;
}

Desktop makeDesktop(const Reading& reading, const NameStoreFile& file, const LinkKeys& links,
                    std::size_t display, std::size_t place) {
    const DisplaySpaces& spaces = reading.snapshot.displays[display];
    Desktop desktop;
    desktop.spaceKey = reading.spaceKey(display, place);
    const auto link = links.find(desktop.spaceKey);
    desktop.key = link == links.end() ? desktop.spaceKey : link->second;
    desktop.space = spaces.spaces[place];
    desktop.display = spaces.display;
    if (const DesktopRecord* record = file.record(desktop.key)) desktop.record = *record;
    desktop.isCurrent = desktop.space.id == spaces.currentID;
    return desktop;
}

void number(std::vector<Desktop>& desktops) {
    int next = 1;
    for (Desktop& desktop : desktops)
        if (desktop.space.kind == SpaceKind::user) desktop.userNumber = next++;
}

} // namespace

Reading::Reading(const SpaceSnapshot& taken, std::vector<std::string> names)
    : snapshot(taken),
      displayNames(std::move(names)) {
    auto keys = taken.stableKeys();
    auto next = std::make_move_iterator(keys.begin());
    for (const DisplaySpaces& display : taken.displays) {
        const auto end = next + static_cast<std::ptrdiff_t>(display.spaces.size());
        stableKeys.emplace_back(next, end);
        next = end;
    }
}

std::string Reading::spaceKey(std::size_t display, std::size_t place) const {
    const auto& key = stableKeys[display][place];
    return key ? *key : "unkeyed:" + snapshot.displays[display].spaces[place].id.text();
}

std::unordered_map<std::string, std::string> Reading::displaysOfSpaces() const {
    std::unordered_map<std::string, std::string> displays;
    for (std::size_t display = 0; display < stableKeys.size(); ++display)
        for (std::size_t place = 0; place < stableKeys[display].size(); ++place)
            displays.emplace(spaceKey(display, place), snapshot.displays[display].display.uuid);
    return displays;
}

std::vector<Reattachment> reattachments(const Reading& reading, const NameStoreFile& file) {
    KeySet live;
    for (const auto& keys : reading.stableKeys)
        for (const auto& key : keys)
            if (key) live.insert(*key);

    std::vector<Reattachment> found;
    KeySet taken;
    for (const auto& [key, record] : file.desktops) {
        if (live.contains(key) || isFullscreenKey(key) || isLinkKey(key) || !record.lastSeen) continue;
        const LastSeen& seen = *record.lastSeen;
        const std::string* newKey = keyAtLastPlace(reading, seen);
        if (!newKey || file.record(*newKey) || !taken.insert(*newKey).second) continue;
        found.push_back(
            {key, *newKey, seen.displayUUID,
             fmt::format("Lumnara: desktop uuid changed under \"{}\"; re-attached by position {} on {}",
                         record.name, seen.indexOnDisplay + 1, seen.displayName.value_or(seen.displayUUID))});
    }
    return found;
}

LinkKeys linkKeys(const Reading& reading, const NameStoreFile& file) {
    LinkKeys keys;
    if (!file.links || reading.snapshot.isSharedMain()) return keys;
    struct Membership {
        std::string_view id;
        std::string_view displayUuid;
    };
    std::unordered_map<std::string_view, Membership> memberships;
    for (const auto& [id, members] : *file.links)
        for (const auto& [displayUuid, spaceKey] : members)
            memberships.try_emplace(spaceKey, Membership{id, displayUuid});

    for (std::size_t i = 0; i < reading.snapshot.displays.size(); ++i) {
        const DisplaySpaces& display = reading.snapshot.displays[i];
        KeySet held; // ids
        for (const bool atHome : {true, false}) {
            for (std::size_t place = 0; place < display.spaces.size(); ++place) {
                std::string spaceKey = reading.spaceKey(i, place);
                const auto found = memberships.find(spaceKey);
                if (found == memberships.end()) continue;
                const auto& [id, displayUuid] = found->second;
                if (text::equalsIgnoringCase(displayUuid, display.display.uuid) == atHome &&
                    held.insert(id).second)
                    keys.emplace(std::move(spaceKey), DisplayLink::key(id));
            }
        }
    }
    return keys;
}

NameStoreFile::Map<LastSeen> places(const Reading& reading, const NameStoreFile& file, const LinkKeys& links,
                                    Date now) {
    NameStoreFile::Map<LastSeen> found;
    for (std::size_t i = 0; i < reading.snapshot.displays.size(); ++i) {
        const DisplaySpaces& display = reading.snapshot.displays[i];
        for (std::size_t place = 0; place < display.spaces.size(); ++place) {
            std::string key = reading.spaceKey(i, place);
            const DesktopRecord* record = file.record(key);
            if (!record || links.contains(key)) continue;
            LastSeen seen{display.display.uuid, reading.displayNames[i], display.spaces[place].indexOnDisplay,
                          now, static_cast<int>(display.spaces.size())};
            if (!record->lastSeen || !record->lastSeen->samePlace(seen))
                found.insert_or_assign(std::move(key), std::move(seen));
        }
    }
    return found;
}

std::vector<DisplayDesktops> displays(const Reading& reading, const NameStoreFile& file,
                                      const LinkKeys& links) {
    std::vector<DisplayDesktops> made;
    made.reserve(reading.snapshot.displays.size());
    for (std::size_t i = 0; i < reading.snapshot.displays.size(); ++i) {
        const DisplaySpaces& display = reading.snapshot.displays[i];
        std::vector<Desktop> desktops;
        desktops.reserve(display.spaces.size());
        for (std::size_t place = 0; place < display.spaces.size(); ++place)
            desktops.push_back(makeDesktop(reading, file, links, i, place));
        if (const std::vector<std::string>* order = file.orderOf(display.display.uuid))
            desktops = DesktopOrder::apply(std::move(desktops), *order);
        number(desktops);
        made.push_back({display.display, reading.displayNames[i], std::move(desktops)});
    }
    return made;
}

int activeLinkCount(const LinkKeys& links) {
    std::unordered_map<std::string_view, int> desktops; // by link key
    for (const auto& [spaceKey, linkKey] : links) ++desktops[linkKey];
    return static_cast<int>(
        std::count_if(desktops.begin(), desktops.end(), [](const auto& group) { return group.second >= 2; }));
}

std::vector<Orphan> orphans(const std::vector<DisplayDesktops>& displays, const NameStoreFile& file) {
    KeySet live;
    for (const DisplayDesktops& display : displays)
        for (const Desktop& desktop : display.desktops) live.insert(desktop.spaceKey);

    std::vector<Orphan> found;
    for (const auto& [key, record] : file.desktops)
        if (!live.contains(key) && !isLinkKey(key)) found.push_back({key, record});
    std::sort(found.begin(), found.end(), [](const Orphan& a, const Orphan& b) {
        const auto byName = text::compareLocalized(a.record.name, b.record.name);
        return byName != 0 ? byName < 0 : a.key < b.key;
    });
    return found;
}

} // namespace lumnara::CatalogMerge
