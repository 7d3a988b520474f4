#pragma once

#include "core/async/Loop.h"
#include "core/automation/ActionExecutor.h"
#include "core/platform/linux/DetachedPrograms.h"
#include "core/platform/linux/Environment.h"
#include "core/platform/linux/InstalledApps.h"
#include "core/platform/linux/PomodoroReminder.h"
#include "core/platform/linux/ProcessRunner.h"
#include "core/seams/UserNotifications.h"
#include "core/seams/Workspace.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace lumnara {

/// Carries out actions in a Linux session: apps by their desktop files, paths and addresses by the desktop's
/// own opener, scripts by a login shell. Main thread; it outlives its tasks.
class SystemActionExecutor : public ActionExecutor {
public:
    /// `workspace` and `notifications` may be null, where the session has none; with the loop they outlive
    /// this object. `dataFolder` is where the pomodoro that is under way is kept over a restart.
    SystemActionExecutor(async::Loop& loop, const Environment& environment, Workspace* workspace,
                         UserNotifications* notifications, const std::filesystem::path& dataFolder);

    /// Brings a window of the app to the front where it runs already and the session can do that, else
    /// starts it, in a session of its own, which outlives this program.
    async::Task<> openApp(std::string bundleID, std::optional<std::string> name) override;
    async::Task<> openPath(std::string path) override;
    async::Task<> openURL(std::string url) override;
    async::Task<> runShortcut(std::string name) override;
    async::Task<> runShell(std::string script) override;
    async::Task<> runAppleScript(std::string source) override;
    async::Task<> startPomodoro(int minutes, int breakMinutes) override;
    async::Task<> session(SessionOp op, std::optional<std::string> name) override;

    /// The most recent child that was started.
    std::optional<std::int32_t> lastProcessID() const { return lastProcessID_; }

private:
    bool bringToFront(const InstalledApp& app);
    void startApp(const InstalledApp& app, const std::string& shownName);
    void wrapInTerminal(std::vector<std::string>& command, const std::string& shownName);
    std::int32_t start(const std::vector<std::string>& command, const char* label,
                       const std::filesystem::path& folder);
    async::Task<> openByDesktop(std::string target, const char* label);
    async::Task<> runProcess(std::vector<std::string> command, std::string label);
    std::string loginShell() const;

    const Environment environment_;
    Workspace* const workspace_;
    InstalledApps apps_;
    ProcessRunner processes_;
    DetachedPrograms programs_;
    std::optional<PomodoroReminder> pomodoro_;
    std::optional<std::int32_t> lastProcessID_;
};

} // namespace lumnara
