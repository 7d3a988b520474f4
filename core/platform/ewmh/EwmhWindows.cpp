#include "core/platform/ewmh/EwmhWindows.h"

namespace lumnara {

namespace {

/// A message from the user's own hand, which a window manager doesn't take for a window that pushes itself
/// forward.
constexpr std::uint32_t sourcePager = 2;

} // namespace

std::vector<EwmhPlacement> EwmhWindows::placements() {
    const auto& x = *connection_;
    const std::vector<xcb_window_t> windows =
        connection_->items(x.requestProperty(x.root(), x.atoms().netClientList));
    const auto desktops = desktopsOf(windows);
    std::vector<EwmhPlacement> placements;
    for (std::size_t i = 0; i < windows.size(); ++i)
        if (desktops[i] && *desktops[i] != everywhere) placements.push_back({windows[i], *desktops[i]});
    return placements;
}

std::vector<EwmhPlacement> EwmhWindows::misplaced(const std::vector<EwmhPlacement>& placements) {
    std::vector<xcb_window_t> windows;
    for (const EwmhPlacement& placement : placements) windows.push_back(placement.window);
    const auto desktops = desktopsOf(windows);
    std::vector<EwmhPlacement> misplaced;
    for (std::size_t i = 0; i < placements.size(); ++i)
        if (desktops[i] && *desktops[i] != placements[i].desktop) misplaced.push_back(placements[i]);
    return misplaced;
}

/// Nothing for a window that is on none or has gone. In one round trip.
std::vector<std::optional<std::uint32_t>> EwmhWindows::desktopsOf(const std::vector<xcb_window_t>& windows) {
    const auto& x = *connection_;
    std::vector<xcb_get_property_cookie_t> cookies;
    for (const xcb_window_t window : windows)
        cookies.push_back(x.requestProperty(window, x.atoms().netWmDesktop));
    std::vector<std::optional<std::uint32_t>> desktops;
    for (const auto cookie : cookies) {
        const auto items = connection_->items(cookie);
        desktops.push_back(items.empty() ? std::nullopt : std::optional(items[0]));
    }
    return desktops;
}

void EwmhWindows::request(const EwmhPlacement& placement) const {
    connection_->askWindowManager(placement.window, connection_->atoms().netWmDesktop,
                                  {placement.desktop, sourcePager});
}

void EwmhWindows::watch(const std::vector<EwmhPlacement>& placements, bool watched) const {
    const std::uint32_t mask = watched ? XCB_EVENT_MASK_PROPERTY_CHANGE : XCB_EVENT_MASK_NO_EVENT;
    for (const EwmhPlacement& placement : placements)
        xcb_change_window_attributes(connection_->xcb(), placement.window, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(connection_->xcb());
}

xcb_window_t EwmhWindows::active() {
    const auto& x = *connection_;
    const auto items = connection_->items(x.requestProperty(x.root(), x.atoms().netActiveWindow));
    if (items.empty()) return XCB_WINDOW_NONE;
    return items[0];
}

void EwmhWindows::requestActive(xcb_window_t window) const {
    connection_->askWindowManager(window, connection_->atoms().netActiveWindow,
                                  {sourcePager, XCB_CURRENT_TIME});
}

} // namespace lumnara
