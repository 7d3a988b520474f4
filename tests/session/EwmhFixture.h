#pragma once

#include "core/arranging/DesktopArranger.h"
#include "core/async/PollLoop.h"
#include "core/async/Task.h"
#include "core/model/SpaceProvider.h"
#include "core/platform/choose/ChoosePlatform.h"
#include "core/platform/choose/X11Session.h"
#include "core/platform/ewmh/EwmhPlatform.h"
#include "core/platform/linux/WindowManagerError.h"
#include "core/seams/DesktopNamePublisher.h"
#include "core/seams/GlobalShortcuts.h"
#include "core/seams/Screens.h"
#include "core/seams/SpaceActivator.h"
#include "core/seams/Workspace.h"
#include "tests/session/Session.h"

#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace lumnara::testing {

/// A session under an EWMH window manager with the whole platform on it, as a program in the session has it.
struct EwmhFixture {
    explicit EwmhFixture(WindowManager windowManager, int desktops = 4)
        : EwmhFixture(XSession::Options{windowManager, desktops}) {}
    explicit EwmhFixture(const XSession::Options& options) : session(options) {
        subscription = platform.workspace->observe([this](WorkspaceEvent event) { events.push_back(event); });
    }

    bool runUntil(const std::function<bool()>& done, double seconds = 5) {
        return loop.runUntil(done, seconds);
    }
    DisplaySpaces desktops() { return platform.spaceProvider->snapshot().displays.at(0); }
    std::vector<std::string> uuids() {
        std::vector<std::string> uuids;
        for (const auto& space : desktops().spaces) uuids.push_back(space.uuid);
        return uuids;
    }
    std::size_t current() {
        const auto now = desktops();
        for (std::size_t i = 0; i < now.spaces.size(); ++i)
            if (now.spaces[i].id == now.currentID) return i;
        return now.spaces.size();
    }
    /// Activates a desktop and returns once the activator has; gives the sentence of its failure.
    std::string activate(std::size_t index) { return activate(desktops().spaces.at(index)); }
    std::string activate(const Space& target);
    /// Names the desktops by index; an empty text is a desktop without a name.
    void publish(const std::vector<std::string>& names) {
        std::vector<PublishedDesktop> published;
        const auto now = desktops();
        for (std::size_t i = 0; i < names.size(); ++i)
            published.push_back({now.spaces.at(i).uuid, now.spaces[i].id, now.display, names[i]});
        platform.namePublisher->publish(published);
    }
    /// Lets what the window manager has still to say arrive, for a test that expects nothing to come.
    void settle() {
        runUntil([] { return false; }, 0.1);
    }
    /// What reading the desktops fails with.
    std::optional<WindowManagerError> failure() {
        try {
            platform.spaceProvider->snapshot();
            return std::nullopt;
        } catch (const WindowManagerError& error) {
            return error;
        }
    }
    bool answers() { return !failure(); }
    /// The names as another client reads them, separated by commas.
    std::string shownNames() const {
        std::string names = session.rootProperty("_NET_DESKTOP_NAMES").value_or("none");
        for (auto& c : names)
            if (c == '\0') c = ',';
        return names;
    }
    void runTool(std::vector<std::string> arguments) {
        EXPECT_EQ(session.run(std::move(arguments)).status, 0);
    }

    XSession session;
    TemporaryFolder folder;
    async::PollLoop loop;
    std::optional<X11Session> x11{std::in_place, loop, Environment(session.environment())};
    Platform platform = ewmhPlatform(x11->connection(), folder.path());
    std::vector<WorkspaceEvent> events;
    async::Subscription subscription;
};

} // namespace lumnara::testing
