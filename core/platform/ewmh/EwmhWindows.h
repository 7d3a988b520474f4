#pragma once

#include "core/platform/x11/X11Connection.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace lumnara {

/// A window and the index of a desktop.
struct EwmhPlacement {
    xcb_window_t window = XCB_WINDOW_NONE;
    std::uint32_t desktop = 0;
};

/// The windows that an EWMH window manager manages, and which desktop each is on. Main thread; readings throw
/// WindowManagerError.
class EwmhWindows {
public:
    /// The desktop of a window that is on all of them.
    static constexpr std::uint32_t everywhere = 0xFFFFFFFF;

    explicit EwmhWindows(std::shared_ptr<X11Connection> connection) : connection_(std::move(connection)) {}

    /// Those that are on one desktop, oldest first.
    std::vector<EwmhPlacement> placements();
    /// The ones that are not on their desktops; a window that has gone is none of them.
    std::vector<EwmhPlacement> misplaced(const std::vector<EwmhPlacement>& placements);
    /// Asks the window manager to put it there.
    void request(const EwmhPlacement& placement) const;
    /// Whether the connection tells when a window changes its desktop.
    void watch(const std::vector<EwmhPlacement>& placements, bool watched) const;

    /// The window that has the keyboard, or none.
    xcb_window_t active();
    void requestActive(xcb_window_t window) const;

private:
    std::vector<std::optional<std::uint32_t>> desktopsOf(const std::vector<xcb_window_t>& windows);

    std::shared_ptr<X11Connection> connection_;
};

} // namespace lumnara
