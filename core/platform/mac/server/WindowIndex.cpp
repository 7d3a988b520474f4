#include "core/platform/mac/server/WindowIndex.h"

#include "core/platform/mac/server/ListedWindow.h"

#include <algorithm>
#include <utility>

namespace lumnara {

namespace {

constexpr double leastAlpha = 0.05;
constexpr double leastWidth = 120;
constexpr double leastHeight = 80;

bool isOrdinary(const ListedWindow& window) {
    return window.layer == 0 && window.number && window.ownerPid && window.bounds &&
           window.alpha.value_or(1) > leastAlpha && window.ownerName != "Window Server" &&
           window.ownerName != "Dock";
}

} // namespace

std::vector<DesktopWindow> CGWindowSource::windows() {
    std::vector<DesktopWindow> kept;
    const auto list = windowServer_.windowList(WindowListOption::allWithoutDesktop);
    if (!list) return kept;
    for (const PropertyDictionary& entry : *list) {
        const ListedWindow window = ListedWindow::of(entry);
        if (!isOrdinary(window)) continue;
        kept.push_back({*window.number, *window.ownerPid, window.ownerName.value_or(""),
                        window.title.value_or(""), *window.bounds, static_cast<int>(kept.size())});
    }
    return kept;
}

std::vector<SpaceID> CGWindowSource::spaces(WindowNumber windowID) {
    return windowServer_.spacesOfWindows({windowID});
}

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
