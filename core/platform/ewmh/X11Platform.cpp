#include "core/platform/ewmh/X11Platform.h"

#include "core/base/Failure.h"
#include "core/platform/ewmh/EwmhDesktopArranging.h"
#include "core/platform/ewmh/EwmhNamePublisher.h"
#include "core/platform/ewmh/EwmhSpaceActivator.h"
#include "core/platform/ewmh/EwmhWindowServer.h"
#include "core/platform/linux/WindowManagerArranger.h"
#include "core/platform/linux/WindowManagerError.h"
#include "core/platform/x11/X11GlobalShortcuts.h"
#include "core/platform/x11/X11IdleSource.h"
#include "core/platform/x11/X11Screens.h"
#include "core/platform/x11/X11Workspace.h"

namespace lumnara {

namespace {

std::shared_ptr<X11Connection> connectTo(async::Loop& loop, const Environment& environment) {
    const auto display = environment.get("DISPLAY");
    if (!display) throw WindowManagerError(WindowManagerError::Case::noDisplay, {});
    return X11Connection::open(loop, *display);
}

} // namespace

X11Session::X11Session(async::Loop& loop, const Environment& environment)
    : connection_(connectTo(loop, environment)) {}

std::optional<std::string> X11Session::ewmhWindowManager() const {
    EwmhRoot root(connection_);
    try {
        root.read();
        return root.windowManager();
    } catch (const Failure&) {
        return std::nullopt;
    }
}

std::optional<std::string> X11Session::i3Socket() const {
    // An i3 that was killed leaves its property to the window manager that comes after it.
    if (ewmhWindowManager().value_or("i3") != "i3") return std::nullopt;
    try {
        return connection_->text(
            connection_->requestProperty(connection_->root(), connection_->atoms().i3SocketPath));
    } catch (const Failure&) {
        return std::nullopt;
    }
}

Platform X11Session::ewmhPlatform(const std::filesystem::path& folder) const {
    const auto desktops = std::make_shared<EwmhDesktops>(connection_, folder / "ewmh-desktops.json");
    Platform platform;
    platform.name = ewmhWindowManager().value_or("X11");
    platform.keepAlive = connection_;
    platform.windowServer = std::make_unique<EwmhWindowServer>(desktops);
    platform.screens = screens();
    platform.workspace = std::make_unique<X11Workspace>(connection_);
    platform.spaceActivator = std::make_unique<EwmhSpaceActivator>(connection_, desktops);
    platform.namePublisher = std::make_unique<EwmhNamePublisher>(connection_, desktops);
    platform.globalShortcuts = globalShortcuts();
    platform.idleSource = idleSource();
    platform.arranger = std::make_unique<WindowManagerArranger>(
        connection_->loop(), *platform.windowServer,
        std::make_unique<EwmhDesktopArranging>(connection_, desktops));
    return platform;
}

std::unique_ptr<Screens> X11Session::screens() const { return std::make_unique<X11Screens>(connection_); }

std::unique_ptr<GlobalShortcuts> X11Session::globalShortcuts() const {
    return std::make_unique<X11GlobalShortcuts>(connection_);
}

std::unique_ptr<IdleSource> X11Session::idleSource() const { return X11IdleSource::on(connection_); }

std::string X11Session::displayIdentity(const std::string& connector) const {
    return X11Screens(connection_).identity(connector);
}

} // namespace lumnara
