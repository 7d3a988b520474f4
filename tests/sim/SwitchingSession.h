#pragma once

#include "core/platform/mac/engines/DockSwipeEngine.h"
#include "core/platform/mac/engines/HelperWindowEngine.h"
#include "core/platform/mac/engines/SessionState.h"
#include "core/switching/SpaceSwitcher.h"
#include "tests/sim/SimulatedSession.h"
#include "tests/switching/SwitchingTest.h"

#include <optional>

namespace lumnara::testing {

/// The pointer's services with what the engines did through them.
class WatchedEvents : public EventServices {
public:
    explicit WatchedEvents(EventServices& events) : events_(events) {}
    void post(const SyntheticEvent& event, EventTap tap) override {
        ++posted;
        events_.post(event, tap);
    }
    std::optional<Point> pointer() override { return saved = events_.pointer(); }
    void warpPointer(Point to) override {
        lastWarp = to;
        events_.warpPointer(to);
    }
    void forget() {
        posted = 0;
        saved.reset();
        lastWarp.reset();
    }

    int posted = 0;
    std::optional<Point> saved;
    std::optional<Point> lastWarp;

private:
    EventServices& events_;
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

    Outcome switchTo(const char* display, std::size_t index) {
        const auto snapshot = reader.snapshot();
        const Space target = snapshot.spacesOnDisplay(display)->spaces.at(index);
        return finish(loop, switcher.switchTo(target, {display}, std::nullopt));
    }

    LiveSpaceProvider reader = provider();
    WatchedEvents events{*seams.eventServices};
    DockSwipeEngine dockSwipe{reader, *seams.accessibility, events, *seams.screens};
    HelperWindowEngine helperWindow{reader, *seams.windowServer, *seams.ownApplication, *seams.workspace,
                                    *seams.screens};
    SpaceSwitcher switcher{reader};
};

} // namespace lumnara::testing
