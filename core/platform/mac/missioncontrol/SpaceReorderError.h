#pragma once

#include "core/base/Failure.h"
#include "core/switching/SwitchError.h"

#include <string>

namespace lumnara {

/// Why scripted work in Mission Control did not begin; nothing has been changed.
class SpaceReorderError : public FailureOf<SpaceReorderError, std::string> {
public:
    enum class Case {
        session, ///< the session forbids it, and says why
        accessibilityNotTrusted,
        mruSpacesOn,
        missionControlOpen,
        displayNotAttached,
        displayNotInSnapshot,
        missionControlDidNotOpen,
        spacesBarNotFound
    };
    static constexpr Sentence<Case> sentences[] = {
        {Case::session, "{}"},
        {Case::accessibilityNotTrusted,
         "Changing the desktop order needs Accessibility permission for Lumnara."},
        {Case::mruSpacesOn,
         "Turn off 'Automatically rearrange Spaces based on most recent use' in System Settings, "
         "Desktop & Dock, to let Lumnara change the order"},
        {Case::missionControlOpen, "Close Mission Control first."},
        {Case::displayNotAttached, "That display is not connected."},
        {Case::displayNotInSnapshot, "macOS did not report any desktops on that display."},
        {Case::missionControlDidNotOpen, "Mission Control did not open. Nothing was changed."},
        {Case::spacesBarNotFound,
         "Mission Control did not show the desktop thumbnails for that display. Nothing was changed."},
    };

    /// Any case but session, which carries its reason.
    explicit SpaceReorderError(Case which) : FailureOf(which) {}
    static SpaceReorderError session(const SwitchError& reason) {
        return SpaceReorderError(Case::session, reason.sentence());
    }

private:
    using FailureOf::FailureOf;
};

} // namespace lumnara
