#pragma once

#include "core/automation/ActionExecutor.h"

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

    async::Task<> openApp(std::string bundleID, std::optional<std::string> name) override;
    async::Task<> openPath(std::string path) override;
    async::Task<> openURL(std::string url) override;
    async::Task<> runShortcut(std::string name) override;
    async::Task<> runShell(std::string script) override;
    async::Task<> runAppleScript(std::string source) override;
    async::Task<> startPomodoro(int minutes, int breakMinutes) override;
    async::Task<> session(SessionOp op, std::optional<std::string> name) override;

private:
    async::Task<> hang(std::string what, double seconds = 1e6);
};

} // namespace lumnara::testing
