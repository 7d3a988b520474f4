#pragma once

#include "core/base/Failure.h"
#include "core/model/PlatformWords.h"

#include <string_view>

namespace lumnara {

/// Why a desktop was not shown.
class SwitchError : public FailureOf<SwitchError, int, std::string_view, std::string_view> {
public:
    enum class Case {
        notLanded,    ///< the display does not show the target after so many attempts
        alreadyThere, ///< no failure to the user: callers pass over it in silence
        displayAnimating,
        missionControlActive,
        accessibilityDenied,
        engineUnavailable,
        targetNotInSnapshot,
        screenLocked,
        sessionNotOnConsole
    };
    static constexpr Sentence<Case> sentences[] = {
        {Case::notLanded, "Could not switch after {} attempts."},
        {Case::alreadyThere, "You are already on that desktop."},
        {Case::displayAnimating, "The display is still animating."},
        {Case::missionControlActive, "Close Mission Control first."},
        {Case::accessibilityDenied, "Lumnara needs Accessibility permission to switch desktops instantly."},
        {Case::engineUnavailable, "No switching engine is available."},
        {Case::targetNotInSnapshot, "That desktop no longer exists."},
        {Case::screenLocked, "{1} does not change desktops while the screen is locked."},
        {Case::sessionNotOnConsole, "Another user is using {2} right now."},
    };

    /// Any case but notLanded, which carries a count.
    explicit SwitchError(Case which, PlatformKind on = PlatformKind::mac)
        : FailureOf(which, 0, wordsOf(on).system, wordsOf(on).computer) {}
    static SwitchError notLanded(int afterAttempts) {
        return SwitchError(Case::notLanded, afterAttempts, {}, {});
    }

private:
    using FailureOf::FailureOf;
};

} // namespace lumnara
