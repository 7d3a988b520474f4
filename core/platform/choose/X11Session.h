#pragma once

#include "core/async/Loop.h"
#include "core/platform/linux/Environment.h"

#include <memory>
#include <optional>
#include <string>

namespace lumnara {

class X11Connection;

/// An X session as the chooser of platforms sees it. What is made on its connection may outlive it, but not
/// the loop.
class X11Session {
public:
    /// Connects to the display that the environment names. Throws WindowManagerError::noDisplay.
    X11Session(async::Loop& loop, const Environment& environment);

    const std::shared_ptr<X11Connection>& connection() const { return connection_; }

    /// Where the i3 of this display listens; nothing when there is none or another window manager runs.
    std::optional<std::string> i3Socket() const;

private:
    std::shared_ptr<X11Connection> connection_;
};

} // namespace lumnara
