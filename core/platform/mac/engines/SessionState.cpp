#include "core/platform/mac/engines/SessionState.h"

#include "core/platform/mac/server/ListedWindow.h"
#include "core/switching/SpaceSwitcher.h"

#include <algorithm>
#include <vector>

namespace lumnara {

namespace {

/// The layers of the Dock's windows on the screen.
std::vector<std::int64_t> dockLayers(WindowServer& windowServer) {
    std::vector<std::int64_t> layers;
    const auto list = windowServer.windowList(WindowListOption::onScreenOnly);
    if (!list) return layers;
    for (const PropertyDictionary& entry : *list) {
        const ListedWindow window = ListedWindow::of(entry);
        if (window.ownerName == "Dock" && window.layer) layers.push_back(*window.layer);
    }
    return layers;
}

constexpr std::int64_t missionControlLayer = 18;
constexpr std::int64_t dockLayer = 20;

} // namespace

bool SessionState::isMissionControlVisible(WindowServer& windowServer) {
    const auto layers = dockLayers(windowServer);
    const auto overlays = std::ranges::count(layers, missionControlLayer);
    return overlays > 0 && overlays < std::ranges::count(layers, dockLayer);
}

bool SessionState::dockOverlayVisible(WindowServer& windowServer) {
    return std::ranges::any_of(dockLayers(windowServer), [](std::int64_t layer) {
        return layer == missionControlLayer || layer == dockLayer;
    });
}

std::optional<SwitchError> SessionState::blockingReason(SessionProbe& session, WindowServer& windowServer) {
    if (const auto reason = blockingReasonOf(session)) return reason;
    if (isMissionControlVisible(windowServer)) return SwitchError(SwitchError::Case::missionControlActive);
    return std::nullopt;
}

} // namespace lumnara
