#pragma once

#include "core/async/TestLoop.h"
#include "core/platform/mac/server/LiveSpaceProvider.h"
#include "core/platform/mac/server/PrivateAPI.h"
#include "core/platform/sim/SimulatedMac.h"
#include "tests/simruns/TwoScreens.h"

#include <functional>
#include <string>
#include <vector>

namespace lumnara::testing {

/// The event of one phase of a swipe, as a trackpad's would be read.
inline SyntheticEvent swipeEvent(std::int64_t phase, double velocity) {
    SyntheticEvent event;
    event.set(55, std::int64_t{30});
    event.set(110, std::int64_t{23});
    event.set(132, phase);
    event.set(124, velocity < 0 ? -0x1p-149 : 0x1p-149);
    event.set(123, std::int64_t{1});
    event.set(129, velocity);
    event.set(130, velocity);
    return event;
}

/// A simulated Mac with the screens "LEFT" (built in) and "RIGHT", of three desktops each.
class SimulatedSession {
public:
    /// `prepare` is called before the window server's calls are looked up.
    explicit SimulatedSession(SimulatedMacOptions options = {},
                              const std::function<void(SimulatedMac&)>& prepare = {})
        : mac(loop, options) {
        plugTwoScreens(mac, 3, 3);
        mac.pointer().moveTo({10, 10});
        if (prepare) prepare(mac);
        seams = mac.seams();
    }

    SpaceID space(const char* display, std::size_t index) const {
        return mac.layout().display(display)->spaces.at(index).id;
    }
    /// The place of the Space that a display shows.
    std::size_t shownAt(const char* display) const {
        const SimulatedDisplay* found = mac.layout().display(display);
        return found->indexOf(found->current);
    }
    void swipe(double velocity) {
        for (const std::int64_t phase : {1, 2, 4})
            seams.eventServices->post(swipeEvent(phase, velocity), EventTap::session);
    }
    std::string front() {
        const auto app = seams.workspace->frontmostApplication();
        return app ? app->name : "nobody";
    }
    LiveSpaceProvider provider() {
        return {loop, *seams.windowServer, *seams.screens, seams.workspace.get()};
    }

    async::TestLoop loop;
    SimulatedMac mac;
    MacSeams seams;
};

} // namespace lumnara::testing
