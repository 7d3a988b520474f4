#include "core/automation/Automation.h"

#include <array>
#include <fmt/format.h>

namespace lumnara {

namespace {

constexpr std::array<std::string_view, 3> triggerTexts = {"onEnter", "onExit", "onClick"};
constexpr std::array<std::string_view, 3> sessionOpTexts = {"start", "pause", "stop"};

template <class Enum, std::size_t size>
std::optional<Enum> caseOf(std::string_view text, const std::array<std::string_view, size>& texts) {
    for (std::size_t i = 0; i < size; ++i)
        if (texts[i] == text) return static_cast<Enum>(i);
    return std::nullopt;
}

/// "b" of "/a/b" and of "/a/b/"; "/" of "/".
std::string_view lastComponent(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
    const auto slash = path.rfind('/');
    return slash == std::string_view::npos || path.size() == 1 ? path : path.substr(slash + 1);
}

struct Label {
    std::string operator()(const OpenAppAction& action) const {
        return action.name ? "Open " + *action.name : "Open app";
    }
    std::string operator()(const OpenPathAction& action) const {
        return fmt::format("Open {}", lastComponent(action.path));
    }
    std::string operator()(const OpenURLAction& action) const { return "Open " + action.url; }
    std::string operator()(const RunShortcutAction& action) const {
        return fmt::format("Run Shortcut “{}”", action.name);
    }
    std::string operator()(const RunShellAction&) const { return "Run a shell script"; }
    std::string operator()(const AppleScriptAction&) const { return "Run an AppleScript"; }
    std::string operator()(const PomodoroAction& action) const {
        return fmt::format("Pomodoro {}/{} min", action.minutes, action.breakMinutes);
    }
    std::string operator()(const SessionAction& action) const {
        return fmt::format("{} session", textOf(action.op));
    }
    std::string operator()(const WaitAction& action) const { return fmt::format("Wait {}s", action.seconds); }
};

} // namespace

std::string_view textOf(AutomationTrigger trigger) { return triggerTexts[static_cast<std::size_t>(trigger)]; }

std::optional<AutomationTrigger> automationTriggerOf(std::string_view text) {
    return caseOf<AutomationTrigger>(text, triggerTexts);
}

std::string_view textOf(SessionOp op) { return sessionOpTexts[static_cast<std::size_t>(op)]; }

std::optional<SessionOp> sessionOpOf(std::string_view text) {
    return caseOf<SessionOp>(text, sessionOpTexts);
}

std::string labelOf(const AutomationAction& action) { return std::visit(Label{}, action); }

} // namespace lumnara
