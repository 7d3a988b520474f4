#include "core/platform/mac/missioncontrol/SpaceReorderError.h"

#include <utility>

namespace lumnara {

namespace {

std::string reorderErrorSentence(SpaceReorderError::Case which, const std::optional<SwitchError>& reason) {
    using Case = SpaceReorderError::Case;
    switch (which) {
    case Case::session: return reason ? reason->sentence() : std::string();
    case Case::accessibilityNotTrusted:
        return "Changing the desktop order needs Accessibility permission for Lumnara.";
    case Case::mruSpacesOn:
        return "Turn off 'Automatically rearrange Spaces based on most recent use' in System Settings, "
               "Desktop & Dock, to let Lumnara change the order";
    case Case::missionControlOpen: return "Close Mission Control first.";
    case Case::displayNotAttached: return "That display is not connected.";
    case Case::displayNotInSnapshot: return "macOS did not report any desktops on that display.";
    case Case::missionControlDidNotOpen: return "Mission Control did not open. Nothing was changed.";
    case Case::spacesBarNotFound:
        return "Mission Control did not show the desktop thumbnails for that display. Nothing was changed.";
    }
    return {};
}

} // namespace

SpaceReorderError::SpaceReorderError(Case which) : SpaceReorderError(which, std::nullopt) {}

SpaceReorderError::SpaceReorderError(Case which, std::optional<SwitchError> reason)
    : Failure(reorderErrorSentence(which, reason)),
      which_(which),
      reason_(std::move(reason)) {}

SpaceReorderError SpaceReorderError::session(SwitchError reason) {
    return {Case::session, std::move(reason)};
}

} // namespace lumnara
