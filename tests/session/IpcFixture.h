#pragma once

#include "core/arranging/DesktopArranger.h"
#include "core/async/PollLoop.h"
#include "core/async/Timer.h"
#include "core/platform/choose/ChoosePlatform.h"
#include "core/platform/linux/WindowManagerError.h"
#include "core/seams/DesktopNamePublisher.h"
#include "core/seams/GlobalShortcuts.h"
#include "core/seams/Screens.h"
#include "core/seams/SpaceActivator.h"
#include "core/seams/Workspace.h"
#include "core/switching/SpaceSwitcher.h"
#include "tests/session/Session.h"

#include <functional>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace lumnara::testing {

enum class IpcWindowManager { i3, sway };

/// A session under i3 or sway with the whole platform on it, up to the switcher, as a program in the session
/// has it. What the window manager shows is read by its own message program.
class IpcFixture {
public:
    explicit IpcFixture(IpcWindowManager kind, const std::string& configuration = {})
        : i3Session_(kind == IpcWindowManager::i3
                         ? std::make_unique<XSession>(XSession::Options{.windowManager = WindowManager::i3,
                                                                        .i3Configuration = configuration})
                         : nullptr),
          swaySession_(kind == IpcWindowManager::sway ? std::make_unique<SwaySession>(configuration)
                                                      : nullptr) {
        restartLumnara();
    }

    XSession& x() { return *i3Session_; }
    SwaySession& sway() { return *swaySession_; }
    Platform& platform() { return running_->platform; }
    SpaceProvider& provider() { return *running_->platform.spaceProvider; }
    SpaceSwitcher& switcher() { return running_->switcher; }
    /// The outputs' names, left and right.
    std::string left() const { return i3Session_ ? "L" : "HEADLESS-1"; }
    std::string right() const { return i3Session_ ? "R" : "HEADLESS-2"; }

    /// Ends everything of ours and builds it anew on the same folder.
    void restartLumnara() {
        running_.reset();
        running_ = std::make_unique<Running>(*this);
    }
    bool runUntil(const std::function<bool()>& done, double seconds = 10) {
        return loop.runUntil(done, seconds);
    }
    bool answers() {
        return runUntil([this] { return !failure(); });
    }
    /// What reading the desktops fails with.
    std::optional<WindowManagerError> failure() {
        try {
            provider().snapshot();
            return std::nullopt;
        } catch (const WindowManagerError& error) {
            return error;
        }
    }

    /// The window manager's workspaces of an output, in its order, the visible one with a star: "1 2: Mail*
    /// ".
    std::string workspaces(const std::string& output) {
        std::string text;
        for (const auto& each : nlohmann::json::parse(message({"-t", "get_workspaces"}))) {
            if (each.at("output") != output) continue;
            text += each.at("name").get<std::string>() + (each.at("visible").get<bool>() ? "* " : " ");
        }
        return text;
    }
    /// Waits until the window manager shows these, by its own account.
    ::testing::AssertionResult shows(const std::string& output, const std::string& expected) {
        std::string seen;
        const bool met = runUntil([&] { return (seen = workspaces(output)) == expected; });
        return met ? ::testing::AssertionSuccess() : ::testing::AssertionFailure() << "shows " << seen;
    }
    bool hasMark(const std::string& mark) {
        const auto marks = nlohmann::json::parse(message({"-t", "get_marks"}));
        return std::ranges::find(marks, nlohmann::json(mark)) != marks.end();
    }
    void command(const std::string& command) { message({"--", command}); }

    DisplaySpaces desktops(const std::string& output) {
        const SpaceSnapshot snapshot = provider().snapshot();
        const DisplaySpaces* display = snapshot.spacesOnDisplay(output);
        return display ? *display : DisplaySpaces{};
    }
    /// The uuid of the desktop that an output shows.
    std::string current(const std::string& output) {
        const DisplaySpaces display = desktops(output);
        for (const Space& space : display.spaces)
            if (space.id == display.currentID) return space.uuid;
        return {};
    }
    /// Switches by the switcher; the sentence of its failure, or nothing when it landed.
    std::optional<std::string> switchTo(const std::string& uuid);
    /// Gives names to desktops by their uuids; an empty name is a record without one.
    void publish(const std::vector<std::pair<std::string, std::string>>& names) {
        std::vector<PublishedDesktop> published;
        for (const auto& [uuid, name] : names)
            published.push_back({.spaceKey = uuid, .space = {}, .display = {}, .name = name});
        platform().namePublisher->publish(published);
    }

    async::PollLoop loop;
    /// What the program inside prints is looked at again and again; the loop sleeps meanwhile.
    async::Repeating pulse{loop, 0.02, [] {}};
    TemporaryFolder folder;
    std::vector<WorkspaceEvent> events;

private:
    struct Running {
        explicit Running(IpcFixture& fixture)
            : platform(fixture.makePlatform()),
              switcher(*platform.spaceProvider),
              subscription(platform.workspace->observe(
                  [&fixture](WorkspaceEvent event) { fixture.events.push_back(event); })) {
            switcher.engineOverride = {platform.windowManagerEngine.get()};
        }
        Platform platform;
        SpaceSwitcher switcher;
        async::Subscription subscription;
    };

    Platform makePlatform() {
        const Session& session = i3Session_ ? static_cast<Session&>(*i3Session_) : *swaySession_;
        return choosePlatform(loop, i3Session_ ? WindowSystem::x11 : WindowSystem::sway,
                              Environment(session.environment()), folder.path())
            .platform;
    }
    std::string message(std::vector<std::string> arguments) {
        std::vector<std::string> whole{"i3-msg", "-s", i3Session_ ? i3Session_->i3Socket() : ""};
        if (swaySession_) whole = {"swaymsg", "--raw", "-s", swaySession_->socket()};
        whole.insert(whole.end(), arguments.begin(), arguments.end());
        return (i3Session_ ? i3Session_->run(whole) : swaySession_->run(whole)).text;
    }

    std::unique_ptr<XSession> i3Session_;
    std::unique_ptr<SwaySession> swaySession_;
    std::unique_ptr<Running> running_;
};

} // namespace lumnara::testing
