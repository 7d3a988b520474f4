#pragma once

#include "core/async/TaskFwd.h"
#include "core/automation/Automation.h"

#include <functional>
#include <optional>
#include <string>

namespace lumnara {

/// Carries out the actions of automations. Main thread; the tasks suspend and never block. Each throws
/// AutomationError, or async::Cancelled once it is cancelled. What the session can't do at all fails with
/// a reason that says so.
class ActionExecutor {
public:
    virtual ~ActionExecutor() = default;

    virtual async::Task<> openApp(std::string bundleID, std::optional<std::string> name) = 0;
    virtual async::Task<> openPath(std::string path) = 0;
    virtual async::Task<> openURL(std::string url) = 0;
    virtual async::Task<> runShortcut(std::string name) = 0;
    virtual async::Task<> runShell(std::string script) = 0;
    virtual async::Task<> runAppleScript(std::string source) = 0;
    /// A notification in `minutes`; it replaces one that is still to come.
    virtual async::Task<> startPomodoro(int minutes, int breakMinutes) = 0;
    /// Calls onSession.
    virtual async::Task<> session(SessionOp op, std::optional<std::string> name) = 0;

    /// Where session() leads: to the time tracking. Set once at composition.
    std::function<void(SessionOp, const std::optional<std::string>&)> onSession;
};

} // namespace lumnara
