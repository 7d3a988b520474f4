#pragma once

#include "core/base/Failure.h"

namespace lumnara {

/// Why a desktop was not shown.
class SwitchError : public Failure {
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

    /// Any case but notLanded, which carries a count.
    explicit SwitchError(Case which);
    static SwitchError notLanded(int afterAttempts);

    Case which() const { return which_; }
    /// Of notLanded; 0 for the others.
    int afterAttempts() const { return afterAttempts_; }
    bool operator==(const SwitchError& other) const {
        return which_ == other.which_ && afterAttempts_ == other.afterAttempts_;
    }

private:
    SwitchError(Case which, int afterAttempts);

    Case which_;
    int afterAttempts_;
};

} // namespace lumnara
