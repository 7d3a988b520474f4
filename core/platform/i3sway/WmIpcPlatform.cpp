#include "core/platform/i3sway/WmIpcPlatform.h"

#include "core/platform/i3sway/IpcDesktopArranging.h"
#include "core/platform/i3sway/IpcNamePublisher.h"
#include "core/platform/i3sway/IpcSession.h"
#include "core/platform/i3sway/IpcSpaceActivator.h"
#include "core/platform/i3sway/IpcSpaceProvider.h"
#include "core/platform/i3sway/IpcWorkspace.h"
#include "core/platform/i3sway/SwayIdleSource.h"
#include "core/platform/i3sway/SwayScreens.h"
#include "core/platform/i3sway/SwayShortcuts.h"
#include "core/platform/linux/WindowManagerArranger.h"
#include "core/platform/linux/WindowManagerEngine.h"

#include <utility>

namespace lumnara {

namespace {

constexpr const char* registryFileName = "workspaces.json";

Platform platformOn(async::Loop& loop, std::shared_ptr<IpcSession> session,
                    std::unique_ptr<Screens> screens) {
    Platform platform;
    platform.name = session->ipc().windowManager();
    platform.screens = std::move(screens);
    platform.spaceProvider = std::make_unique<IpcSpaceProvider>(loop, *session, *platform.screens);
    platform.workspace = std::make_unique<IpcWorkspace>(*session);
    platform.spaceActivator = std::make_unique<IpcSpaceActivator>(*session);
    platform.windowManagerEngine =
        std::make_unique<WindowManagerEngine>(*platform.spaceActivator, *platform.spaceProvider);
    platform.namePublisher = std::make_unique<IpcNamePublisher>(*session);
    platform.arranger = std::make_unique<WindowManagerArranger>(
        *platform.spaceProvider, std::make_unique<IpcDesktopArranging>(*session));
    platform.keepAlive = std::move(session);
    return platform;
}

} // namespace

bool swayAnswers(const Environment& environment) {
    const auto path = environment.get("SWAYSOCK");
    return path && I3Ipc::accepts(*path);
}

Platform swayPlatform(async::Loop& loop, const Environment& environment,
                      const std::filesystem::path& folder) {
    IpcSession::Setup setup;
    setup.dialect = IpcDialect::sway;
    setup.ipc.windowManager = "sway";
    setup.ipc.findSocket = [path = environment.get("SWAYSOCK")] { return path; };
    setup.ipc.events = {"workspace", "output", "window", "binding", "shutdown"};
    setup.registryFile = folder / registryFileName;
    setup.identify = SwayScreens::identity;
    const auto session = std::make_shared<IpcSession>(loop, std::move(setup));
    Platform platform = platformOn(loop, session, std::make_unique<SwayScreens>(*session));
    platform.globalShortcuts = std::make_unique<SwayShortcuts>(*session);
    platform.idleSource = SwayIdleSource::connect(loop, environment);
    return platform;
}

Platform i3Platform(async::Loop& loop, const Environment& environment, const std::filesystem::path& folder,
                    std::unique_ptr<Screens> screens, std::function<std::optional<std::string>()> findSocket,
                    std::function<std::string(const std::string& connector)> identify) {
    IpcSession::Setup setup;
    setup.dialect = IpcDialect::i3;
    setup.ipc.windowManager = "i3";
    setup.ipc.findSocket = [findSocket = std::move(findSocket), fallback = environment.get("I3SOCK")] {
        const auto path = findSocket();
        return path ? path : fallback;
    };
    setup.ipc.events = {"workspace", "output", "window", "shutdown"};
    setup.registryFile = folder / registryFileName;
    setup.identify = [identify = std::move(identify)](const IpcOutputReply& output) {
        return identify(output.name);
    };
    return platformOn(loop, std::make_shared<IpcSession>(loop, std::move(setup)), std::move(screens));
}

} // namespace lumnara
