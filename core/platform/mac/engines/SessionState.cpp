#include "core/platform/mac/engines/SessionState.h"

#include "core/platform/mac/server/ListedWindow.h"

#include <algorithm>
#include <string_view>
#include <variant>
#include <vector>

namespace lumnara {

namespace {

std::optional<bool> sessionFlag(SessionProbe& session, std::string_view key) {
    const auto dictionary = session.currentDictionary();
    const PropertyValue* value = dictionary ? dictionary->find(key) : nullptr;
    const bool* flag = value ? std::get_if<bool>(&value->storage()) : nullptr;
    return flag ? std::optional(*flag) : std::nullopt;
}

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

bool SessionState::isScreenLocked(SessionProbe& session) {
    return sessionFlag(session, "CGSSessionScreenIsLocked").value_or(false);
}

bool SessionState::isOnConsole(SessionProbe& session) {
    return sessionFlag(session, "kCGSSessionOnConsoleKey").value_or(true);
}

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
    using Case = SwitchError::Case;
    if (isScreenLocked(session)) return SwitchError(Case::screenLocked);
    if (!isOnConsole(session)) return SwitchError(Case::sessionNotOnConsole);
    if (isMissionControlVisible(windowServer)) return SwitchError(Case::missionControlActive);
    return std::nullopt;
}

} // namespace lumnara
