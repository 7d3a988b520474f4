#include "core/seams/Screens.h"

#include <algorithm>

namespace lumnara {

bool isPanelConnector(std::string_view connector) {
    return connector.starts_with("eDP") || connector.starts_with("LVDS") || connector.starts_with("DSI");
}

std::vector<ScreenInfo> distinctlyNamed(std::vector<ScreenInfo> screens) {
    std::vector<std::string> names;
    for (const ScreenInfo& screen : screens) names.push_back(screen.name);
    for (ScreenInfo& screen : screens)
        if (std::ranges::count(names, screen.name) > 1) screen.name += " (" + screen.connector + ")";
    return screens;
}

} // namespace lumnara
