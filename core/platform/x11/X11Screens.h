#pragma once

#include "core/platform/x11/X11Monitors.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// The monitors of an X server, and the pointer.
class X11Screens : public Screens {
public:
    explicit X11Screens(const std::shared_ptr<X11Connection>& connection)
        : connection_(connection),
          monitors_(connection) {}

    std::vector<ScreenInfo> screens() override;
    std::optional<Point> pointer() override;
    std::optional<std::string> displayUnderPointer() override;

    /// The identity of the monitor at a connector; the connector itself when there is none.
    std::string identity(const std::string& connector);

private:
    std::shared_ptr<X11Connection> connection_;
    X11Monitors monitors_;
};

} // namespace lumnara
