#pragma once

#include "core/platform/ewmh/EwmhDesktops.h"
#include "core/seams/WindowServer.h"

#include <memory>

namespace lumnara {

/// An EWMH window manager as window server: the one display "Main" with a Space for each desktop.
class EwmhWindowServer : public WindowServer {
public:
    explicit EwmhWindowServer(std::shared_ptr<EwmhDesktops> desktops) : desktops_(std::move(desktops)) {}

    PropertyList managedDisplaySpaces() override;
    std::optional<SpaceID> currentSpace(const DisplayID& display) override;
    std::optional<bool> isAnimating(const DisplayID&) override { return std::nullopt; }
    std::optional<std::string> activeMenuBarDisplay() override { return mainDisplay; }

private:
    static constexpr const char* mainDisplay = "Main";

    std::shared_ptr<EwmhDesktops> desktops_;
};

} // namespace lumnara
