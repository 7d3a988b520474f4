#include "core/switching/SwitchError.h"

#include <fmt/core.h>

namespace lumnara {

namespace {

std::string switchErrorSentence(SwitchError::Case which, int afterAttempts) {
    using Case = SwitchError::Case;
    switch (which) {
    case Case::notLanded: return fmt::format("Could not switch after {} attempts.", afterAttempts);
    case Case::alreadyThere: return "You are already on that desktop.";
    case Case::displayAnimating: return "The display is still animating.";
    case Case::missionControlActive: return "Close Mission Control first.";
    case Case::accessibilityDenied:
        return "Lumnara needs Accessibility permission to switch desktops instantly.";
    case Case::engineUnavailable: return "No switching engine is available.";
    case Case::targetNotInSnapshot: return "That desktop no longer exists.";
    case Case::screenLocked: return "macOS does not change desktops while the screen is locked.";
    case Case::sessionNotOnConsole: return "Another user is using this Mac right now.";
    }
    return {};
}

} // namespace

SwitchError::SwitchError(Case which) : SwitchError(which, 0) {}

SwitchError::SwitchError(Case which, int afterAttempts)
    : Failure(switchErrorSentence(which, afterAttempts)),
      which_(which),
      afterAttempts_(afterAttempts) {}

SwitchError SwitchError::notLanded(int afterAttempts) { return {Case::notLanded, afterAttempts}; }

} // namespace lumnara
