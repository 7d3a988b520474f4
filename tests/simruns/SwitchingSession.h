#pragma once

#include "core/platform/mac/engines/DockSwipeEngine.h"
#include "core/platform/mac/engines/HelperWindowEngine.h"
#include "core/platform/mac/engines/SessionState.h"
#include "core/switching/SpaceSwitcher.h"
#include "tests/simruns/SimulatedSession.h"
#include "tests/simruns/WatchedProvider.h"
#include "tests/switching/SwitchingTest.h"

#include <functional>
#include <optional>
#include <vector>

namespace lumnara::testing {

/// The pointer's services with what the engines did through them.
class WatchedEvents : public EventServices {
public:
    explicit WatchedEvents(EventServices& events) : events_(events) {}
    void post(const SyntheticEvent& event, EventTap tap) override {
        posted.push_back(event);
        if (onPost) onPost();
        events_.post(event, tap);
    }
    std::optional<Point> pointer() override { return saved = isBlind ? std::nullopt : events_.pointer(); }
    void warpPointer(Point to) override {
        warps.push_back(to);
        events_.warpPointer(to);
    }
    void forget() {
        posted.clear();
        warps.clear();
        saved.reset();
    }

    /// Nobody can tell where the pointer is.
    bool isBlind = false;
    std::vector<SyntheticEvent> posted;
    std::vector<Point> warps;
    std::optional<Point> saved;
    std::function<void()> onPost;

private:
    EventServices& events_;
};

/// The program, with the windows that it made.
class WatchedApplication : public OwnApplication {
public:
    explicit WatchedApplication(OwnApplication& own) : own_(own) {}
    std::int32_t pid() override { return own_.pid(); }
    std::unique_ptr<OwnWindow> makeWindow(const WindowForm& form) override {
        forms.push_back(form);
        return own_.makeWindow(form);
    }
    void activateIgnoringOtherApps() override { own_.activateIgnoringOtherApps(); }
    bool mustYieldActivation() override { return own_.mustYieldActivation(); }
    void yieldActivation(std::int32_t toPid) override { own_.yieldActivation(toPid); }

    std::vector<WindowForm> forms;

private:
    OwnApplication& own_;
};

/// The whole chain of engines on a simulated Mac.
class SwitchingSession : public SimulatedSession {
public:
    explicit SwitchingSession(SimulatedMacOptions options = {},
                              const std::function<void(SimulatedMac&)>& prepare = {})
        : SimulatedSession(options, prepare) {
        switcher.dockSwipe = &dockSwipe;
        switcher.helperWindow = &helperWindow;
        switcher.blockingReason = [this] {
            return SessionState::blockingReason(*seams.session, *seams.windowServer);
        };
    }

    Space desktopAt(const char* display, std::size_t index) {
        return provider().snapshot().spacesOnDisplay(display)->spaces.at(index);
    }
    Outcome switchTo(const char* display, std::size_t index) {
        return finish(loop, switcher.switchTo(desktopAt(display, index), {display}, std::nullopt));
    }
    /// By one engine alone, from the layout as it is told now.
    Outcome switchBy(SpaceSwitching& engine, const Space& target, const char* on) {
        const DisplayID display{on};
        const SpaceSnapshot snapshot = provider().snapshot();
        return finish(loop, engine.switchTo(target, display, snapshot));
    }
    /// The same, cancelled after so many seconds. What it leaves to happen does.
    Outcome cancelled(SpaceSwitching& engine, const Space& target, const char* on, double after) {
        const DisplayID display{on};
        const SpaceSnapshot snapshot = provider().snapshot();
        Outcome outcome;
        auto handle = async::spawn(loop, noteEnd(engine.switchTo(target, display, snapshot), outcome));
        loop.advance(after);
        handle.cancel();
        loop.runUntilDone();
        return outcome;
    }

    WatchedProvider reader{loop, *seams.windowServer, *seams.screens, seams.workspace.get()};
    WatchedEvents events{*seams.eventServices};
    WatchedApplication own{*seams.ownApplication};
    DockSwipeEngine dockSwipe{reader, *seams.accessibility, events, *seams.screens};
    HelperWindowEngine helperWindow{reader, *seams.windowServer, own, *seams.workspace, *seams.screens};
    SpaceSwitcher switcher{reader};
};

} // namespace lumnara::testing
