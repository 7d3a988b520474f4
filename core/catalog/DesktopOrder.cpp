#include "core/catalog/DesktopOrder.h"

#include <string_view>
#include <unordered_map>
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

} // namespace lumnara::DesktopOrder
