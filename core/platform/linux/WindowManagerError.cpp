#include "core/platform/linux/WindowManagerError.h"

namespace lumnara {

namespace {

std::string sentenceOf(WindowManagerError::Case which, const std::string& windowManager,
                       const std::string& detail) {
    using Case = WindowManagerError::Case;
    switch (which) {
    case Case::noDisplay: return "There is no display to run on. Start Lumnara inside a desktop session.";
    case Case::noWindowManager: return "No window manager that knows desktops is running on this display.";
    case Case::connectionLost:
        return "The connection to " + windowManager + " was lost. Lumnara keeps trying to reach it.";
    case Case::notAnswering: return windowManager + " is not answering. Lumnara keeps asking.";
    case Case::refused: return windowManager + " refused a command: " + detail + ".";
    case Case::noDesktops: return windowManager + " did not report any desktops on that display.";
    }
    return {};
}

} // namespace

WindowManagerError::WindowManagerError(Case which, std::string windowManager, std::string detail)
    : Failure(sentenceOf(which, windowManager, detail)),
      which_(which),
      windowManager_(std::move(windowManager)),
      detail_(std::move(detail)) {}

} // namespace lumnara
