#pragma once

#include "core/base/Failure.h"

#include <string>

namespace lumnara {

/// The window manager can't be read or asked.
class WindowManagerError : public FailureOf<WindowManagerError, std::string, std::string> {
public:
    enum class Case {
        noDisplay,       ///< no X server and no compositor answers
        noWindowManager, ///< a display, and no window manager that tells of desktops
        connectionLost,  ///< it went away; the connection is tried again
        notAnswering,    ///< it is there and doesn't answer in time; it is asked again
        refused,         ///< it answered a command with an error; detail holds its words
        noDesktops       ///< it tells of no desktops on that display
    };
    static constexpr Sentence<Case> sentences[] = {
        {Case::noDisplay, "There is no display to run on. Start Lumnara inside a desktop session."},
        {Case::noWindowManager, "No window manager that knows desktops is running on this display."},
        {Case::connectionLost, "The connection to {0} was lost. Lumnara keeps trying to reach it."},
        {Case::notAnswering, "{0} is not answering. Lumnara keeps asking."},
        {Case::refused, "{0} refused a command: {1}."},
        {Case::noDesktops, "{0} did not report any desktops on that display."},
    };

    WindowManagerError(Case which, std::string windowManager, std::string detail = {})
        : FailureOf(which, std::move(windowManager), std::move(detail)) {}
};

} // namespace lumnara
