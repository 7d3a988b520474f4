#pragma once

#include "core/async/Trigger.h"
#include "core/platform/ewmh/EwmhDesktops.h"
#include "core/seams/SpaceActivator.h"

#include <memory>

namespace lumnara {

/// Changes the desktop by asking the window manager, and waits for its announcement.
class EwmhSpaceActivator : public SpaceActivator {
public:
    EwmhSpaceActivator(std::shared_ptr<X11Connection> connection, std::shared_ptr<EwmhDesktops> desktops);

    async::Task<std::optional<SpaceID>> activate(const Space& target, const DisplayID& display) override;

private:
    std::shared_ptr<X11Connection> connection_;
    std::shared_ptr<EwmhDesktops> desktops_;
    async::Trigger changed_;
    async::Subscription propertyChanged_;
};

} // namespace lumnara
