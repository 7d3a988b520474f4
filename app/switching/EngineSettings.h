#pragma once

#include "app/settings/AppSettings.h"
#include "core/async/Signal.h"
#include "core/switching/SpaceSwitcher.h"

#include <vector>

namespace lumnara {

struct Platform;

/// Gives the switcher what the platform switches with, and keeps it in step with the settings.
class EngineSettings {
public:
    /// All outlive this object, but for the switcher, which goes no later.
    EngineSettings(Platform& platform, SpaceSwitcher& switcher, AppSettings& settings);

private:
    std::vector<async::Subscription> settingsChanged_;
};

} // namespace lumnara
