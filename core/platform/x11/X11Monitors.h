#pragma once

#include "core/platform/x11/Edid.h"
#include "core/platform/x11/X11Connection.h"
#include "core/seams/Screens.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// The monitors of an X server by RandR 1.5, known by their identities (see monitorIdentities). They are read
/// once and kept until the server tells of a change. Main thread.
class X11Monitors {
public:
    explicit X11Monitors(std::shared_ptr<X11Connection> connection);

    /// Left to right and then top to bottom. Frames are in pixels and the scale is 1: the X server has one
    /// resolution for all monitors. The reference holds until the next call. Throws WindowManagerError.
    const std::vector<ScreenInfo>& screens();

private:
    struct Monitor {
        ConnectedMonitor connected;
        Rect frame;
    };
    std::vector<ScreenInfo> read();
    std::vector<Monitor> monitors();
    std::optional<Edid> edid(std::uint32_t output);
    std::string atomName(xcb_atom_t atom);

    std::shared_ptr<X11Connection> connection_;
    std::vector<ScreenInfo> kept_;
    /// Nothing has changed since the reading of `kept_` began.
    bool isFresh_ = false;
    std::vector<async::Subscription> changes_;
};

} // namespace lumnara
