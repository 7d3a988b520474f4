#include "core/catalog/LinkCandidates.h"

#include "core/names/NameRules.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace lumnara {

std::vector<LinkCandidate> linkCandidates(const std::vector<DisplayDesktops>& displays,
                                          const NameStoreFile& file) {
    std::unordered_set<std::string_view> linked;
    if (file.links)
        for (const auto& [id, members] : *file.links)
            for (const auto& [displayUuid, spaceKey] : members) linked.insert(spaceKey);

    std::vector<LinkCandidate> pairs;
    std::unordered_map<std::string, std::vector<const Desktop*>> unpaired; // by normalized name
    for (const DisplayDesktops& display : displays) {
        for (const Desktop& desktop : display.desktops) {
            if (!desktop.isNamed() || linked.contains(desktop.spaceKey)) continue;
            auto& waiting = unpaired[NameRules::normalizedKey(desktop.record->name)];
            const auto partner = std::find_if(waiting.begin(), waiting.end(), [&](const Desktop* other) {
                return other->display != desktop.display;
            });
            if (partner == waiting.end()) {
                waiting.push_back(&desktop);
            } else {
                pairs.push_back({**partner, desktop});
                waiting.erase(partner);
            }
        }
    }
    return pairs;
}

} // namespace lumnara
