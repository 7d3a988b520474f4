#include "core/platform/linux/SystemActionExecutor.h"

#include "core/async/Task.h"
#include "core/automation/ActionRules.h"
#include "core/automation/AutomationError.h"
#include "core/platform/linux/XdgFolders.h"
#include "core/text/Text.h"

#include <array>
#include <fmt/format.h>
#include <functional>
#include <pwd.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace lumnara {

namespace {

namespace fs = std::filesystem;

/// How long an opener may take to say that it failed, in seconds. Without a desktop environment it becomes
/// the application itself and runs on.
constexpr double openerPatience = 2.0;

struct Terminal {
    const char* program;
    const char* option; ///< ahead of the command; null for none
};
constexpr std::array<Terminal, 9> terminals = {{{"xdg-terminal-exec", nullptr},
                                                {"x-terminal-emulator", "-e"},
                                                {"foot", nullptr},
                                                {"gnome-terminal", "--"},
                                                {"konsole", "-e"},
                                                {"xfce4-terminal", "-x"},
                                                {"kitty", nullptr},
                                                {"alacritty", "-e"},
                                                {"xterm", "-e"}}};

/// "~" and "~/x" by the environment's home folder, "~name/x" by the user database.
fs::path expandTilde(const std::string& path, const Environment& environment) {
    if (!path.starts_with('~')) return path;
    const auto slash = path.find('/');
    const std::string user = path.substr(1, slash == std::string::npos ? slash : slash - 1);
    const std::string rest = slash == std::string::npos ? "" : path.substr(slash);
    if (user.empty()) return XdgFolders::home(environment).string() + rest;
    const passwd* known = ::getpwnam(user.c_str());
    return known && known->pw_dir ? known->pw_dir + rest : path;
}

} // namespace

SystemActionExecutor::SystemActionExecutor(async::Loop& loop, const Environment& environment,
                                           Workspace* workspace, UserNotifications* notifications,
                                           const fs::path& dataFolder)
    : environment_(environment),
      workspace_(workspace),
      apps_(environment),
      processes_(loop),
      programs_(loop) {
    if (notifications) pomodoro_.emplace(loop, *notifications, dataFolder / "pomodoro.json");
}

async::Task<> SystemActionExecutor::openApp(std::string bundleID, std::optional<std::string> name) {
    const std::string shownName = name.value_or(bundleID);
    const auto app = apps_.find(bundleID);
    if (!app) throw AutomationError::failed("Open app", shownName + " is not installed");
    if (!bringToFront(*app)) startApp(*app, shownName);
    co_return;
}

bool SystemActionExecutor::bringToFront(const InstalledApp& app) {
    if (!workspace_) return false;
    for (const RunningApplication& running : workspace_->runningApplications()) {
        const std::string& id = running.app.ownerID();
        const bool isTheOne =
            text::equalsIgnoringCase(id, app.id) ||
            (!app.entry.startupWMClass.empty() && text::equalsIgnoringCase(id, app.entry.startupWMClass));
        if (!isTheOne) continue;
        workspace_->activate(running.app.pid, ActivationOptions::ignoringOtherApps);
        return true;
    }
    return false;
}

void SystemActionExecutor::startApp(const InstalledApp& app, const std::string& shownName) {
    auto command = app.entry.command(app.file);
    if (!command) throw AutomationError::failed("Open app", shownName + " has no command that can be run");
    if (app.entry.needsTerminal) wrapInTerminal(*command, shownName);
    const auto program = apps_.program(command->front());
    if (!program) throw AutomationError::failed("Open app", command->front() + " is not installed");
    command->front() = program->string();
    start(*command, "Open app", app.entry.workingFolder);
}

void SystemActionExecutor::wrapInTerminal(std::vector<std::string>& command, const std::string& shownName) {
    for (const Terminal& terminal : terminals) {
        if (!apps_.program(terminal.program)) continue;
        if (terminal.option) command.insert(command.begin(), terminal.option);
        command.insert(command.begin(), terminal.program);
        return;
    }
    throw AutomationError::failed("Open app", shownName + " needs a terminal, and none is installed");
}

std::int32_t SystemActionExecutor::start(const std::vector<std::string>& command, const char* label,
                                         const fs::path& folder) try {
    lastProcessID_ = programs_.start(command, folder);
    return *lastProcessID_;
} catch (const std::system_error& error) {
    throw AutomationError::failed(label, error.code().message());
}

async::Task<> SystemActionExecutor::openPath(std::string path) {
    const fs::path target = expandTilde(path, environment_);
    std::error_code unknown;
    if (!fs::exists(target, unknown)) throw AutomationError::failed("Open", path + " does not exist");
    co_await openByDesktop(fs::absolute(target).string(), "Open");
}

async::Task<> SystemActionExecutor::openURL(std::string url) {
    if (!ActionRules::isURL(url)) throw AutomationError::failed("Open URL", "not a URL");
    co_await openByDesktop(std::move(url), "Open URL");
}

async::Task<> SystemActionExecutor::openByDesktop(std::string target, const char* label) {
    std::vector<std::string> command;
    if (const auto xdgOpen = apps_.program("xdg-open"))
        command = {xdgOpen->string(), std::move(target)};
    else if (const auto gio = apps_.program("gio"))
        command = {gio->string(), "open", std::move(target)};
    else
        throw AutomationError::failed(label, "neither xdg-open nor gio is installed");
    const std::int32_t pid = start(command, label, {});
    const std::optional<int> status = co_await programs_.exitStatus(pid, openerPatience);
    if (status.value_or(0) != 0)
        throw AutomationError::failed(label, fmt::format("{} found nothing that opens it (exit {})",
                                                         fs::path(command[0]).filename().string(), *status));
}

async::Task<> SystemActionExecutor::runShortcut(std::string name) {
    const char* const program = "/usr/bin/shortcuts";
    if (!apps_.program(program))
        throw AutomationError::failed("Shortcut", "Shortcuts are not available on this system.");
    co_await runProcess({program, "run", std::move(name)}, "Shortcut");
}

async::Task<> SystemActionExecutor::runShell(std::string script) {
    co_await runProcess({loginShell(), "-lc", std::move(script)}, "Shell script");
}

std::string SystemActionExecutor::loginShell() const {
    if (apps_.program("/bin/zsh")) return "/bin/zsh";
    const passwd* user = ::getpwuid(::getuid());
    const fs::path shell = user && user->pw_shell ? user->pw_shell : "";
    const bool forbidsLogin = shell.filename() == "nologin" || shell.filename() == "false";
    return !forbidsLogin && apps_.program(shell.string()) ? shell.string() : "/bin/sh";
}

async::Task<> SystemActionExecutor::runProcess(std::vector<std::string> command, std::string label) {
    try {
        co_await processes_.run(std::move(command), [this](std::int32_t pid) { lastProcessID_ = pid; });
    } catch (const ProcessError& error) {
        throw AutomationError::failed(std::move(label), error.sentence());
    }
}

async::Task<> SystemActionExecutor::runAppleScript(std::string) {
    throw AutomationError::failed("AppleScript", "AppleScript is not available on this system.");
    co_return;
}

async::Task<> SystemActionExecutor::startPomodoro(int minutes, int breakMinutes) {
    if (!pomodoro_)
        throw AutomationError::failed("Pomodoro", "Notifications are not available on this system.");
    pomodoro_->start(minutes, breakMinutes);
    co_return;
}

async::Task<> SystemActionExecutor::session(SessionOp op, std::optional<std::string> name) {
    if (onSession) onSession(op, name);
    co_return;
}

} // namespace lumnara
