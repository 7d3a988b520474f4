#pragma once

#include "core/base/Failure.h"

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

    explicit AutomationEditError(Case which);

    Case which() const { return which_; }
    bool operator==(const AutomationEditError& other) const { return which_ == other.which_; }

private:
    Case which_;
};

} // namespace lumnara
