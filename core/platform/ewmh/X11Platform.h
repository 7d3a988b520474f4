#pragma once

#include "core/async/Loop.h"
#include "core/platform/Platform.h"
#include "core/platform/linux/Environment.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace lumnara {

class X11Connection;

/// An X session as the chooser of platforms sees it, and the maker of what runs on it. What it makes
/// shares its connection and may outlive it, but not the loop.
class X11Session {
public:
    /// Connects to the display that the environment names. Throws WindowManagerError::noDisplay.
    X11Session(async::Loop& loop, const Environment& environment);

    /// The name of the EWMH window manager that tells of desktops here; nothing when there is none.
    std::optional<std::string> ewmhWindowManager() const;
    /// Where the i3 of this display listens; nothing when there is none or another window manager runs.
    std::optional<std::string> i3Socket() const;

    /// A whole platform on the EWMH window manager, also one that is yet to come: until then its readings
    /// throw WindowManagerError. `folder` is where the names of desktops are kept; "ewmh-desktops.json"
    /// stands beside them.
    Platform ewmhPlatform(const std::filesystem::path& folder) const;

    /// The monitors, shortcuts and idle time alone, for a window manager that has an interface of its own.
    std::unique_ptr<Screens> screens() const;
    std::unique_ptr<GlobalShortcuts> globalShortcuts() const;
    /// Null on a server that doesn't count it.
    std::unique_ptr<IdleSource> idleSource() const;
    /// The identity of the monitor at a connector ("DP-1"), as the screens above give it.
    std::string displayIdentity(const std::string& connector) const;

private:
    std::shared_ptr<X11Connection> connection_;
};

} // namespace lumnara
