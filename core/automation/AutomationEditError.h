#pragma once

#include "core/base/Failure.h"

#include <string>

namespace lumnara {

/// What the user entered can't stand; nothing has been changed.
class AutomationEditError : public Failure {
public:
    enum class Case {
        emptyName,
        noApp,
        noPath,
        noURL,
        noShortcut,
        emptyScript,
        emptyAppleScript,
        pomodoroMinutes,
        breakMinutes,
        waitSeconds
    };

    /// Any case but waitSeconds, which carries the longest wait.
    explicit AutomationEditError(Case which);
    static AutomationEditError waitSeconds(double longest);

    Case which() const { return which_; }
    /// Seconds, of waitSeconds.
    double longestWait() const { return longestWait_; }
    bool operator==(const AutomationEditError& other) const {
        return which_ == other.which_ && longestWait_ == other.longestWait_;
    }

private:
    AutomationEditError(Case which, std::string sentence, double longestWait);

    Case which_;
    double longestWait_;
};

} // namespace lumnara
