#include "core/windows/WindowIndex.h"

#include <algorithm>
#include <utility>

namespace lumnara {

namespace {

constexpr double leastWidth = 120;
constexpr double leastHeight = 80;

} // namespace

std::map<SpaceID, std::vector<DesktopWindow>> WindowIndex::windows(const std::set<SpaceID>& onSpaces,
                                                                   WindowSource& source) {
    const std::vector<DesktopWindow> all = source.windows();
    // By place too: windows of the same order keep that of the list.
    std::vector<std::pair<int, std::size_t>> order;
    for (std::size_t place = 0; place < all.size(); ++place) order.emplace_back(all[place].zOrder, place);
    std::ranges::sort(order);

    std::map<SpaceID, std::vector<DesktopWindow>> bySpace;
    for (const auto& [zOrder, place] : order) {
        const DesktopWindow& window = all[place];
        if (window.bounds.width < leastWidth || window.bounds.height < leastHeight) continue;
        for (const SpaceID space : source.spaces(window.id))
            if (onSpaces.contains(space)) bySpace[space].push_back(window);
    }
    return bySpace;
}

} // namespace lumnara
