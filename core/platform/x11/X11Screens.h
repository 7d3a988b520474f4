#pragma once

#include "core/platform/x11/Edid.h"
#include "core/platform/x11/X11Connection.h"
#include "core/seams/Screens.h"

#include <memory>
#include <string>
#include <vector>

namespace lumnara {

/// The monitors of an X server by RandR 1.5, known by their identities (see monitorIdentities), and the
/// pointer. Frames are in pixels and the scale is 1: the X server has one resolution for all monitors.
class X11Screens : public Screens {
public:
    explicit X11Screens(std::shared_ptr<X11Connection> connection) : connection_(std::move(connection)) {}

    std::vector<ScreenInfo> screens() override;
    std::optional<Point> pointer() override;
    std::optional<std::string> displayUnderPointer() override;

    /// The identity of the monitor at a connector; the connector itself when there is none.
    std::string identity(const std::string& connector);

private:
    struct Monitor {
        ConnectedMonitor connected;
        Rect frame;
    };
    std::vector<Monitor> monitors();
    std::optional<Edid> edid(std::uint32_t output);
    std::string atomName(xcb_atom_t atom);

    std::shared_ptr<X11Connection> connection_;
};

} // namespace lumnara
