#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace lumnara {

/// When an automation runs.
enum class AutomationTrigger { onEnter, onExit, onClick };

/// What the action `session` does with the tracked session.
enum class SessionOp { start, pause, stop };

// Texts as the file has them, "onEnter" and "start"; reading answers nothing for any other text.
std::string_view textOf(AutomationTrigger trigger);
std::optional<AutomationTrigger> automationTriggerOf(std::string_view text);
std::string_view textOf(SessionOp op);
std::optional<SessionOp> sessionOpOf(std::string_view text);

struct OpenAppAction {
    std::string bundleID;
    std::optional<std::string> name;
    bool operator==(const OpenAppAction&) const = default;
};
struct OpenPathAction {
    std::string path; ///< may begin with a tilde
    bool operator==(const OpenPathAction&) const = default;
};
struct OpenURLAction {
    std::string url;
    bool operator==(const OpenURLAction&) const = default;
};
struct RunShortcutAction {
    std::string name;
    bool operator==(const RunShortcutAction&) const = default;
};
struct RunShellAction {
    std::string script;
    bool operator==(const RunShellAction&) const = default;
};
struct AppleScriptAction {
    std::string source;
    bool operator==(const AppleScriptAction&) const = default;
};
struct PomodoroAction {
    int minutes = 0;
    int breakMinutes = 0;
    bool operator==(const PomodoroAction&) const = default;
};
struct SessionAction {
    SessionOp op = SessionOp::start;
    std::optional<std::string> name;
    bool operator==(const SessionAction&) const = default;
};
struct WaitAction {
    double seconds = 0;
    bool operator==(const WaitAction&) const = default;
};

using AutomationAction =
    std::variant<OpenAppAction, OpenPathAction, OpenURLAction, RunShortcutAction, RunShellAction,
                 AppleScriptAction, PomodoroAction, SessionAction, WaitAction>;

/// The short human text of an action, for editors and run reports: "Open Zoom", "Wait 2s".
std::string labelOf(const AutomationAction& action);

/// A named list of actions, bound to one desktop and one trigger.
struct Automation {
    std::string id;       ///< a uuid, the identity in the store
    std::string spaceKey; ///< the stable key of its desktop, or "link:<id>"
    std::string name;
    std::string icon; ///< a symbol's name
    AutomationTrigger trigger = AutomationTrigger::onEnter;
    bool isEnabled = true; ///< a disabled one never fires by itself
    std::vector<AutomationAction> actions;

    bool operator==(const Automation&) const = default;
};

/// The contents of automations.json.
struct AutomationFile {
    static constexpr int currentSchema = 1;

    int schemaVersion = currentSchema;
    std::vector<Automation> automations;

    bool operator==(const AutomationFile&) const = default;
};

} // namespace lumnara
