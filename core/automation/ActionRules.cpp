#include "core/automation/ActionRules.h"

#include "core/automation/AutomationEditError.h"
#include "core/text/Text.h"

#include <algorithm>
#include <string>
#include <utility>

namespace lumnara {

namespace {

using Case = AutomationEditError::Case;

bool isAsciiLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isSchemeCharacter(char c) {
    return isAsciiLetter(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
}
bool isBlankOrControl(char c) { return (c >= 0 && c <= ' ') || c == '\x7F'; }

void require(bool holds, Case otherwise, double longest = 0) {
    if (!holds) throw AutomationEditError(otherwise, longest);
}

void trimText(std::string& value) { value = std::string(text::trim(value)); }

void trimText(std::optional<std::string>& value) {
    if (!value) return;
    trimText(*value);
    if (value->empty()) value.reset();
}

struct Check {
    double longestWait;

    void operator()(OpenAppAction& action) const {
        trimText(action.bundleID);
        trimText(action.name);
        require(!action.bundleID.empty(), Case::noApp);
    }
    void operator()(OpenPathAction& action) const {
        trimText(action.path);
        require(action.path.starts_with('/') || action.path.starts_with('~'), Case::noPath);
    }
    void operator()(OpenURLAction& action) const {
        trimText(action.url);
        require(ActionRules::isURL(action.url), Case::noURL);
    }
    void operator()(RunShortcutAction& action) const {
        trimText(action.name);
        require(!action.name.empty(), Case::noShortcut);
    }
    void operator()(const RunShellAction& action) const {
        require(!text::trim(action.script).empty(), Case::emptyScript);
    }
    void operator()(const AppleScriptAction& action) const {
        require(!text::trim(action.source).empty(), Case::emptyAppleScript);
    }
    void operator()(const PomodoroAction& action) const {
        require(action.minutes >= 1 && action.minutes <= ActionRules::maxPomodoroMinutes,
                Case::pomodoroMinutes, ActionRules::maxPomodoroMinutes);
        require(action.breakMinutes >= 0 && action.breakMinutes <= ActionRules::maxBreakMinutes,
                Case::breakMinutes, ActionRules::maxBreakMinutes);
    }
    void operator()(SessionAction& action) const { trimText(action.name); }
    void operator()(const WaitAction& action) const {
        // Not a number is refused too.
        require(action.seconds >= 0 && action.seconds <= longestWait, Case::waitSeconds, longestWait);
    }
};

} // namespace

const std::vector<ActionRules::Kind>& ActionRules::kinds() {
    static const std::vector<Kind> all = {
        {"Open App", OpenAppAction{}},
        {"Open File or Folder", OpenPathAction{}},
        {"Open Web Address", OpenURLAction{}},
        {"Run Shortcut", RunShortcutAction{}},
        {"Run Shell Script", RunShellAction{}},
        {"Run AppleScript", AppleScriptAction{}},
        {"Pomodoro", PomodoroAction{25, 5}},
        {"Time Tracking Session", SessionAction{}},
        {"Wait", WaitAction{1}},
    };
    return all;
}

bool ActionRules::isURL(std::string_view text) {
    const auto colon = text.find(':');
    if (colon == std::string_view::npos || colon + 1 == text.size()) return false;
    const auto scheme = text.substr(0, colon);
    return !scheme.empty() && isAsciiLetter(scheme.front()) &&
           std::all_of(scheme.begin(), scheme.end(), isSchemeCharacter) &&
           std::none_of(text.begin(), text.end(), isBlankOrControl);
}

AutomationAction ActionRules::checked(AutomationAction action, double longestWait) {
    std::visit(Check{longestWait}, action);
    return action;
}

} // namespace lumnara
