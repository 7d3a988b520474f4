#pragma once

#include "core/platform/x11/X11Connection.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// The root window's properties of the Extended Window Manager Hints, at one instant.
struct EwmhState {
    /// At least 1.
    std::size_t count = 0;
    /// Less than `count`: while desktops are taken away, a window manager may point beyond the last.
    std::size_t current = 0;
    /// The names as bytes of any kind, perhaps more or fewer than desktops.
    std::vector<std::string> names;
    /// Our own list; nothing when the X server is new.
    std::optional<std::vector<std::string>> uuids;
};

/// Reads and asks an EWMH window manager through the root window. Main thread.
class EwmhRoot {
public:
    explicit EwmhRoot(std::shared_ptr<X11Connection> connection);

    /// One round trip, two after the window manager has changed. Throws WindowManagerError while there is
    /// no window manager that tells of desktops, or no X server. From then on the connection tells of the
    /// window manager's end by windowDestroyed.
    EwmhState read();
    /// The current desktop by a quicker round trip, not clamped; nothing when more may have changed since the
    /// last reading and it takes a whole one. Throws as read().
    std::optional<std::size_t> readCurrentAlone();
    /// The name that the window manager gave itself at the last reading; empty before the first.
    const std::string& windowManager() const { return windowManager_; }

    /// Asks the window manager to show a desktop; it answers by changing _NET_CURRENT_DESKTOP.
    void requestDesktop(std::size_t index) const;
    /// Asks it for so many desktops; it answers by changing _NET_NUMBER_OF_DESKTOPS.
    void requestCount(std::size_t count) const;
    /// An empty list leaves every desktop without a name.
    void setNames(const std::vector<std::string>& names) const;
    void setUuids(const std::vector<std::string>& uuids) const;

private:
    struct WindowManagerCookies {
        xcb_get_property_cookie_t check;
        xcb_get_property_cookie_t name;
    };
    WindowManagerCookies askWindowManager() const;
    bool windowManagerAnswers(WindowManagerCookies cookies);
    [[noreturn]] void reportAway();
    void noteArrival(const xcb_generic_event_t& event);

    std::shared_ptr<X11Connection> connection_;
    /// The window whose end is the end of the window manager; none before the first reading and after it.
    xcb_window_t checkWindow_ = XCB_WINDOW_NONE;
    std::string windowManager_;
    /// Counts the changes that make a reading old: all but those of the current desktop.
    std::uint64_t changes_ = 0;
    /// `changes_` as the last reading began; nothing when it failed.
    std::optional<std::uint64_t> changesRead_;
    async::Subscription arrived_;
};

} // namespace lumnara
