#pragma once

#include "core/base/Failure.h"

namespace lumnara {

/// What the user entered can't stand; nothing has been changed.
class AutomationEditError : public FailureOf<AutomationEditError, double> {
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
    static constexpr Sentence<Case> sentences[] = {
        {Case::emptyName, "Give the automation a name."},
        {Case::noApp, "Choose the app to open."},
        {Case::noPath, "Enter the whole path of a file or folder, beginning with / or ~."},
        {Case::noURL, "Enter a whole address, such as https://example.org."},
        {Case::noShortcut, "Enter the name of the shortcut to run."},
        {Case::emptyScript, "Enter the shell script to run."},
        {Case::emptyAppleScript, "Enter the AppleScript to run."},
        {Case::pomodoroMinutes, "A pomodoro lasts from 1 to {} minutes."},
        {Case::breakMinutes, "A break lasts from 0 to {} minutes."},
        {Case::waitSeconds, "A wait lasts from 0 to {} seconds; a longer one would be cut off."},
    };

    /// `longest` is the most that is allowed, of the last three cases.
    explicit AutomationEditError(Case which, double longest = 0) : FailureOf(which, longest) {}
};

} // namespace lumnara
