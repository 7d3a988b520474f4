#include "core/automation/AutomationEditError.h"

#include "core/automation/ActionRules.h"

#include <fmt/format.h>
#include <utility>

namespace lumnara {

namespace {

std::string editSentence(AutomationEditError::Case which) {
    using Case = AutomationEditError::Case;
    switch (which) {
    case Case::emptyName: return "Give the automation a name.";
    case Case::noApp: return "Choose the app to open.";
    case Case::noPath: return "Enter the whole path of a file or folder, beginning with / or ~.";
    case Case::noURL: return "Enter a whole address, such as https://example.org.";
    case Case::noShortcut: return "Enter the name of the shortcut to run.";
    case Case::emptyScript: return "Enter the shell script to run.";
    case Case::emptyAppleScript: return "Enter the AppleScript to run.";
    case Case::pomodoroMinutes:
        return fmt::format("A pomodoro lasts from 1 to {} minutes.", ActionRules::maxPomodoroMinutes);
    case Case::breakMinutes:
        return fmt::format("A break lasts from 0 to {} minutes.", ActionRules::maxBreakMinutes);
    case Case::waitSeconds: break;
    }
    return {};
}

} // namespace

AutomationEditError::AutomationEditError(Case which) : AutomationEditError(which, editSentence(which), 0) {}

AutomationEditError::AutomationEditError(Case which, std::string sentence, double longestWait)
    : Failure(std::move(sentence)),
      which_(which),
      longestWait_(longestWait) {}

AutomationEditError AutomationEditError::waitSeconds(double longest) {
    return {Case::waitSeconds,
            fmt::format("A wait lasts from 0 to {} seconds; a longer one would be cut off.", longest),
            longest};
}

} // namespace lumnara
