// Chooses the platform that the session offers, builds AppState on it, then the surfaces.

#include "app/AppState.h"
#include "app/qt/QtDriver.h"
#include "app/qt/Surfaces.h"
#include "app/qt/sim/SimulatedMacWindow.h"
#include "app/settings/AppSettings.h"
#include "app/start/StartNotices.h"
#include "core/base/Log.h"
#include "core/model/PlatformWords.h"
#include "core/platform/choose/ChoosePlatform.h"
#include "core/platform/linux/AutostartEntry.h"
#include "core/platform/linux/BusNotifications.h"
#include "core/platform/linux/FolderLock.h"
#include "core/platform/linux/JsonDefaultsStore.h"
#include "core/platform/linux/SystemActionExecutor.h"
#include "core/platform/linux/TerminationSignals.h"
#include "core/platform/linux/XdgFolders.h"
#include "core/seams/GlobalShortcuts.h"
#include "core/seams/Workspace.h"
#include "core/text/Text.h"

#include <QApplication>
#include <fmt/format.h>

#include <array>
#include <cstdlib>
#include <stdexcept>

namespace {

using namespace lumnara;

/// Names a file to which the log lines are written too.
constexpr const char* logVariable = "LUMNARA_LOG";

/// A Mac in a window, for a session that has no desktops or isn't to be touched; null where none is
/// simulated. Its screens stand where they are drawn.
std::unique_ptr<SimulatedMacWindow> showSimulatedMac(async::Loop& loop, ChosenPlatform& chosen) {
    if (!chosen.simulatedMac) return nullptr;
    auto window = std::make_unique<SimulatedMacWindow>(loop, *chosen.simulatedMac, *chosen.platform.arranger);
    window->onClosed = [] { QApplication::quit(); };
    return window;
}

/// The shortcuts that open the Board, the preferred one first.
constexpr std::array boardShortcuts = {Shortcut{KeyCode::digit1, {.option = true}},
                                       Shortcut{KeyCode::digit1, {.option = true, .command = true}}};

std::string nameOf(const Shortcut& boardShortcut, PlatformKind kind) {
    const PlatformWords words = wordsOf(kind);
    if (!boardShortcut.modifiers.command) return fmt::format("{}+1", words.option);
    return fmt::format("{}+{}+1", words.option, words.command);
}

/// Binds the first shortcut that nobody else holds; its name, or nothing.
std::optional<std::string> bindBoardShortcut(Platform& platform, QuickSwitcherController& board) {
    if (!platform.globalShortcuts) return std::nullopt;
    for (const Shortcut& shortcut : boardShortcuts) {
        const auto status =
            platform.globalShortcuts->bind("quickSwitcher", shortcut, [&board] { board.toggle(); });
        if (status != ShortcutStatus::active) continue;
        board.toggleShortcut = shortcut;
        return nameOf(shortcut, platform.kind);
    }
    return std::nullopt;
}

void announceBoardShortcut(const std::optional<std::string>& bound, PlatformKind kind, Notices& notices) {
    const std::string wanted = nameOf(boardShortcuts.front(), kind);
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
    ChosenPlatform chosen = choosePlatform(loop, windowSystem, environment, folders.data);
    Platform& platform = chosen.platform;
    const auto simulatedMac = showSimulatedMac(loop, chosen);
    BusNotifications notifications(loop, environment);
    SystemActionExecutor actionExecutor(loop, environment, platform.workspace.get(), &notifications,
                                        chosen.folder);
    AppState state(loop, settings, platform, actionExecutor, chosen.folder);
    if (const auto& error = defaults.loadError()) tellAtStart(state.notices(), error->sentence());
    Surfaces surfaces(state);
    surfaces.onQuit = [] { QApplication::quit(); };
    const TerminationSignals signals(loop, [] { QApplication::quit(); });

    const auto shortcut = bindBoardShortcut(platform, surfaces.board());
    announceBoardShortcut(shortcut, platform.kind, state.notices());
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
