#pragma once

#include "core/async/Loop.h"
#include "core/model/SpaceProvider.h"
#include "core/platform/ewmh/EwmhDesktops.h"

#include <memory>
#include <utility>

namespace lumnara {

/// The desktops of an EWMH window manager: the one display "Main" with a Space for each. They don't animate.
class EwmhSpaceProvider : public SpaceProvider {
public:
    /// The loop outlives the provider.
    EwmhSpaceProvider(const async::Loop& loop, std::shared_ptr<EwmhDesktops> desktops)
        : loop_(loop),
          desktops_(std::move(desktops)) {}

    /// Throws WindowManagerError.
    SpaceSnapshot snapshot() override;
    std::optional<DisplayID> menuBarDisplay() override { return mainDisplay(); }
    std::optional<DisplayID> cursorDisplay() override { return mainDisplay(); }
    std::optional<std::string> displayName(const std::string& uuid) override;
    std::optional<SpaceID> currentSpace(const DisplayID& display) override;

private:
    static DisplayID mainDisplay() { return {"Main"}; }

    const async::Loop& loop_;
    std::shared_ptr<EwmhDesktops> desktops_;
};

} // namespace lumnara
