#include "core/platform/mac/server/MenuBarPlacement.h"

#include <cmath>

namespace lumnara {

namespace {

constexpr std::string_view positionKey = "NSStatusItem Preferred Position Item-0";
constexpr std::string_view visibleKey = "NSStatusItem Visible Item-0";

} // namespace

void MenuBarPlacement::placeOnFirstStart(DefaultsStore& defaults, double screenWidth) {
    if (defaults.value(positionKey) || defaults.value(visibleKey)) return;
    defaults.set(positionKey, std::round(0.68 * screenWidth));
}

} // namespace lumnara
