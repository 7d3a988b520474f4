#include "core/platform/mac/server/CGWindowSource.h"

#include "core/platform/mac/server/ListedWindow.h"

namespace lumnara {

namespace {

constexpr double leastAlpha = 0.05;

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

} // namespace lumnara
