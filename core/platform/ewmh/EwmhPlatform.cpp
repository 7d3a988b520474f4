#include "core/platform/ewmh/EwmhPlatform.h"

#include "core/base/Failure.h"
#include "core/platform/ewmh/EwmhDesktopArranging.h"
#include "core/platform/ewmh/EwmhNamePublisher.h"
#include "core/platform/ewmh/EwmhSpaceActivator.h"
#include "core/platform/ewmh/EwmhSpaceProvider.h"
#include "core/platform/linux/WindowManagerArranger.h"
#include "core/platform/linux/WindowManagerEngine.h"
#include "core/platform/x11/X11GlobalShortcuts.h"
#include "core/platform/x11/X11IdleSource.h"
#include "core/platform/x11/X11Screens.h"
#include "core/platform/x11/X11Workspace.h"

namespace lumnara {

std::optional<std::string> ewmhWindowManager(const std::shared_ptr<X11Connection>& connection) {
    EwmhRoot root(connection);
    try {
        root.read();
        return root.windowManager();
    } catch (const Failure&) {
        return std::nullopt;
    }
}

Platform ewmhPlatform(const std::shared_ptr<X11Connection>& connection, const std::filesystem::path& folder) {
    const auto desktops = std::make_shared<EwmhDesktops>(connection, folder / "ewmh-desktops.json");
    Platform platform;
    platform.name = ewmhWindowManager(connection).value_or("X11");
    platform.keepAlive = connection;
    platform.spaceProvider = std::make_unique<EwmhSpaceProvider>(connection->loop(), desktops);
    platform.screens = std::make_unique<X11Screens>(connection);
    platform.workspace = std::make_unique<X11Workspace>(connection);
    platform.spaceActivator = std::make_unique<EwmhSpaceActivator>(connection, desktops);
    platform.windowManagerEngine =
        std::make_unique<WindowManagerEngine>(*platform.spaceActivator, *platform.spaceProvider);
    platform.namePublisher = std::make_unique<EwmhNamePublisher>(connection, desktops);
    platform.globalShortcuts = std::make_unique<X11GlobalShortcuts>(connection);
    platform.idleSource = X11IdleSource::on(connection);
    platform.arranger = std::make_unique<WindowManagerArranger>(
        *platform.spaceProvider, std::make_unique<EwmhDesktopArranging>(connection, desktops));
    return platform;
}

} // namespace lumnara
