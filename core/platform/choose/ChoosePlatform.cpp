#include "core/platform/choose/ChoosePlatform.h"

#include "core/async/PollLoop.h"
#include "core/base/Log.h"
#include "core/platform/choose/X11Session.h"
#include "core/platform/ewmh/EwmhPlatform.h"
#include "core/platform/i3sway/WmIpcPlatform.h"
#include "core/platform/linux/LoginSession.h"
#include "core/platform/sim/SimulatedMac.h"
#include "core/platform/x11/X11GlobalShortcuts.h"
#include "core/platform/x11/X11IdleSource.h"
#include "core/platform/x11/X11Screens.h"
#include "core/switching/SpaceSwitcher.h"

#include <fmt/format.h>
#include <stdexcept>
#include <utility>

namespace lumnara {

namespace {

/// Names the platform to run on where it isn't to be chosen: "simulated".
constexpr const char* platformVariable = "LUMNARA_PLATFORM";
constexpr const char* simulatedPlatform = "simulated";
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

/// The keys, and when the user touched one last, are those of the X session.
void useInputOf(const std::shared_ptr<X11Connection>& connection, Platform& platform) {
    platform.globalShortcuts = std::make_unique<X11GlobalShortcuts>(connection);
    platform.idleSource = X11IdleSource::on(connection);
}

Platform i3PlatformOn(async::Loop& loop, const std::shared_ptr<X11Session>& x11,
                      const Environment& environment, const std::filesystem::path& folder) {
    auto screens = std::make_unique<X11Screens>(x11->connection());
    const auto identify = [&screens = *screens](const std::string& connector) {
        return screens.identity(connector);
    };
    Platform platform = i3Platform(
        loop, environment, folder, std::move(screens), [x11] { return x11->i3Socket(); }, identify);
    useInputOf(x11->connection(), platform);
    return platform;
}

/// The platform of the session's own window manager, with what the session tells of itself.
ChosenPlatform onWindowManager(async::Loop& loop, const Environment& environment,
                               std::filesystem::path folder, Platform platform) {
    platform.sessionProbe = std::make_unique<LoginSession>(loop, environment);
    platform.blockingReason = [&session = *platform.sessionProbe] { return blockingReasonOf(session); };
    return {nullptr, std::move(folder), std::move(platform)};
}

ChosenPlatform onSimulatedMac(async::Loop& loop, const X11Session& x11, const std::filesystem::path& folder) {
    auto mac = std::make_shared<SimulatedMac>(loop);
    Platform platform = mac->platform();
    useInputOf(x11.connection(), platform);
    return {std::move(mac), folder / simulatedPlatform, std::move(platform)};
}

} // namespace

WindowSystem chooseWindowSystem(const Environment& environment) {
    // The screens of the simulated Mac are drawn where they are, which only X lets a window do.
    const bool simulates = wantsSimulation(environment);
    if (!simulates && environment.get("WAYLAND_DISPLAY") && swayAnswers(environment))
        return WindowSystem::sway;
    // A toolkit that finds no display would end the program without a word.
    async::PollLoop probe;
    const X11Session x11(probe, environment);
    if (!simulates)
        probe.runUntil([&] { return ewmhWindowManager(x11.connection()).has_value(); },
                       windowManagerPatience);
    return WindowSystem::x11;
}

ChosenPlatform choosePlatform(async::Loop& loop, WindowSystem windowSystem, const Environment& environment,
                              const std::filesystem::path& folder) {
    if (windowSystem == WindowSystem::sway)
        return onWindowManager(loop, environment, folder, swayPlatform(loop, environment, folder));

    const auto x11 = std::make_shared<X11Session>(loop, environment);
    const bool simulates = wantsSimulation(environment);
    if (!simulates && x11->i3Socket())
        return onWindowManager(loop, environment, folder, i3PlatformOn(loop, x11, environment, folder));
    if (!simulates && ewmhWindowManager(x11->connection()))
        return onWindowManager(loop, environment, folder, ewmhPlatform(x11->connection(), folder));
    if (!simulates)
        log("Lumnara: no window manager that knows desktops is running; a simulated Mac stands in");
    return onSimulatedMac(loop, *x11, folder);
}

} // namespace lumnara
