#include "core/switching/SwitchResult.h"

#include <cstdint>
#include <fmt/core.h>

namespace lumnara {

std::string_view rawValue(EngineKind kind) {
    switch (kind) {
    case EngineKind::dockSwipe: return "dockSwipe";
    case EngineKind::helperWindow: return "helperWindow";
    case EngineKind::fullscreenActivation: return "fullscreenActivation";
    case EngineKind::windowManager: return "windowManager";
    }
    return {};
}

std::string SwitchResult::description() const {
    return fmt::format("{} landed={} attempts={} elapsed={}ms", rawValue(engine), landed, attempts,
                       static_cast<std::int64_t>(elapsed * 1000));
}

} // namespace lumnara
