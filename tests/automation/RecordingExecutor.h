#pragma once

#include "core/automation/ActionExecutor.h"
#include "core/automation/AutomationError.h"

#include <map>
#include <string>
#include <vector>

namespace lumnara::testing {

/// Notes what it is asked. A shell script called "fail" fails; one called "hang" waits for its
/// cancellation, which it notes too; one that is a key of `durations` takes that many seconds.
class RecordingExecutor : public ActionExecutor {
public:
    std::vector<std::string> calls;
    std::map<std::string, double> durations;

    async::Task<> openApp(std::string bundleID, std::optional<std::string> name) override {
        calls.push_back("app " + bundleID + " " + name.value_or("-"));
        co_return;
    }
    async::Task<> openPath(std::string path) override {
        calls.push_back("path " + path);
        co_return;
    }
    async::Task<> openURL(std::string url) override {
        calls.push_back("url " + url);
        co_return;
    }
    async::Task<> runShortcut(std::string name) override {
        calls.push_back("shortcut " + name);
        co_await hang(name);
    }
    async::Task<> runShell(std::string script) override {
        calls.push_back(script);
        if (script == "fail") throw AutomationError::failed("Shell script", "exit 3");
        if (script == "hang") co_await hang(script);
        if (durations.contains(script)) co_await hang(script, durations.at(script));
    }
    async::Task<> runAppleScript(std::string source) override {
        calls.push_back("apple " + source);
        co_return;
    }
    async::Task<> startPomodoro(int minutes, int breakMinutes) override {
        calls.push_back("pomodoro " + std::to_string(minutes) + "/" + std::to_string(breakMinutes));
        co_return;
    }
    async::Task<> session(SessionOp op, std::optional<std::string> name) override {
        calls.push_back("session " + std::string(textOf(op)) + " " + name.value_or("-"));
        if (onSession) onSession(op, name);
        co_return;
    }

private:
    async::Task<> hang(std::string what, double seconds = 1e6) {
        if (co_await async::sleepUnlessCancelled(seconds)) co_return;
        calls.push_back(what + " cancelled");
        throw async::Cancelled();
    }
};

} // namespace lumnara::testing
