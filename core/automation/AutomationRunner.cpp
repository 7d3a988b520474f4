#include "core/automation/AutomationRunner.h"

#include "core/async/Task.h"
#include "core/automation/AutomationError.h"

#include <exception>
#include <utility>

namespace lumnara {

namespace {

async::Task<> sleepFor(double seconds) { co_await async::sleepFor(seconds); }

async::Task<> failAfter(double seconds, std::string label) {
    co_await async::sleepFor(seconds);
    throw AutomationError::timeout(std::move(label));
}

/// The task that carries out an action, not yet begun.
struct Requirement {
    ActionExecutor& executor;

    async::Task<> operator()(const OpenAppAction& a) const { return executor.openApp(a.bundleID, a.name); }
    async::Task<> operator()(const OpenPathAction& a) const { return executor.openPath(a.path); }
    async::Task<> operator()(const OpenURLAction& a) const { return executor.openURL(a.url); }
    async::Task<> operator()(const RunShortcutAction& a) const { return executor.runShortcut(a.name); }
    async::Task<> operator()(const RunShellAction& a) const { return executor.runShell(a.script); }
    async::Task<> operator()(const AppleScriptAction& a) const { return executor.runAppleScript(a.source); }
    async::Task<> operator()(const PomodoroAction& a) const {
        return executor.startPomodoro(a.minutes, a.breakMinutes);
    }
    async::Task<> operator()(const SessionAction& a) const { return executor.session(a.op, a.name); }
    async::Task<> operator()(const WaitAction& a) const { return sleepFor(a.seconds); }
};

} // namespace

async::Task<AutomationRunReport> AutomationRunner::run(Automation automation) {
    AutomationRunReport report{automation.name, 0, {}};
    std::exception_ptr cancelled;
    try {
        co_await runActions(automation.actions, report);
    } catch (const async::Cancelled&) {
        cancelled = std::current_exception();
    }
    if (onReport) onReport(report);
    if (cancelled) std::rethrow_exception(cancelled);
    co_return report;
}

async::Task<> AutomationRunner::runActions(const std::vector<AutomationAction>& actions,
                                           AutomationRunReport& report) {
    const auto context = co_await async::currentContext();
    for (const AutomationAction& action : actions) {
        if (context.stop.stop_requested()) throw async::Cancelled();
        const std::string label = labelOf(action);
        try {
            co_await runLimited(action, label);
            ++report.succeeded;
        } catch (...) {
            if (context.stop.stop_requested()) throw async::Cancelled();
            report.failures.push_back(label + ": " + sentenceOf(std::current_exception()));
        }
    }
}

async::Task<> AutomationRunner::runLimited(const AutomationAction& action, std::string label) {
    async::Task<> work = std::visit(Requirement{executor_}, action);
    async::Task<> limit = failAfter(actionTimeout, std::move(label));
    co_await async::race(std::move(work), std::move(limit));
}

async::Task<> AutomationRunner::runAll(std::string spaceKey, AutomationTrigger trigger) {
    const auto context = co_await async::currentContext();
    const std::vector<Automation> automations = store_.automations(spaceKey);
    for (const Automation& automation : automations) {
        if (!automation.isEnabled || automation.trigger != trigger) continue;
        if (context.stop.stop_requested()) throw async::Cancelled();
        co_await run(automation);
    }
}

} // namespace lumnara
