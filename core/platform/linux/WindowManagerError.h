#pragma once

#include "core/base/Failure.h"

#include <string>

namespace lumnara {

/// The window manager can't be read or asked.
class WindowManagerError : public Failure {
public:
    enum class Case {
        noDisplay,       ///< no X server and no compositor answers
        noWindowManager, ///< a display, and no window manager that tells of desktops
        connectionLost,  ///< it went away; the connection is tried again
        notAnswering,    ///< it is there and doesn't answer in time; it is asked again
        refused,         ///< it answered a command with an error; detail holds its words
        noDesktops       ///< it tells of no desktops on that display
    };

    WindowManagerError(Case which, std::string windowManager, std::string detail = {});

    Case which() const { return which_; }
    bool operator==(const WindowManagerError& other) const {
        return which_ == other.which_ && windowManager_ == other.windowManager_ && detail_ == other.detail_;
    }

private:
    Case which_;
    std::string windowManager_;
    std::string detail_;
};

} // namespace lumnara
