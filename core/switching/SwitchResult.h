#pragma once

#include <string>
#include <string_view>

namespace lumnara {

/// How a display was brought to show a Space.
enum class EngineKind {
    dockSwipe,            ///< a synthetic gesture, without animation
    helperWindow,         ///< a helper window on the target Space is activated
    fullscreenActivation, ///< the app that owns a full-screen Space is activated
    windowManager         ///< the window manager is asked
};

/// "dockSwipe" and so on: the stored form and the name in logs.
std::string_view rawValue(EngineKind kind);

/// A switch that was carried out; what failed travels as an error.
struct SwitchResult {
    bool landed = false;
    EngineKind engine = EngineKind::windowManager;
    int attempts = 0;
    /// Seconds from the request to the verified landing.
    double elapsed = 0;

    bool operator==(const SwitchResult&) const = default;
    /// "dockSwipe landed=true attempts=1 elapsed=180ms".
    std::string description() const;
};

} // namespace lumnara
