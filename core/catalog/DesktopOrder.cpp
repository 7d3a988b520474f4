#include "core/catalog/DesktopOrder.h"

#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace lumnara::DesktopOrder {

std::vector<Desktop> apply(std::vector<Desktop> desktops, const std::vector<std::string>& order) {
    if (order.empty()) return desktops;

    std::unordered_map<std::string_view, std::size_t> byKey;
    for (std::size_t i = 0; i < desktops.size(); ++i) {
        byKey.try_emplace(desktops[i].key, i);
        byKey.try_emplace(desktops[i].spaceKey, i);
    }

    std::vector<std::size_t> places;
    std::vector<bool> used(desktops.size());
    const auto use = [&](std::size_t i) {
        if (!used[i]) places.push_back(i);
        used[i] = true;
    };
    for (const std::string& key : order)
        if (const auto found = byKey.find(key); found != byKey.end()) use(found->second);
    for (std::size_t i = 0; i < desktops.size(); ++i) use(i);

    std::vector<Desktop> ordered;
    ordered.reserve(desktops.size());
    for (const std::size_t i : places) ordered.push_back(std::move(desktops[i]));
    return ordered;
}

std::vector<std::string> rearranged(std::vector<std::string> keys, const std::vector<std::string>& order) {
    const std::unordered_set<std::string> present(keys.begin(), keys.end());
    std::vector<std::string> moved;
    for (const std::string& key : order)
        if (present.contains(key)) moved.push_back(key);
    const std::unordered_set<std::string> isMoved(moved.begin(), moved.end());
    auto next = moved.begin();
    for (std::string& key : keys)
        if (next != moved.end() && isMoved.contains(key)) key = *next++;
    return keys;
}

std::optional<std::vector<std::string>> following(const std::vector<Desktop>& changed,
                                                  const std::vector<Desktop>& follower) {
    const auto isOrdinaryLink = [](const Desktop& desktop) {
        return desktop.isLinked() && desktop.space.kind == SpaceKind::user;
    };
    std::unordered_set<std::string> ordinary;
    for (const Desktop& desktop : follower)
        if (isOrdinaryLink(desktop)) ordinary.insert(desktop.key);
    std::vector<std::string> order;
    for (const Desktop& desktop : changed)
        if (isOrdinaryLink(desktop) && ordinary.contains(desktop.key)) order.push_back(desktop.key);
    const std::vector<std::string> before = keysOf(follower);
    std::vector<std::string> after = rearranged(before, order);
    if (after == before) return std::nullopt;
    return after;
}

std::vector<std::string> keysOf(const std::vector<Desktop>& desktops) {
    std::vector<std::string> keys;
    for (const Desktop& desktop : desktops) keys.push_back(desktop.key);
    return keys;
}

} // namespace lumnara::DesktopOrder
