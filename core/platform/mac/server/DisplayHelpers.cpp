#include "core/platform/mac/server/DisplayHelpers.h"

#include "core/text/Text.h"

namespace lumnara {

std::optional<ScreenInfo> DisplayHelpers::screen(Screens& screens, std::string_view uuid) {
    for (ScreenInfo& screen : screens.screens())
        if (text::equalsIgnoringCase(screen.uuid, uuid)) return std::move(screen);
    return std::nullopt;
}

std::optional<ScreenInfo> DisplayHelpers::mainScreen(const std::vector<ScreenInfo>& screens) {
    for (const ScreenInfo& screen : screens)
        if (screen.frame.x == 0 && screen.frame.y == 0) return screen;
    return screens.empty() ? std::nullopt : std::optional(screens.front());
}

std::optional<ScreenInfo> DisplayHelpers::displayUnderCursor(Screens& screens) {
    const auto at = screens.pointer();
    if (!at) return std::nullopt;
    for (ScreenInfo& screen : screens.screens())
        if (screen.frame.contains(*at)) return std::move(screen);
    return std::nullopt;
}

} // namespace lumnara
