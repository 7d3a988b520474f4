#include "tests/support/RecordingExecutor.h"

#include "core/async/Task.h"
#include "core/automation/AutomationError.h"

namespace lumnara::testing {

async::Task<> RecordingExecutor::openApp(std::string bundleID, std::optional<std::string> name) {
    calls.push_back("app " + bundleID + " " + name.value_or("-"));
    co_return;
}

async::Task<> RecordingExecutor::openPath(std::string path) {
    calls.push_back("path " + path);
    co_return;
}

async::Task<> RecordingExecutor::openURL(std::string url) {
    calls.push_back("url " + url);
    co_return;
}

async::Task<> RecordingExecutor::runShortcut(std::string name) {
    calls.push_back("shortcut " + name);
    co_await hang(name);
}

async::Task<> RecordingExecutor::runShell(std::string script) {
    calls.push_back(script);
    if (script == "fail") throw AutomationError::failed("Shell script", "exit 3");
    if (script == "hang") co_await hang(script);
    if (durations.contains(script)) co_await hang(script, durations.at(script));
}

async::Task<> RecordingExecutor::runAppleScript(std::string source) {
    calls.push_back("apple " + source);
    co_return;
}

async::Task<> RecordingExecutor::startPomodoro(int minutes, int breakMinutes) {
    calls.push_back("pomodoro " + std::to_string(minutes) + "/" + std::to_string(breakMinutes));
    co_return;
}

async::Task<> RecordingExecutor::session(SessionOp op, std::optional<std::string> name) {
    calls.push_back("session " + std::string(textOf(op)) + " " + name.value_or("-"));
    if (onSession) onSession(op, name);
    co_return;
}

async::Task<> RecordingExecutor::hang(std::string what, double seconds) {
    if (co_await async::sleepUnlessCancelled(seconds)) co_return;
    calls.push_back(what + " cancelled");
    throw async::Cancelled();
}

} // namespace lumnara::testing
