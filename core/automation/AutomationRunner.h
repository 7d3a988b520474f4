#pragma once

#include "core/async/TaskFwd.h"
#include "core/automation/ActionExecutor.h"
#include "core/automation/AutomationStore.h"

#include <functional>
#include <string>
#include <vector>

namespace lumnara {

/// What a run came to.
struct AutomationRunReport {
    std::string automation; ///< its name
    int succeeded = 0;      ///< actions that finished
    /// One line an action that failed: its label, ": " and the failure's sentence.
    std::vector<std::string> failures;

    bool operator==(const AutomationRunReport&) const = default;
};

/// Runs the actions of an automation one after the other, each under a time limit. An action that fails
/// doesn't stop the list. Main thread; store and executor outlive it, and it outlives its tasks.
class AutomationRunner {
public:
    AutomationRunner(AutomationStore& store, ActionExecutor& executor) : store_(store), executor_(executor) {}
    AutomationRunner(const AutomationRunner&) = delete;
    AutomationRunner& operator=(const AutomationRunner&) = delete;

    /// Seconds that one action may take, a wait too. An action that is cut off has ended before the next
    /// begins.
    double actionTimeout = 30.0;
    /// Called once for each run, a cancelled one included. Set once at composition.
    std::function<void(const AutomationRunReport&)> onReport;

    /// Runs it whether or not it is enabled. Throws nothing but async::Cancelled: cancelling ends the
    /// action under way and begins no other.
    async::Task<AutomationRunReport> run(Automation automation);
    /// Each enabled automation of that desktop and trigger, in file order, one after the other.
    async::Task<> runAll(std::string spaceKey, AutomationTrigger trigger);

private:
    async::Task<> runActions(const std::vector<AutomationAction>& actions, AutomationRunReport& report);
    async::Task<> runLimited(const AutomationAction& action, std::string label);

    AutomationStore& store_;
    ActionExecutor& executor_;
};

} // namespace lumnara
