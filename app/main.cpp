// Chooses the platform that the session offers, builds AppState on it, then the surfaces.

#include "app/AppState.h"
#include "app/qt/QtDriver.h"
#include "app/qt/Surfaces.h"
#include "app/qt/sim/SimulatedMacWindow.h"
#include "app/settings/AppSettings.h"
#include "app/start/StartNotices.h"
#include "core/async/PollLoop.h"
#include "core/base/Log.h"
#include "core/platform/ewmh/X11Platform.h"
#include "core/platform/i3sway/WmIpcPlatform.h"
#include "core/platform/linux/AutostartEntry.h"
#include "core/platform/linux/BusNotifications.h"
#include "core/platform/linux/FolderLock.h"
#include "core/platform/linux/JsonDefaultsStore.h"
#include "core/platform/linux/LoginSession.h"
#include "core/platform/linux/SystemActionExecutor.h"
#include "core/platform/linux/TerminationSignals.h"
#include "core/platform/linux/WindowManagerError.h"
#include "core/platform/linux/XdgFolders.h"
#include "core/platform/mac/server/LiveSpaceProvider.h"
#include "core/text/Text.h"

#include <QApplication>
#include <fmt/format.h>

#include <array>
#include <cstdlib>
#include <stdexcept>

namespace {

using namespace lumnara;

enum class WindowSystem { x11, sway };

/// Names the platform to run on where it isn't to be chosen: "simulated".
constexpr const char* platformVariable = "LUMNARA_PLATFORM";
constexpr const char* simulatedPlatform = "simulated";
/// Names a file to which the log lines are written too.
constexpr const char* logVariable = "LUMNARA_LOG";
/// How long a session that has just begun may take to bring its window manager up, in seconds.
constexpr double windowManagerPatience = 3;

/// Whether the user asks for the simulated Mac. Throws for a platform that can't be asked for.
bool wantsSimulation(const Environment& environment) {
    const auto wanted = environment.get(platformVariable);
    if (wanted && *wanted != simulatedPlatform)
        throw std::runtime_error(fmt::format("{} can be \"{}\" or nothing, not \"{}\".", platformVariable,
                                             simulatedPlatform, *wanted));
    return wanted.has_value();
}

/// Which window system to draw on. Throws WindowManagerError::noDisplay when none answers; a toolkit that
/// finds none would end the program without a word.
WindowSystem chooseWindowSystem(const Environment& environment) {
    // The screens of the simulated Mac are drawn where they are, which only X lets a window do.
    const bool simulates = wantsSimulation(environment);
    if (!simulates && environment.get("WAYLAND_DISPLAY") && swayAnswers(environment))
        return WindowSystem::sway;
    async::PollLoop probe;
    const X11Session x11(probe, environment);
    if (!simulates)
        probe.runUntil([&] { return x11.ewmhWindowManager().has_value(); }, windowManagerPatience);
    return WindowSystem::x11;
}

/// A Mac in a window, for a session that has no desktops or isn't to be touched.
class Simulation {
public:
    explicit Simulation(async::Loop& loop) : mac_(loop), window_(loop, mac_) {
        window_.onClosed = [] { QApplication::quit(); };
    }
    /// Its keys, and when the user touched one last, are those of the X session.
    Platform platform(const X11Session& x11) {
        Platform platform = mac_.platform();
        platform.globalShortcuts = x11.globalShortcuts();
        platform.idleSource = x11.idleSource();
        window_.offerJobs(*platform.arranger);
        return platform;
    }

private:
    SimulatedMac mac_;
    SimulatedMacWindow window_;
};

/// What the program runs on, and where it keeps what it knows of it. The simulation, if there is one,
/// outlives the platform.
struct Host {
    std::unique_ptr<Simulation> simulation;
    std::filesystem::path folder;
    Platform platform;
};

/// The best platform of the session, or the simulated Mac where there is none.
Host chooseHost(async::Loop& loop, WindowSystem windowSystem, const Environment& environment,
                const std::filesystem::path& folder) {
    if (windowSystem == WindowSystem::sway) return {nullptr, folder, swayPlatform(loop, environment, folder)};

    const auto x11 = std::make_shared<X11Session>(loop, environment);
    const bool simulates = wantsSimulation(environment);
    if (!simulates && x11->i3Socket()) {
        Platform platform = i3Platform(
            loop, environment, folder, [x11] { return x11->i3Socket(); },
            [x11](const std::string& connector) { return x11->displayIdentity(connector); });
        platform.screens = x11->screens();
        platform.globalShortcuts = x11->globalShortcuts();
        platform.idleSource = x11->idleSource();
        return {nullptr, folder, std::move(platform)};
    }
    if (!simulates && x11->ewmhWindowManager()) return {nullptr, folder, x11->ewmhPlatform(folder)};
    if (!simulates)
        log("Lumnara: no window manager that knows desktops is running; a simulated Mac stands in");
    auto simulation = std::make_unique<Simulation>(loop);
    Platform platform = simulation->platform(*x11);
    return {std::move(simulation), folder / simulatedPlatform, std::move(platform)};
}

/// The shortcuts that open the Board, the preferred one first.
struct BoardShortcut {
    Shortcut shortcut;
    const char* name;
};
constexpr std::array boardShortcuts = {
    BoardShortcut{{KeyCode::digit1, {.option = true}}, "Option+1"},
    BoardShortcut{{KeyCode::digit1, {.option = true, .command = true}}, "Option+Command+1"},
};

/// Binds the first shortcut that nobody else holds; its name, or nothing.
std::optional<std::string> bindBoardShortcut(Platform& platform, QuickSwitcherController& board) {
    if (!platform.globalShortcuts) return std::nullopt;
    for (const auto& [shortcut, name] : boardShortcuts) {
        const auto status =
            platform.globalShortcuts->bind("quickSwitcher", shortcut, [&board] { board.toggle(); });
        if (status != ShortcutStatus::active) continue;
        board.toggleShortcut = shortcut;
        return name;
    }
    return std::nullopt;
}

void announceBoardShortcut(const std::optional<std::string>& bound, Notices& notices) {
    const std::string wanted = boardShortcuts.front().name;
    if (!bound) {
        notices.show(wanted + " is used by another program. Open the Board from the tray icon.");
    } else if (*bound != wanted) {
        notices.show(wanted + " is used by another program. " + *bound + " opens the Board instead.");
    }
}

int run(int& count, char** arguments) {
    const Environment environment = Environment::ofProcess();
    const XdgFolders folders = XdgFolders::of(environment);
    const WindowSystem windowSystem = chooseWindowSystem(environment);
    const auto lock = FolderLock::acquire(folders.data);
    if (!lock) throw std::runtime_error("Another Lumnara runs already.");

    // The toolkit has to draw on the window system whose desktops we drive.
    ::setenv("QT_QPA_PLATFORM", windowSystem == WindowSystem::sway ? "wayland" : "xcb", 0);
    QApplication::setApplicationName("lumnara");
    QApplication application(count, arguments);
    QtDriver driver;
    async::Loop loop(driver);
    driver.attach(loop);
    text::warmUp();

    JsonDefaultsStore defaults(loop, folders.config / "settings.json");
    AutostartEntry loginItem(folders.config.parent_path() / "autostart" / "lumnara.desktop",
                             QApplication::applicationFilePath().toStdString());
    AppSettings settings(defaults, &loginItem);
    Host host = chooseHost(loop, windowSystem, environment, folders.data);
    Platform& platform = host.platform;
    if (!platform.sessionProbe) platform.sessionProbe = std::make_unique<LoginSession>(loop, environment);
    BusNotifications notifications(loop, environment);
    SystemActionExecutor actionExecutor(loop, environment, platform.workspace.get(), &notifications,
                                        host.folder);
    AppState state(loop, settings, platform,
                   std::make_unique<LiveSpaceProvider>(loop, *platform.windowServer, *platform.screens,
                                                       platform.workspace.get()),
                   actionExecutor, host.folder);
    if (const auto& error = defaults.loadError()) tellAtStart(state.notices(), error->sentence());
    Surfaces surfaces(state);
    surfaces.onQuit = [] { QApplication::quit(); };
    const TerminationSignals signals(loop, [] { QApplication::quit(); });

    const auto shortcut = bindBoardShortcut(platform, surfaces.board());
    announceBoardShortcut(shortcut, state.notices());
    log(fmt::format("Lumnara: ready on {}, desktops: {}, displays: {}, Board on {}", platform.name,
                    state.catalog().desktops().size(), state.catalog().displays->size(),
                    shortcut.value_or("the tray icon")));

    const int status = QApplication::exec();
    surfaces.board().close();
    state.stop();
    return status;
}

} // namespace

int main(int count, char** arguments) {
    try {
        if (const auto file = Environment::ofProcess().get(logVariable)) alsoLogTo(*file, async::systemDate);
        return run(count, arguments);
    } catch (const std::exception& failure) {
        log(std::string("Lumnara: ") + failure.what());
        return EXIT_FAILURE;
    }
}
